#include "workspace.h"

#include <charconv>
#include <filesystem>
#include <iostream>

#include "talm_flow/conversion.h"
#include "talm_flow/host/unit_of_work.h"

namespace talm_flow::program {
namespace {

/// The file that a URL names; the empty text for a database in memory or on a server.
std::string FileOf(std::string_view url) {
  constexpr std::string_view kScheme = "sqlite:";
  if (!url.starts_with(kScheme) || url == "sqlite::memory:") return {};
  return std::string(url.substr(kScheme.size(), url.find('?') - kScheme.size()));
}

std::string InitCommand(const std::string& url) {
  return url == GlobalOptions().db ? "talmflow init" : "talmflow --db \"" + adapters::WithoutPassword(url) + "\" init";
}

std::unique_ptr<adapters::Database> OpenDatabase(const GlobalOptions& options, Need need) {
  const auto& url = options.db;
  const auto file = FileOf(url);
  if (need != Need::kAny && !file.empty() && !std::filesystem::exists(file)) {
    throw UserError("there is no database \"" + file + "\"; create it with: " + InitCommand(url));
  }
  try {
    const bool may_create = need == Need::kAny || file.empty();
    return adapters::Open(url, may_create ? adapters::OpenMode::kCreate : adapters::OpenMode::kExisting);
  } catch (const ArgumentError& error) {
    throw UserError(options.db_option + ": " + error.what());
  } catch (const DatabaseError& error) {
    throw UserError("cannot open \"" + adapters::WithoutPassword(url) + "\" as a database: " + error.what());
  }
}

std::vector<std::string> MissingTables(adapters::Database& database, const std::string& url) {
  try {
    return database.MissingTables();
  } catch (const DatabaseError& error) {
    throw UserError("cannot use \"" + adapters::WithoutPassword(url) + "\" as a database: " + error.what());
  }
}

void RequireTables(adapters::Database& database, const std::string& url) {
  const auto missing = MissingTables(database, url);
  if (missing.empty()) return;
  constexpr std::size_t kShown = 3;
  std::string names;
  for (std::size_t i = 0; i < std::min(missing.size(), kShown); ++i) names += (i > 0 ? ", " : "") + missing[i];
  if (missing.size() > kShown) names += " and " + std::to_string(missing.size() - kShown) + " more";
  throw UserError("the database \"" + adapters::WithoutPassword(url) + "\" lacks the " +
                  (missing.size() == 1 ? "table " : "tables ") + names +
                  "; create what is missing with: " + InitCommand(url));
}

host::ReferenceHostOptions HostOptions(const std::string& clock) {
  host::ReferenceHostOptions options;
  if (clock.empty()) return options;
  options.fixed_clock = ParseDate(clock);
  if (!options.fixed_clock) throw UsageError("--clock: \"" + clock + "\" is no date and time (2026-01-31 09:30:00)");
  return options;
}

/// The number that stands in a statement behind a known beginning.
std::optional<std::int64_t> NumberBehind(std::string_view statement, std::string_view beginning) {
  const auto begin = statement.find(beginning);
  if (begin == std::string_view::npos) return std::nullopt;
  statement.remove_prefix(begin + beginning.size());
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(statement.data(), statement.data() + statement.size(), number);
  if (error != std::errc()) return std::nullopt;
  return number;
}

}  // namespace

std::string Told(const FlowError& error) {
  const auto* const refused = dynamic_cast<const DatabaseError*>(&error);
  if (refused == nullptr || refused->Statement().empty()) return error.what();
  return "the database refused the statement \"" + refused->Statement() + "\": " + error.what();
}

Workspace::Workspace(const GlobalOptions& options, Need need)
    : trace_(options.trace),
      together_(!options.no_transaction),
      host_(HostOptions(options.clock)),
      database_(OpenDatabase(options, need)),
      services_(host_.services()),
      watched_(*database_, [this](std::string_view statement) { Watch(statement); }) {
  if (need == Need::kComplete) RequireTables(*database_, options.db);
}

void Workspace::Together(const std::function<void()>& work) {
  auto watched_work = [&] {
    new_instance_.reset();
    place_.clear();
    work();
  };
  try {
    if (together_) {
      host::UnitOfWork(*database_).Run(watched_work);
    } else {
      watched_work();
    }
  } catch (const FlowError& error) {
    throw UserError(place_ + Told(error));
  }
}

std::vector<Row> Workspace::Rows(std::string_view query) {
  std::vector<Row> result;
  const auto rows = database_->Open(query);
  for (; !rows->AtEnd(); rows->MoveNext()) {
    Row& row = result.emplace_back(rows->ColumnCount());
    for (std::size_t i = 0; i < row.size(); ++i) row[i] = rows->FieldAt(i);
  }
  return result;
}

Value Workspace::FirstField(std::string_view query) {
  const auto rows = database_->Open(query);
  return rows->AtEnd() ? Value() : rows->FieldAt(0);
}

std::string Workspace::Literal(std::string_view text) const {
  std::string literal;
  services_.common.SqlText(text, literal);
  return literal;
}

void Workspace::Watch(std::string_view statement) {
  if (trace_) std::cerr << statement << '\n';
  // The component tells neither the instance it makes nor the step it is at, but both stand in its statements.
  if (!new_instance_) new_instance_ = NumberBehind(statement, "update WorkFlowExecuteID set RootExecuteID=");
  const auto flow = NumberBehind(statement, "Select Top 1 Command from WorkFlowConstruction where FlowID=");
  const auto step = NumberBehind(statement, " and FlowNo=");
  if (flow && step) place_ = "in flow " + std::to_string(*flow) + " at step " + std::to_string(*step) + ": ";
}

}  // namespace talm_flow::program
