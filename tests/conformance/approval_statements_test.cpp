/// The statements that an instance of the benchmarks' workload costs, exactly: ten assignments, an approval with one
/// approver, a notice and a time limit, two more assignments. The reference host's own checks are not counted.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>

#include "office.h"
#include "support/databases.h"
#include "support/recording_connection.h"
#include "talm_flow/text.h"

namespace talm_flow::bench {
namespace {

constexpr int kFlow = 7;

struct Counts {
  int queries = 0;
  int writes = 0;

  friend bool operator==(const Counts&, const Counts&) = default;
  [[nodiscard]] int All() const { return queries + writes; }
};

class ApprovalStatementsTest : public testing::Test {
 protected:
  ApprovalStatementsTest() : database_(test::ChosenDatabase()), office_(database_.url()) {
    office_.AddApprovalFlow(kFlow);
  }

  Counts Count(const std::function<void(Connection&)>& body) {
    Counts counts;
    test::RecordingConnection recording(office_.database());
    host::TracingConnection counting(recording, [&counts](std::string_view text) {
      ++(EqualIgnoringAsciiCase(text.substr(0, 6), "select") ? counts.queries : counts.writes);
    });
    body(counting);
    return counts;
  }

  test::CleanDatabase database_;
  Office office_;
};

TEST_F(ApprovalStatementsTest, EachCallOfTheHostCostsItsStatements) {
  EXPECT_EQ(Count([&](Connection& connection) { office_.Start(connection, kFlow); }).All(), 81);
  const Office::Task task = Office::NewestTask(office_.database());
  EXPECT_EQ(Count([&](Connection& connection) { office_.Finish(connection, task); }).All(), 2);
  EXPECT_EQ(Count([&](Connection& connection) { office_.Resume(connection, task); }).All(), 18);
  EXPECT_EQ(Count([&](Connection& connection) { office_.End(connection, task); }).All(), 8);
}

TEST_F(ApprovalStatementsTest, AnInstanceIsEightySixQueriesAndTwentyThreeWrites) {
  const auto run = [&](Connection& connection) { office_.RunApproval(connection, kFlow, false); };
  const Counts first = Count(run);
  EXPECT_EQ(first.queries, 86);
  EXPECT_EQ(first.writes, 23);
  EXPECT_EQ(Count(run), first) << "a later instance";
}

TEST_F(ApprovalStatementsTest, ATransactionForEachCallAddsNoStatementOfTheComponent) {
  const Counts counts = Count([&](Connection& connection) { office_.RunApproval(connection, kFlow, true); });
  EXPECT_EQ(counts.All(), 109);
}

TEST_F(ApprovalStatementsTest, NothingOfAnEndedInstanceIsLeftButItsTask) {
  office_.RunApproval(office_.database(), kFlow, false);
  EXPECT_TRUE(office_.database().Open("select ExecuteID from WorkFlowExecuteID")->AtEnd());
  EXPECT_TRUE(office_.database().Open("select ID from WorkFlowVariable")->AtEnd());
  EXPECT_EQ(office_.database().Open("select Status from DataApp")->Field("Status"), Value(2));
}

}  // namespace
}  // namespace talm_flow::bench
