/// The program killed at any moment leaves whole calls behind, and a sound database.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "concurrency/approval_flow.h"
#include "support/databases.h"
#include "support/places.h"
#include "support/process.h"
#include "support/rows.h"
#include "support/run_program.h"
#include "talm_flow/host/unit_of_work.h"

namespace talm_flow::test {
namespace {

using Words = std::vector<std::string>;
using Clock = std::chrono::steady_clock;

constexpr int kKilled = 128 + 9;
constexpr unsigned kSeed = 20260131;

class KillTest : public testing::Test {
 protected:
  KillTest() {
    MakeApprovalFlow(*database_);
    (void)database_->Execute("Insert Into TableData12 (name,Days) Values ('kim',1)");
  }

  /// What is to be done next: as often as not the oldest open task, if there is one, else a new flow.
  [[nodiscard]] Words NextCall() {
    AwaitServer();
    Words words = {"--db", database_.url()};
    const auto add = [&words](const Words& more) { words.insert(words.end(), more.begin(), more.end()); };
    const auto approval = Oldest("DataAppID", "DataApp");
    const auto fill_in = Oldest("ID", "InUnitSub");
    switch (std::uniform_int_distribution(0, 3)(random_)) {
      case 0:
        if (!fill_in.empty()) {
          add({"finish", "F" + fill_in});
          return words;
        }
        break;
      case 1:
      case 2:
        if (!approval.empty()) {
          add({"approve", "A" + approval});
          return words;
        }
        break;
      default:
        break;
    }
    add({"run", "approval", "--record", "12/1", "--operator", "kim"});
    return words;
  }

  /// Lets a call run undisturbed. @returns how long it took.
  Clock::duration RunOnce() {
    const auto begin = Clock::now();
    Process process(ProgramPath(), NextCall());
    EXPECT_EQ(process.Wait(), 0);
    return Clock::now() - begin;
  }

  /// @returns whether the call was killed before its end.
  bool RunAndKill(Clock::duration longest) {
    const std::chrono::microseconds most = std::chrono::duration_cast<std::chrono::microseconds>(longest);
    const std::chrono::microseconds life(
        std::uniform_int_distribution<std::chrono::microseconds::rep>(0, most.count())(random_));
    Process process(ProgramPath(), NextCall());
    std::this_thread::sleep_for(life);
    process.Kill();
    const int status = process.Wait();
    EXPECT_TRUE(status == kKilled || status == 0) << status;
    return status == kKilled;
  }

  /// Each step of each instance did all of what it does, or nothing.
  void ExpectWholeCalls() {
    AwaitServer();
    std::map<std::string, std::string> traces;
    const auto note = [&](const std::string& query) {
      for (const std::string& row : RowsOf(*database_, query)) {
        const auto bar = row.find('|');
        traces[row.substr(0, bar)] += row.substr(bar + 1) + " ";
      }
    };
    note("Select ExecuteID,Appover From DataApp Order By DataAppID");
    note("Select ExecuteID,Command,AppFinished From WorkFlowExecute Order By ID");
    note("Select ExecuteID,InPuter From InUnitSub Order By ID");
    note("Select ExecuteID,RootExecuteID-ExecuteID From WorkFlowExecuteID Order By ExecuteID");
    ASSERT_FALSE(traces.empty());
    for (const auto& [instance, trace] : traces) {
      EXPECT_THAT(trace, testing::AnyOf("kim lee C_2|0 C_2|0 0 ",             // started
                                        "kim lee C_2|1 C_2|0 0 ",             // approved once
                                        "kim lee C_2|1 C_2|1 C_97|0 ann 0 ",  // approved
                                        "kim lee C_2|1 C_2|1 C_97|1 ann "))   // ended
          << "instance " << instance;
    }
    EXPECT_THAT(RowsOf(*database_, "Select DataAppID From DataApp Where RelatingID Is Null"), testing::IsEmpty());
  }

  void ExpectSound() {
    AwaitServer();
    const TemporaryFolder folder;
    const auto doctor = RunProgram(ProgramPath(), {"--db", database_.url(), "doctor"}, folder);
    EXPECT_EQ(doctor.status, 0) << doctor.out << doctor.err;
    EXPECT_EQ(doctor.out, "The database is sound.\n");
  }

  /// A server may still be at what it was told last when the program is gone: its turn has to end first.
  void AwaitServer() {
    host::UnitOfWork(*database_).Run([] {});
  }

  CleanDatabase database_{SharedDatabase()};
  std::mt19937 random_{kSeed};

 private:
  [[nodiscard]] std::string Oldest(const std::string& key, const std::string& table) {
    const auto rows = database_->Open("Select Top 1 " + key + " From " + table + " Where Status<2 Order By " + key);
    return rows->AtEnd() ? std::string() : JoinedText(rows->FieldAt(0));
  }
};

TEST_F(KillTest, NoHalfOfACallStays) {
  const int wanted = Bounded(8, 100);
  const int most = wanted * 20;
  auto longest = RunOnce();
  int killed = 0;
  for (int run = 0; killed < wanted; ++run) {
    ASSERT_LT(run, most) << "the program ends before it can be killed";
    if (RunAndKill(longest)) {
      ++killed;
    } else if (run % 5 == 4) {
      longest = RunOnce();
    }
    if (killed % 25 == 24) ExpectWholeCalls();
  }
  ExpectWholeCalls();
  ExpectSound();
  // And it can still be worked with.
  for (int call = 0; call < 5; ++call) (void)RunOnce();
  ExpectWholeCalls();
  ExpectSound();
}

}  // namespace
}  // namespace talm_flow::test
