#pragma once

/// @file
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

#include "talm_flow/export.h"

namespace talm_flow {

/// The integer types that hold numbers, not truth values or characters.
template <typename T>
concept WholeNumber = std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char>;

/// Nothing, a Boolean, a whole number, a double, or a text.
class TALM_FLOW_API Value {
 public:
  /// What a value holds, in the order of the alternatives.
  enum class Kind {
    kNull,     ///< nothing
    kBoolean,  ///< True or False
    kWhole,    ///< a whole number of 64 bits
    kDouble,   ///< a floating-point number
    kText,     ///< a text in UTF-8, or the bytes of binary content
  };

  /// Null.
  Value() noexcept = default;
  /// Null.
  Value(std::nullptr_t) noexcept {}
  /// A Boolean, from `bool` alone: no pointer and no number becomes one.
  template <std::same_as<bool> T>
  Value(T boolean) noexcept : held_(boolean) {}
  /// A whole number. An unsigned one that needs all 64 bits wraps around to a negative one.
  template <WholeNumber T>
  Value(T whole) noexcept : held_(static_cast<std::int64_t>(whole)) {}
  /// A floating-point number.
  Value(double number) noexcept : held_(number) {}
  /// A text in UTF-8.
  Value(std::string text) noexcept : held_(std::move(text)) {}
  /// A text, copied.
  Value(std::string_view text) : held_(std::string(text)) {}
  /// A text that ends with a zero byte, copied; not the null pointer.
  Value(const char* text) : held_(std::string(text)) {}
  /// A copy. @throws std::bad_alloc  no memory for the text.
  Value(const Value& other) : held_(CopyOf(other.held_)) {}
  /// What the other held; it keeps its kind, and an unknown text if it held one.
  Value(Value&& other) noexcept = default;
  /// A copy; unchanged when there is no memory for the text.
  Value& operator=(const Value& other) = default;
  /// What the other held, as in the construction.
  Value& operator=(Value&& other) noexcept = default;
  ~Value() = default;

  /// What is held.
  [[nodiscard]] Kind kind() const noexcept { return static_cast<Kind>(held_.index()); }
  /// Whether nothing is held.
  [[nodiscard]] bool IsNull() const noexcept { return kind() == Kind::kNull; }
  /// Whether a Boolean is held.
  [[nodiscard]] bool IsBoolean() const noexcept { return kind() == Kind::kBoolean; }
  /// Whether a whole number is held.
  [[nodiscard]] bool IsWhole() const noexcept { return kind() == Kind::kWhole; }
  /// Whether a floating-point number is held.
  [[nodiscard]] bool IsDouble() const noexcept { return kind() == Kind::kDouble; }
  /// Whether a text is held.
  [[nodiscard]] bool IsText() const noexcept { return kind() == Kind::kText; }

  /// The Boolean held, without any conversion. This and the next ones: asking for another kind than `kind()` is a
  /// programming error (std::bad_variant_access).
  [[nodiscard]] bool Boolean() const { return std::get<bool>(held_); }
  /// The whole number held.
  [[nodiscard]] std::int64_t Whole() const { return std::get<std::int64_t>(held_); }
  /// The floating-point number held.
  [[nodiscard]] double Double() const { return std::get<double>(held_); }
  /// The text held; valid as long as this value.
  [[nodiscard]] const std::string& Text() const& { return std::get<std::string>(held_); }
  /// The text held, to be moved out of a value that is given up.
  [[nodiscard]] std::string&& Text() && { return std::get<std::string>(std::move(held_)); }

  /// Same kind and same content: 1 and 1.0 and "1" are three different values.
  friend bool operator==(const Value&, const Value&) = default;

 private:
  using Held = std::variant<std::monostate, bool, std::int64_t, double, std::string>;

  /// A text is copied before there is a variant: where the memory for it is short, a variant's own copying leaves one
  /// behind that holds nothing, and the library of g++ 12 crashes when it destroys that.
  static Held CopyOf(const Held& held) {
    if (const auto* const text = std::get_if<std::string>(&held)) return Held(std::in_place_type<std::string>, *text);
    return held;
  }

  Held held_;
};

}  // namespace talm_flow
