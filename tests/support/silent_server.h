#pragma once

/// A server that takes connections and never says a word.

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

namespace talm_flow::test {

/// Listens on a free port of 127.0.0.1 as long as it lives.
class SilentServer {
 public:
  SilentServer() : socket_(socket(AF_INET, SOCK_STREAM, 0)) {
    address_.sin_family = AF_INET;
    address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address_;
    auto* const address = reinterpret_cast<sockaddr*>(&address_);
    if (socket_ < 0 || bind(socket_, address, size) != 0 || listen(socket_, 8) != 0 ||
        getsockname(socket_, address, &size) != 0) {
      throw std::runtime_error("no port to listen on");
    }
  }
  SilentServer(const SilentServer&) = delete;
  SilentServer& operator=(const SilentServer&) = delete;
  ~SilentServer() { close(socket_); }
  [[nodiscard]] std::string Port() const { return std::to_string(ntohs(address_.sin_port)); }

 private:
  int socket_;
  sockaddr_in address_{};
};

}  // namespace talm_flow::test
