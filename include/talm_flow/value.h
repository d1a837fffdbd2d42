#pragma once

/// The loosely typed value that every public operation takes and gives.
///
/// A `Value` is a regular type: it copies, moves, compares and prints nothing by itself. It keeps what the caller gave
/// it; turning it into a number, a date or a text is the business of talm_flow/conversion.h, so that a number goes into
/// a statement exactly as it was given.

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

namespace talm_flow {

/// The integer types that hold numbers, not truth values or characters.
template <typename T>
concept WholeNumber = std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char>;

class Value {
 public:
  /// In the order of the alternatives held.
  enum class Kind { kNull, kBoolean, kWhole, kDouble, kText };

  Value() noexcept = default;
  Value(std::nullptr_t) noexcept {}
  template <std::same_as<bool> T>
  Value(T boolean) noexcept : held_(boolean) {}
  template <WholeNumber T>
  Value(T whole) noexcept : held_(static_cast<std::int64_t>(whole)) {}
  Value(double number) noexcept : held_(number) {}
  Value(std::string text) noexcept : held_(std::move(text)) {}
  Value(std::string_view text) : held_(std::string(text)) {}
  Value(const char* text) : held_(std::string(text)) {}

  [[nodiscard]] Kind kind() const noexcept { return static_cast<Kind>(held_.index()); }
  [[nodiscard]] bool IsNull() const noexcept { return kind() == Kind::kNull; }
  [[nodiscard]] bool IsBoolean() const noexcept { return kind() == Kind::kBoolean; }
  [[nodiscard]] bool IsWhole() const noexcept { return kind() == Kind::kWhole; }
  [[nodiscard]] bool IsDouble() const noexcept { return kind() == Kind::kDouble; }
  [[nodiscard]] bool IsText() const noexcept { return kind() == Kind::kText; }

  /// What is held, without any conversion. Asking for another kind than `kind()` is a programming error
  /// (std::bad_variant_access).
  [[nodiscard]] bool Boolean() const { return std::get<bool>(held_); }
  [[nodiscard]] std::int64_t Whole() const { return std::get<std::int64_t>(held_); }
  [[nodiscard]] double Double() const { return std::get<double>(held_); }
  [[nodiscard]] const std::string& Text() const& { return std::get<std::string>(held_); }
  [[nodiscard]] std::string&& Text() && { return std::get<std::string>(std::move(held_)); }

  /// Same kind and same content: 1 and 1.0 and "1" are three different values.
  friend bool operator==(const Value&, const Value&) = default;

 private:
  std::variant<std::monostate, bool, std::int64_t, double, std::string> held_;
};

}  // namespace talm_flow
