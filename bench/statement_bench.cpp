/// What a statement costs through the adapter, text in and row out, beside the same on the bare engine with a statement
/// prepared once and its parameters bound. The argument tells where the database is: 0 in memory, 1 in a file.

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "talm_flow/adapters/database.h"

namespace {

constexpr int kSteps = 1000;

/// One flow of a thousand steps, the same for both sides.
std::string StepRow(int step) {
  return "insert into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Serial,Remark,Command) values (7," +
         std::to_string(step) + "," + std::to_string(step - 1) + ",0,'a step','C_11')";
}

void Require(bool done) {
  if (!done) std::abort();
}

/// A new file's name, or nothing for a database in memory.
std::string FreshFile(const benchmark::State& state) {
  if (state.range(0) == 0) return {};
  const auto file = std::filesystem::temp_directory_path() / "talm_flow_statement_bench.db";
  for (const char* const part : {"", "-wal", "-shm"}) std::filesystem::remove(file.string() + part);
  return file.string();
}

std::unique_ptr<talm_flow::adapters::Database> FilledDatabase(const benchmark::State& state) {
  const std::string file = FreshFile(state);
  auto database =
      talm_flow::adapters::Open(file.empty() ? "sqlite::memory:" : "sqlite:" + file + "?synchronous=normal");
  database->CreateTables();
  database->Begin();
  for (int step = 1; step <= kSteps; ++step) (void)database->Execute(StepRow(step));
  database->Commit();
  return database;
}

/// The statement for each step.
std::vector<std::string> Texts(const std::string& fragment) {
  std::vector<std::string> texts;
  for (int step = 1; step <= kSteps; ++step) texts.push_back(fragment + std::to_string(step));
  return texts;
}

struct Finalize {
  void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using BareDatabase = std::unique_ptr<sqlite3, Finalize>;
using BareStatement = std::unique_ptr<sqlite3_stmt, Finalize>;

BareDatabase FilledBareDatabase(const benchmark::State& state) {
  const std::string file = FreshFile(state);
  sqlite3* opened = nullptr;
  Require(sqlite3_open_v2(file.empty() ? ":memory:" : file.c_str(), &opened,
                          SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr) == SQLITE_OK);
  BareDatabase database(opened);
  // The adapter's own settings.
  Require(sqlite3_exec(
              opened,
              "pragma cache_size=-16384; pragma temp_store=memory; pragma journal_mode=wal; pragma synchronous=normal",
              nullptr, nullptr, nullptr) == SQLITE_OK);
  const std::string script = talm_flow::adapters::SchemaScript("sqlite");
  Require(sqlite3_exec(opened, script.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK);
  Require(sqlite3_exec(opened, "begin", nullptr, nullptr, nullptr) == SQLITE_OK);
  for (int step = 1; step <= kSteps; ++step) {
    Require(sqlite3_exec(opened, StepRow(step).c_str(), nullptr, nullptr, nullptr) == SQLITE_OK);
  }
  Require(sqlite3_exec(opened, "commit", nullptr, nullptr, nullptr) == SQLITE_OK);
  return database;
}

BareStatement Prepare(const BareDatabase& database, const std::string& text) {
  sqlite3_stmt* prepared = nullptr;
  Require(sqlite3_prepare_v3(database.get(), text.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &prepared, nullptr) ==
          SQLITE_OK);
  return BareStatement(prepared);
}

std::string ColumnText(sqlite3_stmt* statement, int column) {
  const auto* const bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
  return std::string(bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
}

void PointQueryThroughAdapter(benchmark::State& state) {
  const auto database = FilledDatabase(state);
  const auto texts = Texts("Select Top 1 Command from WorkFlowConstruction where FlowID=7 and FlowNo=");
  std::size_t step = 0;
  for (auto _ : state) {
    const auto rows = database->Open(texts[step++ % kSteps]);
    Require(!rows->AtEnd());
    benchmark::DoNotOptimize(rows->Field("Command"));
  }
}
BENCHMARK(PointQueryThroughAdapter)->Arg(0)->Arg(1);

void PointQueryOnBareEngine(benchmark::State& state) {
  const auto database = FilledBareDatabase(state);
  const auto statement = Prepare(database,
                                 "select Command from WorkFlowConstruction where FlowID=? and FlowNo=? "
                                 "order by WorkFlowConstruction.rowid limit 1");
  int step = 0;
  for (auto _ : state) {
    step = step % kSteps + 1;
    sqlite3_bind_int64(statement.get(), 1, 7);
    sqlite3_bind_int64(statement.get(), 2, step);
    Require(sqlite3_step(statement.get()) == SQLITE_ROW);
    benchmark::DoNotOptimize(ColumnText(statement.get(), 0));
    sqlite3_reset(statement.get());
  }
}
BENCHMARK(PointQueryOnBareEngine)->Arg(0)->Arg(1);

void ChangeThroughAdapter(benchmark::State& state) {
  const auto database = FilledDatabase(state);
  const auto texts = Texts("update WorkFlowConstruction set Remark='another caption' where FlowID=7 and FlowNo=");
  std::size_t step = 0;
  for (auto _ : state) {
    (void)database->Execute(texts[step++ % kSteps]);
  }
}
BENCHMARK(ChangeThroughAdapter)->Arg(0)->Arg(1);

void ChangeOnBareEngine(benchmark::State& state) {
  const auto database = FilledBareDatabase(state);
  const auto statement = Prepare(database, "update WorkFlowConstruction set Remark=? where FlowID=? and FlowNo=?");
  int step = 0;
  for (auto _ : state) {
    step = step % kSteps + 1;
    sqlite3_bind_text(statement.get(), 1, "another caption", -1, SQLITE_STATIC);
    sqlite3_bind_int64(statement.get(), 2, 7);
    sqlite3_bind_int64(statement.get(), 3, step);
    Require(sqlite3_step(statement.get()) == SQLITE_DONE);
    sqlite3_reset(statement.get());
  }
}
BENCHMARK(ChangeOnBareEngine)->Arg(0)->Arg(1);

void ThousandRowsThroughAdapter(benchmark::State& state) {
  const auto database = FilledDatabase(state);
  for (auto _ : state) {
    const auto rows = database->Open("select Top 10000 FlowNo,Remark from WorkFlowConstruction where FlowID=7");
    for (; !rows->AtEnd(); rows->MoveNext()) {
      benchmark::DoNotOptimize(rows->Field("FlowNo"));
      benchmark::DoNotOptimize(rows->Field("Remark"));
    }
  }
  state.SetItemsProcessed(state.iterations() * kSteps);
}
BENCHMARK(ThousandRowsThroughAdapter)->Arg(0)->Arg(1);

void ThousandRowsOnBareEngine(benchmark::State& state) {
  const auto database = FilledBareDatabase(state);
  const auto statement = Prepare(database,
                                 "select FlowNo,Remark from WorkFlowConstruction where FlowID=? "
                                 "order by WorkFlowConstruction.rowid limit 10000");
  for (auto _ : state) {
    sqlite3_bind_int64(statement.get(), 1, 7);
    while (sqlite3_step(statement.get()) == SQLITE_ROW) {
      benchmark::DoNotOptimize(sqlite3_column_int64(statement.get(), 0));
      benchmark::DoNotOptimize(ColumnText(statement.get(), 1));
    }
    sqlite3_reset(statement.get());
  }
  state.SetItemsProcessed(state.iterations() * kSteps);
}
BENCHMARK(ThousandRowsOnBareEngine)->Arg(0)->Arg(1);

}  // namespace
