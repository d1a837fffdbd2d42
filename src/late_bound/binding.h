#pragma once

/// From a member function pointer to a row of the table: what the function's parameters are is read from its type.

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "talm_flow/invocation_context.h"
#include "talm_flow/late_bound.h"

namespace talm_flow::late_bound {

/// What the parameters of one call are made from.
struct CallSite {
  Connection& connection;
  std::span<Argument> arguments;
};

[[nodiscard]] Value& SingleAt(std::span<Argument> arguments, std::size_t index);
[[nodiscard]] List& EmptyListAt(std::span<Argument> arguments, std::size_t index);

/// How a parameter of type T takes arguments: which, and how it is made from those that start at an index.
template <typename T>
struct Parameter;

template <>
struct Parameter<Connection&> {
  static constexpr std::array<Passing, 0> kTakes{};
  static Connection& Make(const CallSite& call, std::size_t) { return call.connection; }
};

template <>
struct Parameter<const Value&> {
  static constexpr std::array kTakes{Passing::kIn};
  static const Value& Make(const CallSite& call, std::size_t index) { return SingleAt(call.arguments, index); }
};

template <>
struct Parameter<Value&> {
  static constexpr std::array kTakes{Passing::kByReference};
  static Value& Make(const CallSite& call, std::size_t index) { return SingleAt(call.arguments, index); }
};

template <>
struct Parameter<const Value*> {
  static constexpr std::array kTakes{Passing::kOptional};
  static const Value* Make(const CallSite& call, std::size_t index) {
    return index < call.arguments.size() ? &SingleAt(call.arguments, index) : nullptr;
  }
};

template <>
struct Parameter<List&> {
  static constexpr std::array kTakes{Passing::kList};
  static List& Make(const CallSite& call, std::size_t index) { return EmptyListAt(call.arguments, index); }
};

/// A context that lives as long as the call's full expression and refers to ten arguments.
struct MadeContext {
  InvocationContext context;
  operator InvocationContext&() { return context; }
};

template <>
struct Parameter<InvocationContext&> {
  static constexpr auto kTakes = [] {
    std::array<Passing, 10> takes{};
    takes.fill(Passing::kByReference);
    return takes;
  }();
  static MadeContext Make(const CallSite& call, std::size_t index) {
    const auto at = [&](std::size_t offset) -> Value& { return SingleAt(call.arguments, index + offset); };
    return {{call.connection, at(0), at(1), at(2), at(3), at(4), at(5), at(6), at(7), at(8), at(9)}};
  }
};

template <typename Class, typename Returned, typename... Parameters>
struct Signature {
  /// Whether a connection is handed over, by itself or within a context.
  static constexpr bool kTakesConnection =
      ((std::is_same_v<Parameters, Connection&> || std::is_same_v<Parameters, InvocationContext&>) || ...);

  static constexpr std::size_t kCount = (Parameter<Parameters>::kTakes.size() + ... + 0);

  static constexpr std::array<Passing, kCount> kArguments = [] {
    std::array<Passing, kCount> arguments{};
    auto end = arguments.begin();
    ((end = std::ranges::copy(Parameter<Parameters>::kTakes, end).out), ...);
    return arguments;
  }();

  /// Where each parameter's arguments start.
  static constexpr std::array<std::size_t, sizeof...(Parameters)> kStarts = [] {
    std::array<std::size_t, sizeof...(Parameters)> starts{};
    [[maybe_unused]] std::size_t i = 0;
    [[maybe_unused]] std::size_t start = 0;
    ((starts[i++] = start, start += Parameter<Parameters>::kTakes.size()), ...);
    return starts;
  }();

  template <auto kMember>
  static Result Call(Connection& connection, const host::Services& services, std::span<Argument> arguments) {
    const CallSite call{connection, arguments};
    Class object(services);
    return [&]<std::size_t... I>(std::index_sequence<I...>)->Result {
      if constexpr (std::is_void_v<Returned>) {
        (object.*kMember)(Parameter<Parameters>::Make(call, kStarts[I])...);
        return {};
      } else if constexpr (std::is_same_v<Returned, std::unique_ptr<RowSet>>) {
        return (object.*kMember)(Parameter<Parameters>::Make(call, kStarts[I])...);
      } else {
        return Value((object.*kMember)(Parameter<Parameters>::Make(call, kStarts[I])...));
      }
    }
    (std::index_sequence_for<Parameters...>());
  }
};

template <typename Class, typename Returned, typename... Parameters>
Signature<Class, Returned, Parameters...> SignatureOf(Returned (Class::*)(Parameters...));

/// One row of the table. Does not compile unless there are as many names as arguments, and optional ones come last.
template <auto kMember>
consteval Operation Bind(std::string_view name, std::string_view argument_names) {
  using Bound = decltype(SignatureOf(kMember));
  const auto& arguments = Bound::kArguments;
  const auto commas = static_cast<std::size_t>(std::ranges::count(argument_names, ','));
  if ((argument_names.empty() ? 0 : commas + 1) != arguments.size()) {
    throw std::invalid_argument("as many names as arguments are needed");
  }
  const auto first_optional = std::ranges::find(arguments, Passing::kOptional);
  if (std::any_of(first_optional, arguments.end(), [](Passing passing) { return passing != Passing::kOptional; })) {
    throw std::invalid_argument("optional arguments come last");
  }
  return {.name = name,
          .argument_names = argument_names,
          .arguments = arguments,
          .required = static_cast<std::size_t>(first_optional - arguments.begin()),
          .takes_connection = Bound::kTakesConnection,
          .thunk = &Bound::template Call<kMember>};
}

}  // namespace talm_flow::late_bound
