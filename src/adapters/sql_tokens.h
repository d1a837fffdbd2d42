#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace talm_flow::adapters {

/// A piece of a shape. Blanks and comments are none.
struct Token {
  enum class Kind { kWord, kQuotedName, kNumber, kMark, kIdentity, kOther };
  Kind kind;
  std::size_t begin;
  std::size_t end;
};

[[nodiscard]] std::vector<Token> Tokenize(std::string_view shape);

}  // namespace talm_flow::adapters
