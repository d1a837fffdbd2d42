#include <windows.h>

#include <string>

#include "host/gb18030.h"
#include "talm_flow/text.h"

namespace talm_flow::host {
namespace {

constexpr UINT kCodePage = 54936;

}  // namespace

EncodingResult EncodeGb18030(std::string_view text) {
  EncodingResult result;
  result.taken = text.size();
  if (text.empty()) return result;
  // Every character has a form, so that the text is encoded whole or not at all.
  const std::u16string characters = ToUtf16(text);
  const auto* const wide = reinterpret_cast<const wchar_t*>(characters.data());
  const int count = static_cast<int>(characters.size());
  const int size = ::WideCharToMultiByte(kCodePage, 0, wide, count, nullptr, 0, nullptr, nullptr);
  result.available = size > 0;
  if (!result.available) return result;
  result.bytes.resize(static_cast<std::size_t>(size));
  (void)::WideCharToMultiByte(kCodePage, 0, wide, count, result.bytes.data(), size, nullptr, nullptr);
  return result;
}

}  // namespace talm_flow::host
