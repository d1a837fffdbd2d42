/// One of several hosts that work on one database at the same time: it starts flows, approves what they ask for, and
/// ends them, each call of its own in a unit of work.
///
///   talm_flow_concurrency_worker URL COUNT FILE
///
/// For each of COUNT flows FILE gets a line with the record and the instance.

#include <exception>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "talm_flow/adapters/database.h"
#include "talm_flow/command.h"
#include "talm_flow/conversion.h"
#include "talm_flow/host/reference_host.h"
#include "talm_flow/host/unit_of_work.h"

namespace talm_flow::test {
namespace {

constexpr int kFlow = 1;
constexpr int kApprovalStep = 1;
constexpr int kFillInStep = 2;

class Worker {
 public:
  explicit Worker(const std::string& url) : database_(adapters::Open(url, adapters::OpenMode::kExisting)) {}

  /// The life of one flow. @returns its record and its instance.
  [[nodiscard]] std::string RunFlow() {
    Value record;
    Value instance;
    InUnit([&] {
      (void)database_->Execute("Insert Into TableData12 (name,Days) Values ('kim',1)");
      record = Newest("ID", "TableData12");
      command_.FlowExecute(*database_, kFlow, 12, record, "kim", "127.0.0.1", 0, 0);
      instance = Newest("ExecuteID", "WorkFlowExecuteID");
    });
    for (const Value& task : Tasks("DataAppID", "DataApp", instance)) {
      InUnit([&] {
        command_.ChangeAppStatusToFinish(*database_, task, 0);
        if (!command_.NotAppExists(*database_, task)) GoOn(instance, kApprovalStep);
      });
    }
    for (const Value& task : Tasks("ID", "InUnitSub", instance)) {
      InUnit([&] {
        command_.ChangeInUnitSubStatusToFinish(*database_, task);
        GoOn(instance, kFillInStep);
      });
    }
    return JoinedText(record) + " " + JoinedText(instance);
  }

 private:
  template <typename Work>
  void InUnit(const Work& work) {
    host::Repetition repetition;
    repetition.attempts = 50;  // with so many others at work, several may be unlucky often
    host::UnitOfWork(*database_, repetition).Run(work);
  }

  void GoOn(const Value& instance, int step) {
    command_.FlowExecuteAfter(*database_, instance, step);
    command_.EndFlow(*database_, instance);
  }

  [[nodiscard]] Value Newest(const std::string& key, const std::string& table) {
    return database_->Open("Select Top 1 " + key + " From " + table + " Order By " + key + " Desc")->FieldAt(0);
  }

  [[nodiscard]] std::vector<Value> Tasks(const std::string& key, const std::string& table, const Value& instance) {
    std::vector<Value> tasks;
    const auto rows = database_->Open("Select Top 100 " + key + " From " + table +
                                      " Where ExecuteID=" + JoinedText(instance) + " Order By " + key);
    for (; !rows->AtEnd(); rows->MoveNext()) tasks.push_back(rows->FieldAt(0));
    return tasks;
  }

  std::unique_ptr<adapters::Database> database_;
  host::ReferenceHost host_;
  Command command_{host_.services()};
};

}  // namespace
}  // namespace talm_flow::test

int main(int argc, char** argv) {
  try {
    const std::vector<std::string> words(argv + 1, argv + argc);
    talm_flow::test::Worker worker(words.at(0));
    std::ofstream file(words.at(2));
    for (int left = std::stoi(words.at(1)); left > 0; --left) file << worker.RunFlow() << '\n';
    file.close();
    return file ? 0 : 1;
  } catch (const std::exception& error) {
    std::cerr << "worker: " << error.what() << '\n';
    return 1;
  }
}
