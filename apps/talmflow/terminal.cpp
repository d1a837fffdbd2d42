#include "terminal.h"

#include <unistd.h>

#include <cstdlib>

#include "talm_flow/text.h"

namespace talm_flow::program {
namespace {

bool UsesColours() {
  const char* const no_colour = std::getenv("NO_COLOR");
  return (no_colour == nullptr || *no_colour == '\0') && isatty(STDOUT_FILENO) == 1;
}

std::string Marked(const char* mark, const std::string& text) {
  return UsesColours() ? std::string("\x1b[") + mark + "m" + text + "\x1b[0m" : text;
}

char32_t CodePoint(std::string_view character) {
  const auto lead = static_cast<unsigned char>(character.front());
  if (character.size() == 1) return lead;
  char32_t code = lead & (0xFFU >> (character.size() + 1));
  for (const char c : character.substr(1)) code = (code << 6) | (static_cast<unsigned char>(c) & 0x3FU);
  return code;
}

bool IsWide(char32_t code) {
  constexpr struct {
    char32_t first;
    char32_t last;
  } kWide[] = {{0x1100, 0x115F}, {0x2E80, 0x303E}, {0x3041, 0xA4CF}, {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},
               {0xFE30, 0xFE6F}, {0xFF00, 0xFF60}, {0xFFE0, 0xFFE6}, {0x1F300, 0x1FAFF}, {0x20000, 0x3FFFD}};
  for (const auto& range : kWide) {
    if (code >= range.first && code <= range.last) return true;
  }
  return false;
}

}  // namespace

std::size_t DisplayWidth(std::string_view text) {
  std::size_t width = 0;
  while (!text.empty()) {
    const auto character = FirstCharacters(text, 1);
    width += IsWide(CodePoint(character)) ? 2 : 1;
    text.remove_prefix(character.size());
  }
  return width;
}

std::string Printable(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte == '\n') {
      result += " ↵ ";
    } else if (byte == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
      continue;
    } else if (byte < 0x20) {
      // U+2400 + n pictures the control character n.
      result += "\xE2\x90";
      result += static_cast<char>(0x80 + byte);
    } else if (byte == 0x7F) {
      result += "␡";
    } else {
      result += text[i];
    }
  }
  return result;
}

std::string Counted(std::size_t count, const char* noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string Bold(const std::string& text) { return Marked("1", text); }

std::string Dim(const std::string& text) { return Marked("2", text); }

}  // namespace talm_flow::program
