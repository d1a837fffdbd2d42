#pragma once

/// One public call's way to the database and the host: statement texts are put together here and nowhere else.
///
/// A statement is given as its pieces, in order: fragments (texts written in the source) as they are, numbers and
/// `Value`s bare, `Quoted` values as complete literals made by the host. Every text is built in one buffer that the
/// session keeps, so that a call allocates it once.

#include <charconv>
#include <concepts>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "talm_flow/conversion.h"
#include "talm_flow/host/connection.h"
#include "talm_flow/host/services.h"

namespace talm_flow::db {

/// A text that goes into a statement as a quoted literal. Holds a reference: use it within the statement's expression.
class Quoted {
 public:
  explicit Quoted(const Value& value) : value_(&value) {}
  explicit Quoted(std::string_view text) : text_(text) {}
  explicit Quoted(const std::string& text) : text_(text) {}
  explicit Quoted(const char* text) : text_(text) {}

  void AppendTo(std::string& out, const host::CommonFunctions& common) const;

 private:
  const Value* value_ = nullptr;
  std::string_view text_;
};

class Session {
 public:
  Session(Connection& connection, const host::Services& services) : connection_(connection), services_(services) {
    text_.reserve(kUsualStatementSize);
  }

  [[nodiscard]] Connection& connection() const { return connection_; }
  [[nodiscard]] const host::Services& host() const { return services_; }

  /// Runs a statement without a result.
  template <typename... Pieces>
  void Execute(const Pieces&... pieces) {
    Write(pieces...);
    (void)connection_.Execute(text_);
  }

  /// Opens a query. The row set is independent of the session's buffer.
  template <typename... Pieces>
  [[nodiscard]] std::unique_ptr<RowSet> Open(const Pieces&... pieces) {
    Write(pieces...);
    return connection_.Open(text_);
  }

  /// Whether a query gives any row.
  template <typename... Pieces>
  [[nodiscard]] bool AnyRow(const Pieces&... pieces) {
    const auto rows = Open(pieces...);
    return HasRow(*rows);
  }

  /// One column of a query's first row, or nothing when it gives no row.
  template <typename... Pieces>
  [[nodiscard]] std::optional<Value> FirstField(std::string_view field, const Pieces&... pieces) {
    const auto rows = Open(pieces...);
    if (!HasRow(*rows)) return std::nullopt;
    return rows->Field(field);
  }

  /// As `FirstField`, as a text: the empty text when there is no row. @throws ConversionError  the column is Null.
  template <typename... Pieces>
  [[nodiscard]] std::string FirstText(std::string_view field, const Pieces&... pieces) {
    auto found = FirstField(field, pieces...);
    if (!found) return {};
    if (found->IsText()) return std::move(*found).Text();
    return ToText(*found);
  }

  /// The key that the database gave to the row just inserted, read on the same connection.
  /// @throws DatabaseError  the connection gave no row.
  [[nodiscard]] std::int32_t NewExecuteId();

  /// A row is there when the row set is neither at its end nor before its beginning.
  [[nodiscard]] static bool HasRow(const RowSet& rows) { return !rows.AtEnd() && !rows.BeforeBegin(); }

 private:
  static constexpr std::size_t kUsualStatementSize = 512;

  template <typename... Pieces>
  void Write(const Pieces&... pieces) {
    text_.clear();
    (Append(pieces), ...);
  }
  void Append(std::string_view fragment) { text_.append(fragment); }
  template <std::same_as<Value> T>
  void Append(const T& number) {
    if (number.IsWhole()) {
      Append(number.Whole());
    } else {
      AppendJoined(text_, number);
    }
  }
  template <std::integral T>
  void Append(T number) {
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    text_.append(digits, end);
  }
  void Append(const Quoted& text) { text.AppendTo(text_, services_.common); }

  Connection& connection_;
  const host::Services& services_;
  std::string text_;
};

}  // namespace talm_flow::db
