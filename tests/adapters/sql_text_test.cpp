#include "adapters/sql_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "talm_flow/error.h"

namespace talm_flow::adapters {
namespace {

struct Taken {
  const char* text;
  const char* shape;
  std::vector<std::string> literals;
};

std::string KindName(Literal::Kind kind) {
  switch (kind) {
    case Literal::Kind::kText:
    case Literal::Kind::kTextWithQuotes:
      return "text ";
    case Literal::Kind::kWhole:
      return "whole ";
    case Literal::Kind::kDecimal:
      break;
  }
  return "decimal ";
}

std::vector<std::string> Described(const ScannedText& scanned) {
  std::vector<std::string> described;
  for (const Literal& literal : scanned.literals) {
    std::string text = KindName(literal.kind);
    AppendUnquoted(literal, text);
    described.push_back(text);
  }
  return described;
}

class ScanTest : public testing::TestWithParam<Taken> {};

TEST_P(ScanTest, SplitsATextIntoShapeAndLiterals) {
  ScannedText scanned;
  scanned.Scan(GetParam().text);
  EXPECT_FALSE(scanned.unterminated);
  EXPECT_EQ(scanned.shape, GetParam().shape);
  EXPECT_EQ(Described(scanned), GetParam().literals);
}

INSTANTIATE_TEST_SUITE_P(
    Literals, ScanTest,
    testing::Values(
        Taken{"select a from t where b='x' and c=5", "select a from t where b=? and c=?", {"text x", "whole 5"}},
        Taken{"b=''", "b=?", {"text "}}, Taken{"b=''''", "b=?", {"text '"}},
        Taken{"b='O''Brien''s'", "b=?", {"text O'Brien's"}},
        Taken{"values('a','b''','''c')", "values(?,?,?)", {"text a", "text b'", "text 'c"}},
        Taken{"b='-- /* ; ? :x'", "b=?", {"text -- /* ; ? :x"}}, Taken{"b=1.5", "b=?", {"decimal 1.5"}},
        Taken{"b=.5", "b=?", {"decimal .5"}}, Taken{"b=5.", "b=?", {"decimal 5."}},
        Taken{"b=1e3,2E-5,3e+7", "b=?,?,?", {"decimal 1e3", "decimal 2E-5", "decimal 3e+7"}},
        Taken{"b=1.5e3", "b=?", {"decimal 1.5e3"}}, Taken{"b=-5", "b=-?", {"whole 5"}},
        Taken{"b>=10", "b>=?", {"whole 10"}}, Taken{"Times=Times+1", "Times=Times+?", {"whole 1"}},
        Taken{"(1,2)", "(?,?)", {"whole 1", "whole 2"}}, Taken{"b=5 -- five", "b=? -- five", {"whole 5"}}));

INSTANTIATE_TEST_SUITE_P(
    WhatStays, ScanTest,
    testing::Values(Taken{"Select Top 10000 a", "Select Top 10000 a", {}},
                    Taken{"SELECT TOP  1 a", "SELECT TOP  1 a", {}},
                    Taken{"select top/* n */1 a", "select top/* n */1 a", {}},
                    Taken{"Select Top 1 5", "Select Top 1 ?", {"whole 5"}}, Taken{"Top=5", "Top=?", {"whole 5"}},
                    Taken{"Stop 5", "Stop ?", {"whole 5"}},
                    Taken{"from TableData12 where C_2=1", "from TableData12 where C_2=?", {"whole 1"}},
                    Taken{"a=x'41'", "a=x'41'", {}}, Taken{"a=X'' and b='x'", "a=X'' and b=?", {"text x"}},
                    Taken{"max'41'", "max?", {"text 41"}}, Taken{"a=0x1F", "a=0x1F", {}},
                    Taken{"a=12abc", "a=12abc", {}}, Taken{"a=1.2.3", "a=1.2.3", {}}, Taken{"a=1e", "a=1e", {}},
                    Taken{"a=-9223372036854775808", "a=-9223372036854775808", {}},
                    Taken{"\"5'x\" = 5", "\"5'x\" = ?", {"whole 5"}},
                    Taken{"[it's 5] = 5", "[it's 5] = ?", {"whole 5"}}, Taken{"`5'` = 5", "`5'` = ?", {"whole 5"}},
                    Taken{"\"a\"\"'b\" = 5", "\"a\"\"'b\" = ?", {"whole 5"}},
                    Taken{"a /* it's 5 ? */ = 5", "a /* it's 5 ? */ = ?", {"whole 5"}},
                    Taken{"a -- it's 5 ?\n= 5", "a -- it's 5 ?\n= ?", {"whole 5"}},
                    Taken{"a=5-3/2", "a=?-?/?", {"whole 5", "whole 3", "whole 2"}},
                    Taken{"SELECT @@IDENTITY AS ExecuteID", "SELECT @@IDENTITY AS ExecuteID", {}},
                    Taken{"a=b::text", "a=b::text", {}}, Taken{"姓名='张'", "姓名=?", {"text 张"}},
                    Taken{"a /* never closed 5", "a /* never closed 5", {}}, Taken{"", "", {}}));

INSTANTIATE_TEST_SUITE_P(Ends, ScanTest,
                         testing::Values(Taken{"delete from t;", "delete from t", {}},
                                         Taken{"delete from t ; \n\t-- done", "delete from t ", {}},
                                         Taken{"a=5;/* one */ -- two\n", "a=?", {"whole 5"}},
                                         Taken{"a=5;/* open", "a=?", {"whole 5"}}));

TEST(ScanTextTest, AShapeDoesNotDependOnItsLiterals) {
  ScannedText first;
  ScannedText second;
  first.Scan("Insert Into t (a,b,c) Values ('','it''s',1)");
  second.Scan("Insert Into t (a,b,c) Values ('x;--','',2.75)");
  EXPECT_EQ(first.shape, second.shape);
}

TEST(ScanTextTest, ATextKeepsItsNulCharacters) {
  const std::string text("a='x\0y'", 7);
  ScannedText scanned;
  scanned.Scan(text);
  EXPECT_EQ(scanned.shape, "a=?");
  EXPECT_EQ(scanned.literals.at(0).source, std::string_view("x\0y", 3));
}

TEST(ScanTextTest, AQuoteWithoutItsPartnerIsTold) {
  for (const char* const text : {"a='x", "a='x''", "a=\"x", "a=[x", "a=`x", "a=x'41", "a='"}) {
    ScannedText scanned;
    scanned.Scan(text);
    EXPECT_TRUE(scanned.unterminated) << text;
  }
}

struct Refused {
  const char* text;
  const char* message;
};

class RefusedTextTest : public testing::TestWithParam<Refused> {};

TEST_P(RefusedTextTest, RaisesADatabaseErrorThatNamesTheReason) {
  ScannedText scanned;
  try {
    scanned.Scan(GetParam().text);
    FAIL() << "accepted";
  } catch (const DatabaseError& error) {
    EXPECT_THAT(std::string(error.what()), testing::HasSubstr(GetParam().message));
    EXPECT_EQ(error.Statement(), GetParam().text);
  }
}

INSTANTIATE_TEST_SUITE_P(Texts, RefusedTextTest,
                         testing::Values(Refused{"delete from a; delete from b", "one statement"},
                                         Refused{"select 1;;", "one statement"},
                                         Refused{"select 1; -- x\n select 2", "one statement"},
                                         Refused{"select 1; /* x */ 'y'", "one statement"},
                                         Refused{"select ?", "\"?\""}, Refused{"select ?1", "\"?\""},
                                         Refused{"select :name", "\":name\""}, Refused{"select @name", "\"@name\""},
                                         Refused{"select @@identityx", "mark"}, Refused{"select $name", "\"$name\""},
                                         Refused{"select $1", "\"$1\""}, Refused{"a=5 and b=@p", "\"@p\""}));

}  // namespace
}  // namespace talm_flow::adapters
