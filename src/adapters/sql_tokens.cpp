#include "adapters/sql_tokens.h"

#include "adapters/sql_text.h"

namespace talm_flow::adapters {
namespace {

constexpr std::string_view kBlanks = " \t\r\n\f";

/// Behind what the quote at `begin` opens; a doubled closing quote is a part of it.
std::size_t BehindQuoted(std::string_view shape, std::size_t begin, char closing) {
  for (std::size_t end = begin + 1;; end += 2) {
    end = shape.find(closing, end);
    if (end == shape.npos) return shape.size();
    if (end + 1 == shape.size() || shape[end + 1] != closing || closing == ']') return end + 1;
  }
}

/// Behind a comment that begins here, or `begin` when none does.
std::size_t BehindComment(std::string_view shape, std::size_t begin) {
  const std::string_view rest = shape.substr(begin);
  std::size_t end = begin;
  if (rest.starts_with("--")) {
    end = shape.find('\n', begin);
  } else if (rest.starts_with("/*")) {
    end = shape.find("*/", begin + 2);
    if (end != shape.npos) ++end;
  } else {
    return begin;
  }
  return end == shape.npos ? shape.size() : end + 1;
}

Token Next(std::string_view shape, std::size_t begin) {
  const char c = shape[begin];
  const bool digit = c >= '0' && c <= '9';
  if (c == '"' || c == '`') return {Token::Kind::kQuotedName, begin, BehindQuoted(shape, begin, c)};
  if (c == '[') return {Token::Kind::kQuotedName, begin, BehindQuoted(shape, begin, ']')};
  if (c == '?') return {Token::Kind::kMark, begin, begin + 1};
  if (!IsNameCharacter(c) && c != '@') return {Token::Kind::kOther, begin, begin + 1};
  std::size_t end = begin + 1;
  while (end < shape.size() && (IsNameCharacter(shape[end]) || (c == '@' && shape[end] == '@'))) ++end;
  if (end - begin == 1 && (c == 'x' || c == 'X') && end < shape.size() && shape[end] == '\'') {
    return {Token::Kind::kOther, begin, BehindQuoted(shape, end, '\'')};
  }
  return {c == '@' ? Token::Kind::kIdentity : digit ? Token::Kind::kNumber : Token::Kind::kWord, begin, end};
}

}  // namespace

std::vector<Token> Tokenize(std::string_view shape) {
  std::vector<Token> tokens;
  std::size_t at = 0;
  while ((at = shape.find_first_not_of(kBlanks, at)) != shape.npos) {
    if (const std::size_t behind = BehindComment(shape, at); behind != at) {
      at = behind;
      continue;
    }
    tokens.push_back(Next(shape, at));
    at = tokens.back().end;
  }
  return tokens;
}

}  // namespace talm_flow::adapters
