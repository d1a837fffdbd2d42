/// Commits one fault on purpose, for builds with sanitizers: they must find it, and in the library where it can be
/// committed there. Without sanitizers the faults do nothing.

#include <cstring>
#include <iostream>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

#include "talm_flow/host/reference_host.h"
#include "talm_flow/text.h"

namespace {

/// The library is handed a text that is longer than the memory behind it.
void ReadBeyondTheEnd() {
  constexpr std::size_t kSize = 16;
  const auto bytes = std::make_unique<char[]>(kSize);
  std::memset(bytes.get(), 'x', kSize);
  std::cout << talm_flow::CharacterCount(std::string_view(bytes.get(), kSize + 1)) << '\n';
}

void ForgetMemory() {
  volatile char* forgotten = new char[64];
  forgotten[0] = 'x';
  forgotten = nullptr;
}

void Overflow(int number) { std::cout << std::numeric_limits<int>::max() + number << '\n'; }

/// Two threads have the library write into one text.
void WriteTogether() {
  talm_flow::host::ReferenceHost host;
  const auto& common = host.services().common;
  std::string text;
  text.reserve(64);
  std::thread other([&] { common.SqlText("x", text); });
  common.SqlText("x", text);
  other.join();
  std::cout << text.size() << '\n';
}

}  // namespace

int main(int count, char** arguments) {
  const std::string_view fault = count > 1 ? arguments[1] : "";
  if (fault == "address") ReadBeyondTheEnd();
  if (fault == "leak") ForgetMemory();
  if (fault == "undefined") Overflow(count);
  if (fault == "thread") WriteTogether();
  return 0;
}
