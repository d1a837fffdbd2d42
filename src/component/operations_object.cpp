#include "component/operations_object.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "component/connection_object.h"
#include "component/host_connection.h"
#include "component/row_set_object.h"
#include "component/variant.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::component {
namespace {

using late_bound::Argument;
using late_bound::Operation;
using late_bound::Passing;

/// Members are numbered as the operations stand in the table, from 1.
const Operation* OperationOf(std::int32_t member, std::string_view class_name) {
  const auto operations = late_bound::Operations();
  if (member < 1 || static_cast<std::size_t>(member) > operations.size()) return nullptr;
  const Operation& operation = operations[static_cast<std::size_t>(member) - 1];
  return operation.ClassName() == class_name ? &operation : nullptr;
}

/// Stands where an operation takes no connection.
class NoConnection : public Connection {
 public:
  std::unique_ptr<RowSet> Execute(std::string_view) override { throw DatabaseError("no connection was given"); }
  [[nodiscard]] std::unique_ptr<RowSet> Open(std::string_view) override {
    throw DatabaseError("no connection was given");
  }
};

/// The connection that a call is given as its first argument: one of our own is used as it is, any other object by its
/// late binding.
class GivenConnection {
 public:
  GivenConnection(const Operation& operation, const Use& use) {
    if (!operation.takes_connection) {
      connection_ = &none_;
      return;
    }
    if (use.count() == 0) throw Refusal{TALM_BAD_PARAMETER_COUNT, {}};
    TalmUnknown* const object = ObjectIn(use[0]);
    if (object == nullptr) throw Refusal{TALM_TYPE_MISMATCH, 0};
    if (auto* const ours = dynamic_cast<ConnectionObject*>(Object::FromHere(object))) {
      kept_ = ours->database();
      connection_ = kept_.get();
      return;
    }
    try {
      connection_ = &host_.emplace(object);
    } catch (const Refusal& refusal) {
      throw Refusal{refusal.code, 0};
    }
  }

  [[nodiscard]] Connection& get() const { return *connection_; }
  /// Our own connection, which the rows that it gives keep open; null when it is another.
  [[nodiscard]] const std::shared_ptr<adapters::Database>& kept() const { return kept_; }

 private:
  NoConnection none_;
  std::optional<HostConnection> host_;
  std::shared_ptr<adapters::Database> kept_;
  Connection* connection_;
};

/// How many arguments are given, those left off at the end in the customary way not counted.
std::size_t GivenCount(const Operation& operation, const Use& use, std::size_t first) {
  std::size_t count = use.count() - first;
  while (count > operation.MinArguments() && count <= operation.MaxArguments() && IsMissing(use[first + count - 1])) {
    --count;
  }
  if (count < operation.MinArguments() || count > operation.MaxArguments()) {
    throw Refusal{TALM_BAD_PARAMETER_COUNT, {}};
  }
  return count;
}

Argument ReadArgument(const Use& use, std::size_t index, Passing passing) {
  // What a list holds is dropped anyway, and its variable may hold anything.
  if (passing == Passing::kList) return Value();
  Value value = ArgumentOf(use, index);
  return value;
}

/// Writes what the operation changed into the caller's variables; the others keep their own types.
void WriteChanged(const Use& use, std::size_t first, const std::vector<Argument>& before,
                  const std::vector<Argument>& after) {
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (!IsByReference(use[first + i]) || after[i] == before[i]) continue;
    try {
      WriteBack(use[first + i], after[i]);
    } catch (const Refusal& refusal) {
      throw Refusal{refusal.code, first + i};
    }
  }
}

void GiveResult(const Use& use, late_bound::Result result, const GivenConnection& connection) {
  if (use.result == nullptr) return;
  if (const auto* const value = std::get_if<Value>(&result)) {
    Hold(*use.result, *value);
  } else if (auto* const rows = std::get_if<std::unique_ptr<RowSet>>(&result)) {
    Hold(*use.result, RowsForHost(std::move(*rows), connection.kept()));
  }
}

}  // namespace

std::optional<std::int32_t> OperationsObject::Find(std::string_view name) const {
  const auto operations = late_bound::Operations();
  const auto found = std::ranges::find_if(operations, [&](const Operation& operation) {
    return operation.ClassName() == class_name_ &&
           EqualIgnoringAsciiCase(operation.name.substr(class_name_.size() + 1), name);
  });
  if (found == operations.end()) return std::nullopt;
  return static_cast<std::int32_t>(found - operations.begin()) + 1;
}

void OperationsObject::Invoke(const Use& use) {
  const Operation* const operation = OperationOf(use.member, class_name_);
  if (operation == nullptr || (use.how & kTalmMethod) == 0) throw Refusal{TALM_MEMBER_NOT_FOUND, {}};
  const std::size_t first = operation->takes_connection ? 1 : 0;
  if (use.count() < first) throw Refusal{TALM_BAD_PARAMETER_COUNT, {}};
  const std::size_t count = GivenCount(*operation, use, first);
  const GivenConnection connection(*operation, use);
  std::vector<Argument> before;
  before.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    before.push_back(ReadArgument(use, first + i, operation->arguments[i]));
  }
  std::vector<Argument> arguments = before;
  late_bound::Result result;
  try {
    result = late_bound::Call(*operation, connection.get(), host_.services(), arguments);
  } catch (...) {
    // The caller's variables hold what was written until then, as those of a C++ caller do.
    try {
      WriteChanged(use, first, before, arguments);
    } catch (const Refusal&) {
      // The operation's own error comes first.
    }
    throw;
  }
  WriteChanged(use, first, before, arguments);
  GiveResult(use, std::move(result), connection);
}

}  // namespace talm_flow::component
