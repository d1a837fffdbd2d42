#include "adapters/shape_pattern.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "talm_flow/error.h"

namespace talm_flow::adapters {
namespace {

using Literals = std::vector<std::pair<Literal::Kind, std::string>>;

Literals Copied(const std::vector<Literal>& literals) {
  Literals copied;
  for (const Literal& literal : literals) copied.emplace_back(literal.kind, literal.source);
  return copied;
}

ShapePattern PatternOf(std::string_view text) {
  ScannedText scanned;
  scanned.Scan(text);
  return ShapePattern(scanned);
}

/// What the pattern of one text finds in another.
std::optional<Literals> Matched(std::string_view known, std::string_view text) {
  const ShapePattern pattern = PatternOf(known);
  std::vector<Literal> literals = {{Literal::Kind::kText, "left over"}};
  if (!pattern.Match(text, literals)) return std::nullopt;
  return Copied(literals);
}

TEST(ShapePatternTest, RecognisesATextOfItsShapeAndTellsItsLiterals) {
  EXPECT_EQ(Matched("select a from t where b=1 and c='x'", "select a from t where b=20 and c='long text'"),
            (Literals{{Literal::Kind::kWhole, "20"}, {Literal::Kind::kText, "long text"}}));
  EXPECT_EQ(Matched("values ('a',1)", "values ('',007)"),
            (Literals{{Literal::Kind::kText, ""}, {Literal::Kind::kWhole, "007"}}));
  EXPECT_EQ(Matched("select Top 1 a from t", "select Top 1 a from t"), Literals());
}

TEST(ShapePatternTest, KnowsTheShapeFromNumbersAndTextsOfOtherForms) {
  EXPECT_EQ(Matched("a=1.5 b='it''s'", "a=2 b='x'"),
            (Literals{{Literal::Kind::kWhole, "2"}, {Literal::Kind::kText, "x"}}));
  EXPECT_EQ(Matched("select 1;", "select 2"), (Literals{{Literal::Kind::kWhole, "2"}}));
}

TEST(ShapePatternTest, LeavesToTheScannerWhatIsNotPlain) {
  for (const char* const text : {"a='it''s'", "a=1.5", "a=1e3", "a=1 ", "a=1;", "a=0x1F", "a=", "a", "", "a='x",
                                 "a=9223372036854775808", "a=-1", "A=1", "a=?", "a=1 or 1=1"}) {
    EXPECT_EQ(Matched("a=1", text), std::nullopt) << text;
    EXPECT_EQ(Matched("a='x'", text), std::nullopt) << text;
  }
}

TEST(ShapePatternTest, ANumberIsNoPartOfTheNameBeforeIt) {
  EXPECT_EQ(Matched("select a.5", "select a5"), std::nullopt);
  EXPECT_EQ(Matched("select a'x'", "select a5"), std::nullopt);
}

TEST(ShapePatternTest, APatternOfNothingRecognisesNothing) {
  std::vector<Literal> literals;
  EXPECT_FALSE(ShapePattern().Match("", literals));
  EXPECT_FALSE(ShapePattern().Match("select 1", literals));
}

// Whatever it says about a text, the scanner says so too.
TEST(ShapePatternTest, NeverTellsAnotherShapeThanTheScanner) {
  std::vector<std::string> texts;
  const std::vector<std::string> values = {
      "1",  "23",    "4.5", ".5",    "1e3", "0x1F", "12abc", "'a'", "''",  "'b''c'", "x'0A'", "n'text'",
      "a5", "Top 1", "'?'", "\"q\"", "[1]", "-1",   "/*1*/", "--1", "1--", "1;",     "'1';",  "9223372036854775808"};
  for (const char* const before : {"a=", "a", "a ", "a-", "Top ", "x", "a.", "(", "@", ""}) {
    for (const std::string& value : values) {
      for (const char* const behind : {"", " and b=2", "'t'", ".5", "\n1"}) texts.push_back(before + value + behind);
    }
  }
  int recognised = 0;
  for (const std::string& known : texts) {
    ScannedText scanned;
    try {
      scanned.Scan(known);
    } catch (const DatabaseError&) {
      continue;
    }
    const ShapePattern pattern(scanned);
    for (const std::string& text : texts) {
      std::vector<Literal> literals;
      if (!pattern.Match(text, literals)) continue;
      ++recognised;
      ScannedText expected;
      ASSERT_NO_THROW(expected.Scan(text)) << known << " | " << text;
      ASSERT_EQ(scanned.shape, expected.shape) << known << " | " << text;
      ASSERT_EQ(Copied(literals), Copied(expected.literals)) << known << " | " << text;
    }
  }
  EXPECT_GT(recognised, 500);
}

}  // namespace
}  // namespace talm_flow::adapters
