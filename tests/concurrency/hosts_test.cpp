/// Several hosts on one database at the same time, each with its own process and connection.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "concurrency/approval_flow.h"
#include "support/databases.h"
#include "support/process.h"
#include "support/rows.h"
#include "support/run_program.h"

namespace talm_flow::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kHosts = 8;

class HostsTest : public testing::Test {
 protected:
  HostsTest() { MakeApprovalFlow(*database_); }

  /// Lets all hosts run to their end. @returns the instance of each record.
  std::map<std::string, std::string> RunHosts(int flows) {
    std::vector<std::unique_ptr<Process>> hosts;
    for (int host = 0; host < kHosts; ++host) {
      hosts.push_back(
          std::make_unique<Process>(NeighbourPath("talm_flow_concurrency_worker"),
                                    std::vector<std::string>{database_.url(), std::to_string(flows), FileOf(host)}));
    }
    for (auto& host : hosts) EXPECT_EQ(host->Wait(), 0);
    std::map<std::string, std::string> instances;
    for (int host = 0; host < kHosts; ++host) {
      std::ifstream file(FileOf(host));
      for (std::string record, instance; file >> record >> instance;) {
        EXPECT_TRUE(instances.emplace(record, instance).second) << "two hosts have the record " << record;
      }
    }
    return instances;
  }

  [[nodiscard]] std::vector<std::string> Rows(const std::string& query) { return RowsOf(*database_, query); }

  CleanDatabase database_{SharedDatabase()};
  TemporaryFolder folder_;

 private:
  [[nodiscard]] std::string FileOf(int host) const { return folder_.File(std::to_string(host)); }
};

struct Approval {
  std::string key;
  std::string relation;
  std::string person;
};

TEST_F(HostsTest, NoTaskIsMixedUpLostOrDoubled) {
  const int flows = Bounded(4, 500);
  const auto instances = RunHosts(flows);
  ASSERT_EQ(instances.size(), static_cast<std::size_t>(kHosts * flows));
  std::set<std::string> distinct;
  for (const auto& [record, instance] : instances) distinct.insert(instance);
  EXPECT_EQ(distinct.size(), instances.size()) << "two records have one instance";

  std::map<std::string, std::vector<Approval>> approvals;
  const auto tasks = database_->Open("Select * From DataApp Order By DataAppID");
  for (; !tasks->AtEnd(); tasks->MoveNext()) {
    const auto record = JoinedText(tasks->Field("AppedDataID"));
    const auto owner = instances.find(record);
    ASSERT_NE(owner, instances.end()) << record;
    EXPECT_EQ(JoinedText(tasks->Field("ExecuteID")), owner->second) << "of record " << record;
    EXPECT_EQ(tasks->Field("Status"), Value(2)) << record;
    approvals[owner->second].push_back({JoinedText(tasks->Field("DataAppID")), JoinedText(tasks->Field("RelatingID")),
                                        JoinedText(tasks->Field("Appover"))});
  }
  ASSERT_EQ(approvals.size(), instances.size());
  for (const auto& [instance, pair] : approvals) {
    ASSERT_EQ(pair.size(), 2U) << instance;
    EXPECT_EQ(pair[0].person + pair[1].person, "kimlee") << instance;
    EXPECT_EQ(pair[0].relation, pair[0].key) << instance;
    EXPECT_EQ(pair[1].relation, pair[0].key) << instance;
  }

  std::map<std::string, std::string> fill_ins;
  const auto units = database_->Open("Select * From InUnitSub Order By ID");
  for (; !units->AtEnd(); units->MoveNext()) {
    const auto owner = instances.find(JoinedText(units->Field("DataID")));
    ASSERT_NE(owner, instances.end());
    EXPECT_EQ(JoinedText(units->Field("ExecuteID")), owner->second);
    EXPECT_EQ(units->Field("Status"), Value(2));
    EXPECT_TRUE(fill_ins.emplace(owner->second, JoinedText(units->Field("ID"))).second) << "doubled";
  }
  EXPECT_EQ(fill_ins.size(), instances.size());

  std::map<std::string, std::vector<std::string>> waits;
  const auto rows = database_->Open("Select * From WorkFlowExecute Order By ID");
  for (; !rows->AtEnd(); rows->MoveNext()) {
    EXPECT_EQ(rows->Field("AppFinished"), Value(1));
    waits[JoinedText(rows->Field("ExecuteID"))].push_back(JoinedText(rows->Field("DataAppID")) + " " +
                                                          JoinedText(rows->Field("Appover")));
  }
  EXPECT_EQ(waits.size(), instances.size());
  for (const auto& [instance, waiting] : waits) {
    EXPECT_THAT(waiting, ElementsAre(approvals[instance][0].key + " kim", approvals[instance][1].key + " lee",
                                     fill_ins[instance] + " ann"));
  }

  EXPECT_EQ(Rows("Select ID From TableData12").size(), instances.size());
  for (const char* const table : {"WorkFlowExecuteID", "WorkFlowVariable", "WorkFlowExecuteTimes"}) {
    EXPECT_THAT(Rows(std::string("Select Top 1 * From ") + table), IsEmpty()) << table;
  }
}

}  // namespace
}  // namespace talm_flow::test
