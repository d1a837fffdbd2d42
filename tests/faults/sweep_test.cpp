// The sweep itself sees what it is there to see.

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "support/fault_sweep.h"
#include "support/world.h"

namespace talm_flow::test {
namespace {

const char* const kWrite = "Insert Into DataNotice (TableID) Values (1)";
const char* const kRead = "Select Top 1 ID From DataNotice";

/// Sweeps a call over a world of its own.
void SweepOnce(const SweptCall& call) {
  World world;
  (void)Sweep(world.database(), world.services(), call);
}

TEST(SweepTest, CountsEveryStatementAndEveryAccessToARow) {
  World world;
  world.Run(kWrite);
  const auto result = Sweep(world.database(), world.services(), [](Connection& connection, const host::Services&) {
    (void)connection.Execute(kWrite);
    const auto rows = connection.Open(kRead);
    (void)rows->Field("ID");
    rows->MoveNext();
    return std::string();
  });
  EXPECT_EQ(result.statements, 2U);
  EXPECT_EQ(result.points, 4U);
  EXPECT_TRUE(result.changes_rows);
  EXPECT_EQ(world.Rows(kRead), std::vector<std::string>{"1"});
}

TEST(SweepTest, SeesASwallowedError) {
  EXPECT_NONFATAL_FAILURE(SweepOnce([](Connection& connection, const host::Services&) {
                            try {
                              (void)connection.Execute(kWrite);
                            } catch (const FlowError&) {
                              return std::string("failed");
                            }
                            return std::string();
                          }),
                          "no error reached the caller");
}

TEST(SweepTest, SeesAnErrorThatWasReplaced) {
  EXPECT_NONFATAL_FAILURE(SweepOnce([](Connection& connection, const host::Services&) {
                            try {
                              (void)connection.Execute(kWrite);
                            } catch (const FlowError& error) {
                              throw InjectedFault(error.what());
                            }
                            return std::string();
                          }),
                          "another error object");
}

TEST(SweepTest, SeesStatementsBehindTheFault) {
  const auto call = [](Connection& connection, const host::Services&) {
    try {
      (void)connection.Open(kRead);
    } catch (const FlowError&) {
      (void)connection.Execute(kWrite);
      throw;
    }
    return std::string();
  };
  World world;
  testing::TestPartResultArray seen;
  {
    const testing::ScopedFakeTestPartResultReporter reporter(
        testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &seen);
    (void)Sweep(world.database(), world.services(), call);
  }
  ASSERT_EQ(seen.size(), 2);
  EXPECT_NE(std::string(seen.GetTestPartResult(0).message()).find("something ran behind the fault"), std::string::npos);
  EXPECT_NE(std::string(seen.GetTestPartResult(1).message()).find("other rows than those"), std::string::npos);
}

TEST(SweepTest, SeesARowSetThatStaysOpen) {
  // Destroyed after the call, while its database is still there.
  World world;
  std::unique_ptr<RowSet> kept;
  EXPECT_NONFATAL_FAILURE((void)Sweep(world.database(), world.services(),
                                      [&](Connection& connection, const host::Services&) {
                                        auto rows = connection.Open(kRead);
                                        try {
                                          (void)connection.Execute(kWrite);
                                        } catch (const FlowError&) {
                                          kept = std::move(rows);
                                          throw;
                                        }
                                        return std::string();
                                      }),
                          "a row set stayed open");
}

TEST(SweepTest, SeesACallThatDoesNotWorkAfterAFault) {
  bool broken = false;
  EXPECT_NONFATAL_FAILURE(SweepOnce([&](Connection& connection, const host::Services&) {
                            try {
                              (void)connection.Execute(kWrite);
                            } catch (const FlowError&) {
                              broken = true;
                              throw;
                            }
                            return std::string(broken ? "broken" : "whole");
                          }),
                          "broken");
}

}  // namespace
}  // namespace talm_flow::test
