#include <algorithm>
#include <utility>

#include "adapters/odbc_database.h"
#include "talm_flow/text.h"

namespace talm_flow::adapters {
namespace {

bool Contains(std::span<const int> numbers, int number) {
  return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

bool MeansLostConnection(std::string_view sql_state) { return sql_state.starts_with("08"); }

/// Set at the beginning of a transaction and gone when the transaction is.
constexpr std::string_view kWholeTransaction = "whole_unit_of_work";

}  // namespace

void OdbcDatabase::Begin() {
  if (in_transaction_) throw DatabaseError("a transaction is open already");
  StartTransaction();
  in_transaction_ = true;
  savepoints_ = 0;
  failure_.reset();
  try {
    TakeTurn();
  } catch (...) {
    in_transaction_ = false;
    if (!lost_) {
      OdbcStatement statement(connection_);
      statement.ExecuteDirect("rollback", "rollback");
      LetGo();
    }
    throw;
  }
}

void OdbcDatabase::StartTransaction() {
  if (!in_cluster_ || engine_.cluster_hold.empty()) {
    RunOwn(engine_.begin);
    return;
  }
  RunOwn(engine_.cluster_hold);
  holds_back_ = true;
  try {
    RunOwn(engine_.begin);
    RunOwn(std::string(engine_.savepoint).append(kWholeTransaction));
  } catch (...) {
    if (!lost_) LetGo();
    throw;
  }
}

void OdbcDatabase::TakeTurn() {
  if (engine_.take_turn.empty()) return;
  try {
    RunOwn(engine_.take_turn);
  } catch (const DatabaseError& error) {
    constexpr std::string_view kNoSuchTable = "42S02";
    if (engine_.create_turn.empty() || StateOf(error).sql_state != kNoSuchTable) throw;
    RunOwn(engine_.create_turn);
    StartTransaction();
    RunOwn(engine_.take_turn);
  }
}

void OdbcDatabase::CheckThatNothingIsLost() {
  try {
    RunOwn(std::string(engine_.release_savepoint).append(kWholeTransaction));
  } catch (const DatabaseError& error) {
    constexpr int kNoSuchSavepoint = 1305;
    if (StateOf(error).native != kNoSuchSavepoint) throw;
    throw DatabaseError("the cluster took the transaction back", "commit", "40001");
  }
}

void OdbcDatabase::LetGo() {
  if (!std::exchange(holds_back_, false)) return;
  RunOwn(engine_.cluster_let_go);
}

void OdbcDatabase::Commit() {
  if (failure_) {
    throw DatabaseError(
        "the transaction was not kept, because a statement in it failed: " + std::string(failure_->what()),
        failure_->Statement(), failure_->State());
  }
  if (holds_back_) CheckThatNothingIsLost();
  RunOwn("commit");
  in_transaction_ = false;
  savepoints_ = 0;
  LetGo();
}

void OdbcDatabase::Rollback() {
  in_transaction_ = false;
  savepoints_ = 0;
  failure_.reset();
  RunOwn("rollback");
  LetGo();
}

std::string OdbcDatabase::SavepointName() const { return "unit_of_work_" + std::to_string(savepoints_); }

void OdbcDatabase::SetSavepoint() {
  ++savepoints_;
  try {
    RunOwn(std::string(engine_.savepoint) + SavepointName());
  } catch (const DatabaseError&) {
    --savepoints_;
    throw;
  }
}

void OdbcDatabase::ReleaseSavepoint() {
  if (!engine_.release_savepoint.empty()) RunOwn(std::string(engine_.release_savepoint) + SavepointName());
  --savepoints_;
}

void OdbcDatabase::RollbackToSavepoint() {
  RunOwn(std::string(engine_.rollback_to_savepoint) + SavepointName());
  if (failure_ && savepoints_ <= failure_depth_) failure_.reset();
  ReleaseSavepoint();
}

void OdbcDatabase::Note(const DatabaseError& error) {
  const OdbcState state = StateOf(error);
  if (MeansLostConnection(state.sql_state)) lost_ = true;
  if (!in_transaction_ || failure_) return;
  const bool taken_back = Contains(engine_.taken_back, state.native);
  if (!taken_back && !engine_.failure_ends_transaction) return;
  failure_ = error;
  failure_depth_ = taken_back ? 0 : savepoints_;
}

void OdbcDatabase::NoteStatement(std::string_view text) {
  const std::string_view trimmed = TrimBlanks(text);
  const std::string_view word = trimmed.substr(0, trimmed.find_first_of(" \t\r\n;"));
  const auto is = [word](std::string_view sought) { return EqualIgnoringAsciiCase(word, sought); };
  if (is("begin") || is("start")) {
    in_transaction_ = true;
  } else if (is("commit") || is("end") || (is("rollback") && TrimBlanks(trimmed.substr(word.size())).empty())) {
    in_transaction_ = false;
    failure_.reset();
    savepoints_ = 0;
    LetGo();
  }
}

void OdbcDatabase::RefuseInEndedTransaction(std::string_view text) const {
  if (!failure_ || engine_.failure_ends_transaction) return;
  // Outside of the transaction that the server has ended the statement would be kept.
  throw DatabaseError(failure_->what(), std::string(text), failure_->State());
}

bool OdbcDatabase::MayBeRepeated(const DatabaseError& error) const {
  if (lost_) return false;
  const OdbcState state = StateOf(error);
  return state.sql_state == "40001" || state.sql_state == "40P01" || Contains(engine_.disturbed, state.native);
}

}  // namespace talm_flow::adapters
