#include "script_text.h"

#include <charconv>
#include <cstddef>
#include <utility>

namespace talm_flow::fuzz {
namespace {

constexpr std::string_view kLineSeparator = "\u2028";
constexpr std::string_view kParagraphSeparator = "\u2029";

/// The number that so many hexadecimal digits at the front of a text make; they are taken off it.
std::optional<unsigned> TakeHexadecimal(std::string_view& text, std::size_t digits) {
  unsigned number = 0;
  if (text.size() < digits) return std::nullopt;
  const char* const end = text.data() + digits;
  const auto read = std::from_chars(text.data(), end, number, 16);
  if (read.ec != std::errc() || read.ptr != end) return std::nullopt;
  text.remove_prefix(digits);
  return number;
}

/// What stands behind a backslash, which is taken off the script.
std::optional<std::string> TakeEscaped(std::string_view& script) {
  if (script.empty()) return std::nullopt;
  const char c = script.front();
  script.remove_prefix(1);
  switch (c) {
    case 'r':
      return "\r";
    case 'n':
      return "\n";
    case 'x': {
      const auto code = TakeHexadecimal(script, 2);
      if (!code || *code > 0x7F) return std::nullopt;
      return std::string(1, static_cast<char>(*code));
    }
    case 'u': {
      const auto code = TakeHexadecimal(script, 4);
      if (code == 0x2028U) return std::string(kLineSeparator);
      if (code == 0x2029U) return std::string(kParagraphSeparator);
      return std::nullopt;
    }
    case '\\':
    case '\'':
    case '"':
      return std::string(1, c);
    default:
      return std::nullopt;  // nothing else is escaped here
  }
}

}  // namespace

std::optional<std::string> TakeScriptString(std::string_view& script, char quote) {
  if (script.empty() || script.front() != quote) return std::nullopt;
  script.remove_prefix(1);
  std::string value;
  while (!script.empty()) {
    if (script.starts_with(kLineSeparator) || script.starts_with(kParagraphSeparator)) return std::nullopt;
    const char c = script.front();
    script.remove_prefix(1);
    if (c == quote) return value;
    if (c == '\r' || c == '\n') return std::nullopt;
    if (c != '\\') {
      value += c;
      continue;
    }
    const auto escaped = TakeEscaped(script);
    if (!escaped) return std::nullopt;
    value += *escaped;
  }
  return std::nullopt;
}

std::string WithoutReferences(std::string_view value) {
  constexpr std::pair<std::string_view, char> kNamed[] = {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}};
  std::string read;
  while (!value.empty()) {
    const char c = value.front();
    value.remove_prefix(1);
    const std::size_t end = c == '&' ? value.find(';') : value.npos;
    if (end == value.npos) {
      read += c;
      continue;
    }
    const std::string_view name = value.substr(0, end);
    char character = '\0';
    for (const auto& [known, its_character] : kNamed) {
      if (name == known) character = its_character;
    }
    int code = 0;
    if (name.starts_with('#') && std::from_chars(name.data() + 1, name.data() + end, code).ptr == name.data() + end &&
        code > 0 && code < 0x80) {
      character = static_cast<char>(code);
    }
    if (character == '\0') {
      read += c;
      continue;
    }
    read += character;
    value.remove_prefix(end + 1);
  }
  return read;
}

}  // namespace talm_flow::fuzz
