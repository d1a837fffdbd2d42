#pragma once

/// How an expression text falls into tokens.
///
///   expression = { token }
///   token      = operator | quoted | marked | operand
///   operator   = "+" | "-" | "*" | "/" | "%" | "^" | "(" | ")"
///   quoted     = '"' up to and with the next '"'; without one, the rest of the text
///   marked     = "MkStr_Begin" up to and with the next "MkStr_End"; without one, the rest of the text
///   operand    = any other character and all that follows up to the next operator other than "("
///
/// All delimiters are ASCII, so that bytes serve: no character of several bytes holds one.

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace talm_flow::expr {

inline constexpr std::string_view kMarkBegin = "MkStr_Begin";
inline constexpr std::string_view kMarkEnd = "MkStr_End";
inline constexpr std::size_t kMaxTokens = 101;

/// Where the token that starts at `begin` ends; `begin` must lie within the text.
[[nodiscard]] std::size_t TokenEnd(std::string_view text, std::size_t begin);

/// What stands between double quotes or markers, when the operand (not empty) is such a literal.
[[nodiscard]] std::optional<std::string_view> LiteralText(std::string_view operand);

/// The tokens of a text, one right behind the other. Refers to the text.
class Tokens {
 public:
  /// @throws SubscriptError  the text has more than `kMaxTokens` tokens.
  void Read(std::string_view text);

  [[nodiscard]] std::size_t count() const { return count_; }
  [[nodiscard]] std::size_t Begin(std::size_t index) const { return bounds_[index]; }
  [[nodiscard]] std::size_t End(std::size_t index) const { return bounds_[index + 1]; }
  [[nodiscard]] std::string_view operator[](std::size_t index) const {
    return text_.substr(Begin(index), End(index) - Begin(index));
  }
  /// Whether the token is this one character.
  [[nodiscard]] bool Is(std::size_t index, char character) const {
    return End(index) - Begin(index) == 1 && text_[Begin(index)] == character;
  }

 private:
  std::string_view text_;
  std::array<std::size_t, kMaxTokens + 1> bounds_{};
  std::size_t count_ = 0;
};

}  // namespace talm_flow::expr
