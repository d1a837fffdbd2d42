#pragma once

/// The client library of PostgreSQL, with errors raised and results freed.

#include <libpq-fe.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "talm_flow/error.h"

namespace talm_flow::adapters {

struct PostgresqlCloser {
  void operator()(PGconn* connection) const { PQfinish(connection); }
  void operator()(PGresult* result) const { PQclear(result); }
};
using PostgresqlResult = std::unique_ptr<PGresult, PostgresqlCloser>;

/// The types that the adapter treats in a way of their own, by the server's numbers.
namespace postgresql_type {
inline constexpr Oid kBoolean = 16;
inline constexpr Oid kBytes = 17;
inline constexpr Oid kName = 19;
inline constexpr Oid kWhole64 = 20;
inline constexpr Oid kWhole16 = 21;
inline constexpr Oid kWhole32 = 23;
inline constexpr Oid kText = 25;
inline constexpr Oid kObject = 26;
inline constexpr Oid kReal32 = 700;
inline constexpr Oid kReal64 = 701;
inline constexpr Oid kBlankPadded = 1042;
inline constexpr Oid kLimitedText = 1043;
inline constexpr Oid kNumeric = 1700;

[[nodiscard]] constexpr bool IsText(Oid type) {
  return type == kText || type == kLimitedText || type == kBlankPadded || type == kName;
}
[[nodiscard]] constexpr bool IsWhole(Oid type) { return type == kWhole64 || type == kWhole32 || type == kWhole16; }
}  // namespace postgresql_type

/// Values for the parameters of a statement. Those given by address outlive the execution.
class PostgresqlParameters {
 public:
  void Clear();
  void AddNull();
  void AddWhole(std::int64_t number);
  /// In the server's text form; copied.
  void AddWritten(std::string_view written);
  /// By address, byte for byte; for texts and for binary content.
  void AddBytes(std::string_view bytes);
  /// The same with the bytes copied.
  void AddCopy(std::string_view bytes);

  [[nodiscard]] int count() const { return static_cast<int>(lengths_.size()); }
  [[nodiscard]] const char* const* values();
  [[nodiscard]] const int* lengths() const { return lengths_.data(); }
  [[nodiscard]] const int* formats() const { return formats_.data(); }

 private:
  struct Place {
    const char* address;  // null: in the buffer, or Null when there is no offset either
    std::size_t offset;
  };
  void Add(const char* address, std::size_t offset, std::size_t length, bool binary);

  std::vector<Place> places_;
  std::vector<int> lengths_;
  std::vector<int> formats_;
  std::vector<const char*> values_;
  std::string buffer_;
};

class PostgresqlConnection {
 public:
  /// @param url  as the client library reads it. Without a time limit of its own, connecting takes ten seconds at most.
  /// @throws ArgumentError  the URL is malformed.
  /// @throws DatabaseError  no server answers, or it refuses.
  explicit PostgresqlConnection(const std::string& url);

  /// A text without parameters; it may hold several statements. Errors name `shown`.
  PostgresqlResult Run(const std::string& text, std::string_view shown);
  /// One statement, which the server forgets again.
  PostgresqlResult RunOnce(const std::string& text, PostgresqlParameters& parameters, std::string_view shown);
  void Prepare(const std::string& name, const std::string& text, const std::vector<Oid>& types, std::string_view shown);
  /// Types of parameters and columns of a prepared statement.
  PostgresqlResult Describe(const std::string& name, std::string_view shown);
  PostgresqlResult RunPrepared(const std::string& name, PostgresqlParameters& parameters, std::string_view shown);

  [[nodiscard]] PGTransactionStatusType Status() const { return PQtransactionStatus(connection_.get()); }
  [[nodiscard]] bool InTransaction() const;
  [[nodiscard]] PGconn* engine() const { return connection_.get(); }

 private:
  /// Before a statement: the connection stands.
  void RequireConnection(std::string_view shown) const;
  PostgresqlResult Checked(PGresult* result, std::string_view shown);
  void RefuseCopy(ExecStatusType status, std::string_view shown);

  std::unique_ptr<PGconn, PostgresqlCloser> connection_;
};

}  // namespace talm_flow::adapters
