#include "talm_flow/text.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstdint>

namespace talm_flow {
namespace {

constexpr bool IsAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }
constexpr char LowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
constexpr char UpperAscii(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

// The bytes of the character at `at`, which is not behind the text's end: those of a well-formed sequence, else one.
std::size_t CharacterSize(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
  const unsigned lead = byte(at);
  if (lead < 0xC2 || lead > 0xF4) return 1;
  const std::size_t size = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (text.size() - at < size) return 1;
  // Overlong forms, surrogates and numbers above U+10FFFF are told by the second byte.
  const unsigned lowest = lead == 0xE0 ? 0xA0U : lead == 0xF0 ? 0x90U : 0x80U;
  const unsigned highest = lead == 0xED ? 0x9FU : lead == 0xF4 ? 0x8FU : 0xBFU;
  if (byte(at + 1) < lowest || byte(at + 1) > highest) return 1;
  for (std::size_t i = 2; i < size; ++i) {
    if ((byte(at + i) & 0xC0U) != 0x80U) return 1;
  }
  return size;
}

std::size_t NextCharacter(std::string_view text, std::size_t at) {
  return IsAscii(text[at]) ? at + 1 : at + CharacterSize(text, at);
}

struct LowerMapping {
  static constexpr char Ascii(char c) { return LowerAscii(c); }
  static utf8proc_int32_t CodePoint(utf8proc_int32_t code_point) { return utf8proc_tolower(code_point); }
};

struct UpperMapping {
  static constexpr char Ascii(char c) { return UpperAscii(c); }
  static utf8proc_int32_t CodePoint(utf8proc_int32_t code_point) {
    // The library maps the sharp s to its capital letter; the standard's one-to-one mapping leaves it as it is.
    constexpr utf8proc_int32_t kSharpS = 0xDF;
    return code_point == kSharpS ? code_point : utf8proc_toupper(code_point);
  }
};

template <typename Mapping>
void AppendMapped(std::string& out, std::string_view character) {
  utf8proc_int32_t code_point = 0;
  const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(character.data());
  (void)utf8proc_iterate(bytes, static_cast<utf8proc_ssize_t>(character.size()), &code_point);
  utf8proc_uint8_t encoded[4];
  const auto size = static_cast<std::size_t>(utf8proc_encode_char(Mapping::CodePoint(code_point), encoded));
  out.append(reinterpret_cast<const char*>(encoded), size);
}

template <typename Mapping>
std::string Mapped(std::string_view text) {
  // Most texts are ASCII throughout: they are mapped in place, in one go.
  const auto ascii_end = std::ranges::find_if_not(text, IsAscii);
  std::string out(text.begin(), ascii_end);
  std::ranges::transform(out, out.begin(), Mapping::Ascii);
  if (ascii_end == text.end()) return out;
  out.reserve(text.size());
  for (std::size_t at = out.size(); at < text.size();) {
    const std::size_t size = CharacterSize(text, at);
    if (size == 1) {
      out += Mapping::Ascii(text[at]);
    } else {
      AppendMapped<Mapping>(out, text.substr(at, size));
    }
    at += size;
  }
  return out;
}

}  // namespace

std::size_t CharacterCount(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t at = 0; at < text.size(); at = NextCharacter(text, at)) ++count;
  return count;
}

std::string_view FirstCharacters(std::string_view text, std::size_t count) {
  return text.substr(0, OffsetOfCharacter(text, count));
}

std::size_t OffsetOfCharacter(std::string_view text, std::size_t index) {
  if (index >= text.size()) return text.size();
  std::size_t at = 0;
  for (; index > 0 && at < text.size(); --index) at = NextCharacter(text, at);
  return at;
}

std::string_view TrimBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return text.substr(text.size());
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::vector<std::string_view> Split(std::string_view text, std::string_view separator) {
  std::vector<std::string_view> pieces;
  if (text.empty()) return pieces;
  for (;;) {
    const std::size_t at = text.find(separator);
    pieces.push_back(text.substr(0, at));
    if (at == std::string_view::npos) return pieces;
    text.remove_prefix(at + separator.size());
  }
}

std::string ReplaceAll(std::string_view text, std::string_view sought, std::string_view replacement) {
  std::string out;
  out.reserve(text.size());
  for (;;) {
    const std::size_t at = text.find(sought);
    out += text.substr(0, at);
    if (at == std::string_view::npos) return out;
    out += replacement;
    text.remove_prefix(at + sought.size());
  }
}

std::string LowerCase(std::string_view text) { return Mapped<LowerMapping>(text); }

std::string UpperCase(std::string_view text) { return Mapped<UpperMapping>(text); }

bool EqualIgnoringAsciiCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, LowerAscii, LowerAscii);
}

}  // namespace talm_flow
