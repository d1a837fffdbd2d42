#pragma once

/// @file
/// All public operations of `Command`, `Construction`, `InOut` and `Name` by name, for callers that know the name only
/// at run time: scripts, remote callers, the command line.
///
///   const auto& operation = late_bound::Resolve("Name.GetAll");
///   std::vector<late_bound::Argument> arguments = {7, nullptr, nullptr, nullptr};
///   auto result = late_bound::Call(operation, connection, services, arguments);
///
/// Arguments go by position, without the connection, which is handed over apart. By-reference arguments are written
/// back into the vector. Names compare exactly, with case. Everything here is constant data and pure functions: any
/// number of threads may use it.

#include <concepts>
#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "talm_flow/error.h"
#include "talm_flow/export.h"
#include "talm_flow/host/connection.h"
#include "talm_flow/host/services.h"
#include "talm_flow/value.h"

namespace talm_flow::late_bound {

/// The content of a list argument.
using List = std::vector<std::string>;

/// One argument: a single value, or a list of texts (`ExpressToArr` alone gives one).
class TALM_FLOW_API Argument : public std::variant<Value, List> {
 public:
  /// What an argument is made of.
  using Base = std::variant<Value, List>;
  /// Null.
  Argument() = default;
  /// A single value.
  Argument(Value value) : Base(std::move(value)) {}
  /// A list of texts.
  Argument(List list) : Base(std::move(list)) {}
  /// A single value from whatever a `Value` is made from.
  template <typename T>
  requires std::constructible_from<Value, T> Argument(T value) : Base(Value(std::move(value))) {}

  /// Whether a list is held.
  [[nodiscard]] bool IsList() const noexcept { return index() == 1; }
  /// The single value held; asking for the other form is a programming error (std::bad_variant_access).
  [[nodiscard]] const Value& Single() const { return std::get<Value>(*this); }
  /// The list held; asking for the other form is a programming error (std::bad_variant_access).
  [[nodiscard]] const List& Items() const { return std::get<List>(*this); }
};

/// What an operation gives: nothing, a value, or rows that the caller reads and closes while the connection is open.
using Result = std::variant<std::monostate, Value, std::unique_ptr<RowSet>>;

/// How an operation takes an argument.
enum class Passing {
  kIn,           ///< read only
  kByReference,  ///< read, written, or both
  kList,         ///< a list of texts that the operation writes; what was there before is dropped
  kOptional,     ///< read only; may be left off
};

/// One public operation.
struct TALM_FLOW_API Operation {
  /// Calls the operation; the arguments have been counted.
  using Thunk = Result (*)(Connection&, const host::Services&, std::span<Argument>);

  std::string_view name;               ///< "Class.Operation"
  std::string_view argument_names;     ///< joined by ","
  std::span<const Passing> arguments;  ///< how each is taken, in their order
  std::size_t required = 0;            ///< arguments that must be given; those behind them may be left off
  bool takes_connection = false;       ///< as its first argument; the others work on texts alone
  Thunk thunk = nullptr;               ///< `Call` is the safe way to it

  /// The fewest arguments that a call may have.
  [[nodiscard]] std::size_t MinArguments() const { return required; }
  /// The most arguments that a call may have.
  [[nodiscard]] std::size_t MaxArguments() const { return arguments.size(); }
  /// Whether the operation may write the argument at 0-based `index` (below `MaxArguments`).
  [[nodiscard]] bool IsByReference(std::size_t index) const {
    return arguments[index] == Passing::kByReference || arguments[index] == Passing::kList;
  }
  /// What stands before the ".": "Command", "Construction", "InOut" or "Name".
  [[nodiscard]] std::string_view ClassName() const { return name.substr(0, name.find('.')); }
  /// The name of the argument at 0-based `index`.
  [[nodiscard]] std::string_view ArgumentName(std::size_t index) const;
};

/// The name's class is none of the four.
class TALM_FLOW_API UnknownClassError : public ArgumentError {
 public:
  using ArgumentError::ArgumentError;
};

/// The class is known, the operation is not.
class TALM_FLOW_API UnknownOperationError : public ArgumentError {
 public:
  using ArgumentError::ArgumentError;
};

/// Too few or too many arguments; the message names them and tells what the operation takes.
class TALM_FLOW_API ArgumentCountError : public ArgumentError {
 public:
  using ArgumentError::ArgumentError;
};

/// All operations, class by class, in the order of their declaration.
[[nodiscard]] TALM_FLOW_API std::span<const Operation> Operations();

/// The operation of that name, or null.
[[nodiscard]] TALM_FLOW_API const Operation* Find(std::string_view name);

/// As `Find`. @throws UnknownClassError, UnknownOperationError
[[nodiscard]] TALM_FLOW_API const Operation& Resolve(std::string_view name);

/// Throws unless the operation takes so many arguments. @throws ArgumentCountError
TALM_FLOW_API void RequireCount(const Operation& operation, std::size_t count);

/// Calls an operation. When it throws, by-reference arguments keep what it wrote until then.
/// @throws ArgumentCountError  too few or too many arguments.
/// @throws ArgumentError       a list stands where a single value belongs.
/// and whatever the operation throws.
[[nodiscard]] TALM_FLOW_API Result Call(const Operation& operation, Connection& connection,
                                        const host::Services& services, std::span<Argument> arguments);

}  // namespace talm_flow::late_bound
