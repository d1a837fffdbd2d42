#include "doctor.h"

#include <algorithm>
#include <iostream>

#include "terminal.h"

namespace talm_flow::program {
namespace {

Json AilmentsAsJson(const Ailments& ailments) {
  Json json = Json::array();
  for (const auto& ailment : ailments) {
    json.push_back({{"severity", ailment.is_error ? "error" : "warning"},
                    {"kind", ailment.kind},
                    {"table", ailment.table},
                    {"problem", ailment.problem},
                    {"advice", ailment.advice}});
  }
  return json;
}

void PrintAilments(const Ailments& ailments, std::size_t errors) {
  for (const auto& ailment : ailments) {
    std::cout << (ailment.is_error ? "error, " : "warning, ") << ailment.kind << ": " << ailment.table << ": "
              << Printable(ailment.problem) << "\n    " << ailment.advice << '\n';
  }
  if (ailments.empty()) {
    std::cout << "The database is sound.\n";
  } else {
    std::cout << Counted(errors, "error") << ", " << Counted(ailments.size() - errors, "warning") << ".\n";
  }
}

class Doctor : public Subcommand {
 public:
  explicit Doctor(CLI::App& parent)
      : Subcommand(parent, "doctor", "Tell what is wrong with a database: tables, indexes, rows that fit nothing",
                   "talmflow doctor\n"
                   "talmflow --db sqlite:office.db doctor --json\n"
                   "\nLooks for missing or changed tables, columns, defaults and indexes, keys that would be given\n"
                   "twice, rows whose owner is gone, and instances that wait for nothing. It changes nothing. The\n"
                   "exit status is 1 when there is an error, 0 when there are warnings at most.") {}

  void Run(const GlobalOptions& options) override {
    Workspace workspace(options, Need::kExisting);
    auto ailments = ExamineTables(workspace.database());
    const bool readable = std::none_of(ailments.begin(), ailments.end(), [](const Ailment& ailment) {
      return ailment.is_error && ailment.kind == "schema" && ailment.problem.ends_with("is missing") &&
             !ailment.problem.starts_with("the index");
    });
    if (readable) {
      auto of_rows = ExamineRows(workspace);
      std::move(of_rows.begin(), of_rows.end(), std::back_inserter(ailments));
    }
    const auto errors = static_cast<std::size_t>(
        std::count_if(ailments.begin(), ailments.end(), [](const Ailment& ailment) { return ailment.is_error; }));
    if (options.json) {
      std::cout << Dump(AilmentsAsJson(ailments), 2) << '\n';
    } else {
      PrintAilments(ailments, errors);
    }
    status_ = errors > 0 ? 1 : 0;
  }

  [[nodiscard]] int Status() const override { return status_; }

 private:
  int status_ = 0;
};

}  // namespace

void AddDoctorSubcommands(CLI::App& parent, Subcommands& all) { all.push_back(std::make_unique<Doctor>(parent)); }

}  // namespace talm_flow::program
