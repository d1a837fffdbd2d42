#include "html.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "talm_flow/text.h"

namespace talm_flow::program {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

struct Named {
  std::string_view name;
  char character;
};
constexpr Named kNamed[] = {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}};

constexpr std::size_t kLongestReference = 8;

/// The ASCII character that the text between "&" and ";" stands for.
std::optional<char> Referenced(std::string_view name) {
  for (const auto& named : kNamed) {
    if (name == named.name) return named.character;
  }
  if (!name.starts_with('#')) return std::nullopt;
  std::uint8_t code = 0;
  const auto [end, error] = std::from_chars(name.data() + 1, name.data() + name.size(), code);
  if (error != std::errc() || end != name.data() + name.size() || code == 0 || code > 0x7F) return std::nullopt;
  return static_cast<char>(code);
}

}  // namespace

std::string Escaped(std::string_view text) {
  std::string result;
  result.reserve(text.size() + text.size() / 8);
  for (const char c : text) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      case '\'':
        result += "&#39;";
        break;
      default:
        result += c;
    }
  }
  return result;
}

std::string WithoutReferences(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '&') {
      const auto reference = text.substr(at, kLongestReference);
      const auto length = reference.find(';');
      const auto character =
          length == std::string_view::npos ? std::nullopt : Referenced(reference.substr(1, length - 1));
      if (character) {
        result += *character;
        at += length;
        continue;
      }
    }
    result += text[at];
  }
  return result;
}

std::string WellFormed(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const auto length = SequenceSize(text);
    if (length == 0 || text.front() == '\0') {
      result += kReplacement;
      text.remove_prefix(1);
      continue;
    }
    result += text.substr(0, length);
    text.remove_prefix(length);
  }
  return result;
}

}  // namespace talm_flow::program
