#pragma once

/// Taking a statement text apart: what remains of it without its literals is the statement's *shape*.
///
///   text    Select Top 1 ID From DataApp Where ExecuteID=17 And Appover='Ann''s'
///   shape   Select Top 1 ID From DataApp Where ExecuteID=? And Appover=?
///
/// Texts ('...' with doubled inner quotes) and plain numbers (whole, decimal, with exponent) give way to the mark "?".
/// Quoted names, comments, binary literals (x'..'), numbers of any other form and the number right behind "Top" stay.
/// "?" stands for nothing else in a shape, because a text with a parameter mark of its own is refused.
///
/// This runs for every statement; it makes one pass and allocates nothing once its buffers have grown.

#include <string>
#include <string_view>
#include <vector>

namespace talm_flow::adapters {

struct Literal {
  enum class Kind {
    kText,            ///< `source` is what stands between the quotes
    kTextWithQuotes,  ///< the same, and it holds doubled quotes
    kWhole,           ///< digits
    kDecimal,         ///< digits with a point or an exponent
  };
  Kind kind;
  std::string_view source;
};

[[nodiscard]] constexpr bool IsText(const Literal& literal) {
  return literal.kind == Literal::Kind::kText || literal.kind == Literal::Kind::kTextWithQuotes;
}

/// The text's content when it is a text literal: doubled quotes halved, appended to `out`.
void AppendUnquoted(const Literal& literal, std::string& out);

/// A statement text taken apart. The literals point into the text.
struct ScannedText {
  std::string_view text;
  std::string shape;
  std::vector<Literal> literals;
  /// A quote was opened and not closed; `shape` and `literals` are incomplete.
  bool unterminated = false;

  /// Takes a text apart, replacing what was held.
  /// @throws DatabaseError  a second statement, or a parameter mark.
  void Scan(std::string_view to_scan);
};

/// Whether nothing but blanks and comments is left of `text`.
[[nodiscard]] bool HoldsNoStatement(std::string_view text);

/// The characters that names and keywords are made of; all beyond ASCII belong to them.
[[nodiscard]] bool IsNameCharacter(char c);

/// Of ASCII alone, as numbers in statements are.
[[nodiscard]] constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace talm_flow::adapters
