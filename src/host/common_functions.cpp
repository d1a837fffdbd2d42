#include "host/common_functions.h"

#include <algorithm>

#include "talm_flow/conversion.h"
#include "talm_flow/text.h"

namespace talm_flow::host {
namespace {

constexpr bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
constexpr bool IsCodeCharacter(char c) { return IsLetter(c) || (c >= '0' && c <= '9') || c == '_'; }

// Line ends of scripts that are none elsewhere: they would end a script string in the middle.
constexpr std::string_view kLineSeparator = "\u2028";
constexpr std::string_view kParagraphSeparator = "\u2029";

// What stands for a character; the empty text for one that stands for itself.
using Escape = std::string_view (*)(char);

// Inside a double-quoted script string of a script element, "<" might begin the element's end tag.
std::string_view ScriptEscape(char c) {
  switch (c) {
    case '\\':
      return R"(\\)";
    case '"':
      return R"(\")";
    case '\r':
      return R"(\r)";
    case '\n':
      return R"(\n)";
    case '<':
      return R"(\x3C)";
    default:
      return {};
  }
}

// Script escapes and HTML references in one pass: no script escape holds a character that HTML would take for its own,
// so that one after the other gives the same.
std::string_view DisplayEscape(char c) {
  switch (c) {
    case '\\':
      return R"(\\)";
    case '\'':
      return R"(\')";
    case '\r':
      return R"(\r)";
    case '\n':
      return R"(\n)";
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case ' ':
      return "&#32;";
    case '\t':
      return "&#9;";
    case '\f':
      return "&#12;";
    case '=':
      return "&#61;";
    case '`':
      return "&#96;";
    default:
      return {};
  }
}

std::string Escaped(std::string_view text, Escape escape) {
  std::string out;
  out.reserve(text.size() + text.size() / 8);
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    if (c == kLineSeparator.front()) {
      const std::string_view character = text.substr(at, kLineSeparator.size());
      if (character == kLineSeparator || character == kParagraphSeparator) {
        out += character == kLineSeparator ? R"(\u2028)" : R"(\u2029)";
        at += character.size() - 1;
        continue;
      }
    }
    const std::string_view escaped = escape(c);
    if (escaped.empty()) {
      out += c;
    } else {
      out += escaped;
    }
  }
  return out;
}

std::string EscapedValue(const Value& value, Escape escape) {
  return value.IsText() ? Escaped(value.Text(), escape) : Escaped(JoinedText(value), escape);
}

}  // namespace

void ReferenceCommonFunctions::SqlText(std::string_view text, std::string& out) const {
  out += '\'';
  for (std::size_t quote = text.find('\''); quote != std::string_view::npos; quote = text.find('\'')) {
    out += text.substr(0, quote + 1);
    out += '\'';
    text.remove_prefix(quote + 1);
  }
  out += text;
  out += '\'';
}

bool ReferenceCommonFunctions::CheckInUnitID(std::string_view code) const {
  constexpr std::size_t kLongest = 50;
  return !code.empty() && code.size() <= kLongest && IsLetter(code.front()) &&
         std::ranges::all_of(code, IsCodeCharacter);
}

bool ReferenceCommonFunctions::InList(std::string_view list, std::string_view sought) const {
  if (list.empty()) return false;
  for (;;) {
    const std::size_t comma = list.find(',');
    if (TrimBlanks(list.substr(0, comma)) == sought) return true;
    if (comma == std::string_view::npos) return false;
    list.remove_prefix(comma + 1);
  }
}

std::string ReferenceCommonFunctions::SelectedMark(const Value& item, const Value& chosen) const {
  return InList(JoinedText(chosen), JoinedText(item)) ? " selected" : "";
}

std::string ReferenceCommonFunctions::ScriptText(const Value& value) const { return EscapedValue(value, ScriptEscape); }

std::string ReferenceCommonFunctions::DisplayText(const Value& value) const {
  return EscapedValue(value, DisplayEscape);
}

}  // namespace talm_flow::host
