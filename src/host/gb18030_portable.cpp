#include <iconv.h>

#include <array>
#include <cerrno>

#include "host/gb18030.h"

namespace talm_flow::host {
namespace {

class Converter {
 public:
  explicit Converter(const char* to) : handle_(iconv_open(to, "UTF-8")) {}
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  ~Converter() {
    if (available()) (void)iconv_close(handle_);
  }

  [[nodiscard]] bool available() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

  // Stops at the first character that the other encoding does not have. @returns the bytes of the text taken.
  [[nodiscard]] std::size_t Convert(std::string_view text, std::string& out) {
    constexpr auto kFailed = static_cast<std::size_t>(-1);
    std::array<char, 4096> buffer{};
    // The interface takes the text as changeable, but never changes it.
    char* in = const_cast<char*>(text.data());
    std::size_t left = text.size();
    for (;;) {
      char* next = buffer.data();
      std::size_t room = buffer.size();
      const std::size_t result = left > 0 ? iconv(handle_, &in, &left, &next, &room) : 0;
      const int error = errno;
      out.append(buffer.data(), next);
      if (result != kFailed || error != E2BIG) return text.size() - left;
    }
  }

 private:
  iconv_t handle_;
};

}  // namespace

EncodingResult EncodeGb18030(std::string_view text) {
  EncodingResult result;
  Converter converter("GB18030");
  result.available = converter.available();
  if (result.available) result.taken = converter.Convert(text, result.bytes);
  return result;
}

}  // namespace talm_flow::host
