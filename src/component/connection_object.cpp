#include "component/connection_object.h"

#include <string_view>
#include <utility>
#include <vector>

#include "component/row_set_object.h"
#include "component/variant.h"
#include "talm_flow/conversion.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::component {
namespace {

std::string TextOf(const Use& use, std::size_t index) {
  const Value value = ArgumentOf(use, index);
  if (!value.IsText()) throw Refusal{TALM_TYPE_MISMATCH, index};
  return value.Text();
}

/// "Days:InputNum,Reason:InputText", taken apart.
std::vector<std::pair<std::string, std::string>> InputUnits(std::string_view text) {
  std::vector<std::pair<std::string, std::string>> units;
  for (const std::string_view unit : Split(text, ",")) {
    const auto colon = unit.find(':');
    if (colon == std::string_view::npos) {
      throw ArgumentError("\"" + std::string(unit) + "\" is no input unit; one is Code:Type");
    }
    units.emplace_back(TrimBlanks(unit.substr(0, colon)), TrimBlanks(unit.substr(colon + 1)));
  }
  return units;
}

}  // namespace

const Member<ConnectionObject> ConnectionObject::kMembers[] = {
    {"Open", kTalmMethod, 1, 2, &ConnectionObject::Open},
    {"Execute", kTalmMethod, 1, 1, &ConnectionObject::Execute},
    {"Close", kTalmMethod, 0, 0, &ConnectionObject::Close},
    {"State", kRead, 0, 0, &ConnectionObject::State},
    {"CreateTables", kTalmMethod, 0, 0, &ConnectionObject::CreateTables},
    {"MissingTables", kTalmMethod, 0, 0, &ConnectionObject::MissingTables},
    {"CreateFormTable", kTalmMethod, 2, 2, &ConnectionObject::CreateFormTable},
    {"BeginTrans", kTalmMethod, 0, 0, &ConnectionObject::BeginTrans},
    {"CommitTrans", kTalmMethod, 0, 0, &ConnectionObject::CommitTrans},
    {"RollbackTrans", kTalmMethod, 0, 0, &ConnectionObject::RollbackTrans},
};

const std::shared_ptr<adapters::Database>& ConnectionObject::database() const {
  if (!database_) throw DatabaseError("the connection is not open");
  return database_;
}

void ConnectionObject::Open(const Use& use) {
  if (database_) throw DatabaseError("the connection is open already");
  const bool may_create = use.count() < 2 || IsMissing(use[1]) || ToDouble(ArgumentOf(use, 1)) != 0;
  database_ = adapters::Open(TextOf(use, 0), may_create ? adapters::OpenMode::kCreate : adapters::OpenMode::kExisting);
}

void ConnectionObject::Execute(const Use& use) {
  const std::string statement = TextOf(use, 0);
  auto rows = database()->Execute(statement);
  if (use.result == nullptr) return;
  Hold(*use.result, rows ? RowsForHost(std::move(rows), database_) : Reference<TalmDispatch>());
}

void ConnectionObject::Close(const Use&) { database_.reset(); }

void ConnectionObject::State(const Use& use) {
  if (use.result != nullptr) Hold(*use.result, Value(database_ ? 1 : 0));
}

void ConnectionObject::CreateTables(const Use&) { database()->CreateTables(); }

void ConnectionObject::MissingTables(const Use& use) {
  const auto missing = database()->MissingTables();
  if (use.result != nullptr) Hold(*use.result, missing);
}

void ConnectionObject::CreateFormTable(const Use& use) {
  const Value table_id = ArgumentOf(use, 0);
  database()->CreateFormTable(ToInt32(table_id), InputUnits(TextOf(use, 1)));
}

void ConnectionObject::BeginTrans(const Use&) { database()->Begin(); }

void ConnectionObject::CommitTrans(const Use&) { database()->Commit(); }

void ConnectionObject::RollbackTrans(const Use&) { database()->Rollback(); }

}  // namespace talm_flow::component
