#include "talm_flow/text.h"

#include <algorithm>
#include <cstdint>
#include <span>

#include "db/case_table.h"

namespace talm_flow {
namespace {

constexpr bool IsAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }
constexpr char LowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
constexpr char UpperAscii(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kFirstBeyond16Bits = 0x10000;
constexpr char32_t kHighSurrogate = 0xD800;
constexpr char32_t kLowSurrogate = 0xDC00;
constexpr char32_t kSurrogateBits = 0x3FF;

constexpr bool IsSurrogate(char32_t unit, char32_t first) { return unit >= first && unit - first <= kSurrogateBits; }

// The bytes of the character at `at`, which is not behind the text's end: those of a well-formed sequence, else one.
std::size_t CharacterSize(std::string_view text, std::size_t at) {
  return std::max<std::size_t>(SequenceSize(text.substr(at)), 1);
}

std::size_t NextCharacter(std::string_view text, std::size_t at) {
  return IsAscii(text[at]) ? at + 1 : at + CharacterSize(text, at);
}

char32_t MappedBy(std::span<const CaseRange> table, char32_t character) {
  const auto range = std::ranges::lower_bound(table, character, {}, &CaseRange::last);
  if (range == table.end() || character < range->first || (character - range->first) % range->step != 0) {
    return character;
  }
  return static_cast<char32_t>(static_cast<std::int32_t>(character) + range->difference);
}

struct LowerMapping {
  static constexpr char Ascii(char c) { return LowerAscii(c); }
  static char32_t CodePoint(char32_t code_point) { return MappedBy(kToLower, code_point); }
};

struct UpperMapping {
  static constexpr char Ascii(char c) { return UpperAscii(c); }
  static char32_t CodePoint(char32_t code_point) { return MappedBy(kToUpper, code_point); }
};

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
      AppendUtf8(out, Mapping::CodePoint(CodePointOf(text.substr(at, size))));
    }
    at += size;
  }
  return out;
}

}  // namespace

std::size_t SequenceSize(std::string_view text) {
  const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
  if (text.empty()) return 0;
  const unsigned lead = byte(0);
  if (lead < 0x80) return 1;
  if (lead < 0xC2 || lead > 0xF4) return 0;
  const std::size_t size = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (text.size() < size) return 0;
  // Overlong forms, surrogates and numbers above U+10FFFF are told by the second byte.
  const unsigned lowest = lead == 0xE0 ? 0xA0U : lead == 0xF0 ? 0x90U : 0x80U;
  const unsigned highest = lead == 0xED ? 0x9FU : lead == 0xF4 ? 0x8FU : 0xBFU;
  if (byte(1) < lowest || byte(1) > highest) return 0;
  for (std::size_t i = 2; i < size; ++i) {
    if ((byte(i) & 0xC0U) != 0x80U) return 0;
  }
  return size;
}

char32_t CodePointOf(std::string_view sequence) {
  const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(sequence[index]); };
  if (sequence.size() == 1) return byte(0);
  char32_t code_point = byte(0) & (0x7FU >> sequence.size());
  for (std::size_t i = 1; i < sequence.size(); ++i) code_point = code_point << 6U | (byte(i) & 0x3FU);
  return code_point;
}

void AppendUtf8(std::string& out, char32_t code_point) {
  const auto lead = [&](unsigned mark, unsigned shift) { out += static_cast<char>(mark | code_point >> shift); };
  const auto next = [&](unsigned shift) { out += static_cast<char>(0x80U | (code_point >> shift & 0x3FU)); };
  if (code_point < 0x80) {
    lead(0, 0);
  } else if (code_point < 0x800) {
    lead(0xC0, 6);
    next(0);
  } else if (code_point < 0x10000) {
    lead(0xE0, 12);
    next(6);
    next(0);
  } else {
    lead(0xF0, 18);
    next(12);
    next(6);
    next(0);
  }
}

std::u16string ToUtf16(std::string_view text) {
  std::u16string out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t size = SequenceSize(text.substr(at));
    const char32_t code_point = size == 0 ? kReplacement : CodePointOf(text.substr(at, size));
    if (code_point < kFirstBeyond16Bits) {
      out += static_cast<char16_t>(code_point);
    } else {
      out += static_cast<char16_t>(kHighSurrogate + ((code_point - kFirstBeyond16Bits) >> 10U));
      out += static_cast<char16_t>(kLowSurrogate + ((code_point - kFirstBeyond16Bits) & kSurrogateBits));
    }
    at += std::max<std::size_t>(size, 1);
  }
  return out;
}

std::string ToUtf8(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    char32_t code_point = text[at];
    if (IsSurrogate(code_point, kHighSurrogate) && at + 1 < text.size() && IsSurrogate(text[at + 1], kLowSurrogate)) {
      ++at;
      code_point = kFirstBeyond16Bits + ((code_point & kSurrogateBits) << 10U) + (text[at] & kSurrogateBits);
    } else if (IsSurrogate(code_point, kHighSurrogate) || IsSurrogate(code_point, kLowSurrogate)) {
      code_point = kReplacement;
    }
    AppendUtf8(out, code_point);
  }
  return out;
}

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
