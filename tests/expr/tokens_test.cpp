#include "expr/tokens.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "talm_flow/error.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAreArray;

struct TokensCase {
  std::string_view text;
  std::vector<std::string_view> tokens;
};

class TokensTest : public ::testing::TestWithParam<TokensCase> {};

TEST_P(TokensTest, AnExpressionFallsIntoThese) {
  expr::Tokens tokens;
  tokens.Read(GetParam().text);
  std::vector<std::string_view> read;
  for (std::size_t i = 0; i < tokens.count(); ++i) read.push_back(tokens[i]);
  EXPECT_THAT(read, ElementsAreArray(GetParam().tokens));
}

INSTANTIATE_TEST_SUITE_P(Texts, TokensTest,
                         ::testing::Values(TokensCase{"", {}}, TokensCase{"12", {"12"}}, TokensCase{"a b", {"a b"}},
                                           TokensCase{"1+2*3", {"1", "+", "2", "*", "3"}}, TokensCase{"-3", {"-", "3"}},
                                           TokensCase{"a-b/c%d^e", {"a", "-", "b", "/", "c", "%", "d", "^", "e"}},
                                           TokensCase{"(1)", {"(", "1", ")"}},
                                           TokensCase{" 1 + 2 ", {" 1 ", "+", " 2 "}}, TokensCase{"f(2)", {"f(2", ")"}},
                                           TokensCase{"a\"b+c\"", {"a\"b", "+", "c\""}},
                                           TokensCase{"\"a+b\"", {"\"a+b\""}},
                                           TokensCase{"\"a\"\"b\"", {"\"a\"", "\"b\""}}, TokensCase{"\"a+b", {"\"a+b"}},
                                           TokensCase{"1+\"", {"1", "+", "\""}},
                                           TokensCase{"+-*/%^()", {"+", "-", "*", "/", "%", "^", "(", ")"}},
                                           TokensCase{"变量+长度", {"变量", "+", "长度"}}));

INSTANTIATE_TEST_SUITE_P(
    Marks, TokensTest,
    ::testing::Values(TokensCase{"MkStr_Begin1+2MkStr_End+3", {"MkStr_Begin1+2MkStr_End", "+", "3"}},
                      TokensCase{"MkStr_BeginMkStr_End", {"MkStr_BeginMkStr_End"}},
                      TokensCase{"MkStr_Begin1+2", {"MkStr_Begin1+2"}},
                      TokensCase{"MkStr_Begi+1", {"MkStr_Begi", "+", "1"}},
                      TokensCase{"mkstr_begin1+2MkStr_End", {"mkstr_begin1", "+", "2MkStr_End"}},
                      TokensCase{"xMkStr_Begin+MkStr_End", {"xMkStr_Begin", "+", "MkStr_End"}},
                      TokensCase{"MkStr_Begin\"MkStr_End\"x\"", {"MkStr_Begin\"MkStr_End", "\"x\""}}));

TEST(TokensTest, TheHundredAndFirstIsTheLast) {
  expr::Tokens tokens;
  tokens.Read(std::string(101, '+'));
  EXPECT_EQ(tokens.count(), 101U);
  EXPECT_THROW(tokens.Read(std::string(102, '+')), SubscriptError);
}

TEST(TokensTest, ReadingAgainForgetsWhatWasRead) {
  expr::Tokens tokens;
  tokens.Read("1+2+3");
  tokens.Read("ab");
  ASSERT_EQ(tokens.count(), 1U);
  EXPECT_EQ(tokens[0], "ab");
}

}  // namespace
}  // namespace talm_flow::test
