#include <algorithm>

#include "late_bound/binding.h"

namespace talm_flow::late_bound {

std::string_view Operation::ArgumentName(std::size_t index) const {
  std::string_view rest = argument_names;
  for (; index > 0; --index) rest.remove_prefix(rest.find(',') + 1);
  return rest.substr(0, rest.find(','));
}

const Operation& Resolve(std::string_view name) {
  if (const Operation* const operation = Find(name)) return *operation;
  const auto class_name = name.substr(0, name.find('.'));
  const auto operations = Operations();
  if (std::ranges::find(operations, class_name, &Operation::ClassName) == operations.end()) {
    throw UnknownClassError("there is no class \"" + std::string(class_name) +
                            "\"; the classes are Command, Construction, InOut and Name");
  }
  throw UnknownOperationError("there is no operation \"" + std::string(name) + "\"");
}

void RequireCount(const Operation& operation, std::size_t count) {
  if (count >= operation.MinArguments() && count <= operation.MaxArguments()) return;
  std::string message(operation.name);
  if (count < operation.MinArguments()) {
    message += ": the argument " + std::string(operation.ArgumentName(count)) + " is missing";
  } else {
    const auto surplus = count - operation.MaxArguments();
    message += ": " + std::to_string(surplus) + (surplus == 1 ? " argument" : " arguments") + " too many";
  }
  message += "; expected (" + std::string(operation.argument_names) + ")";
  throw ArgumentCountError(message);
}

Result Call(const Operation& operation, Connection& connection, const host::Services& services,
            std::span<Argument> arguments) {
  RequireCount(operation, arguments.size());
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (arguments[i].IsList() && operation.arguments[i] != Passing::kList) {
      throw ArgumentError(std::string(operation.name) + ": the argument " + std::string(operation.ArgumentName(i)) +
                          " takes a single value, no list");
    }
  }
  return operation.thunk(connection, services, arguments);
}

Value& SingleAt(std::span<Argument> arguments, std::size_t index) { return std::get<Value>(arguments[index]); }

List& EmptyListAt(std::span<Argument> arguments, std::size_t index) { return arguments[index].emplace<List>(); }

}  // namespace talm_flow::late_bound
