#include "statement_maker.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "reference_engine.h"

namespace talm_flow::test {
namespace {

std::string Bytes(std::mt19937& random, std::size_t count) {
  std::string bytes;
  while (bytes.size() < count) bytes += static_cast<char>(random());
  return bytes;
}

TEST(StatementMakerTest, MostStatementsRunAndManyGiveRows) {
  fuzz::ReferenceEngine engine;
  for (const std::string& statement : fuzz::StatementsOfTables()) ASSERT_TRUE(engine.Run(statement)) << statement;
  std::mt19937 random(1);
  constexpr int kStatements = 1000;
  int run = 0;
  int with_rows = 0;
  int limited = 0;
  for (int i = 0; i < kStatements; ++i) {
    const std::string bytes = Bytes(random, 60);
    fuzz::Choices choices(bytes);
    const auto statement = fuzz::MakeStatement(choices);
    engine.Begin();
    const auto given = engine.Run(statement.engine);
    engine.Rollback();
    run += given ? 1 : 0;
    with_rows += given && !given->rows.empty() ? 1 : 0;
    limited += given && statement.engine.find(" limit ") != std::string::npos ? 1 : 0;
  }
  EXPECT_GT(run, kStatements * 6 / 10);
  EXPECT_GT(with_rows, kStatements * 2 / 10);
  EXPECT_GT(limited, kStatements * 2 / 10);
}

TEST(StatementMakerTest, TheSameChoicesMakeTheSameStatement) {
  const std::string bytes = "\x07\x01\x02\x03\x04 some choices";
  fuzz::Choices first(bytes);
  fuzz::Choices second(bytes);
  EXPECT_EQ(fuzz::MakeStatement(first).component, fuzz::MakeStatement(second).component);
}

}  // namespace
}  // namespace talm_flow::test
