#pragma once

/// The statements of one instance as a PostgreSQL server sees them, replayed on the client library without component
/// and adapter: each shape prepared once, its values as parameters in their text form, every column of every row read.
///
/// The numbers that differ from instance to instance are recognised because the recorded instance is given numbers that
/// nothing else has; a replay takes them from the rows of the statements that ask for them.

#include <libpq-fe.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "talm_flow/host/connection.h"

namespace talm_flow::bench {

class ServerStatements {
 public:
  /// Runs `body` once with a connection that records what goes through it, the host's own queries included.
  /// @param url  of the database that `connection` is connected to; the replay has a connection of its own.
  /// @param instance, task  the numbers that the recorded instance and its task have.
  ServerStatements(const std::string& url, Connection& connection, std::int64_t instance, std::int64_t task,
                   const std::function<void(Connection&)>& body);

  [[nodiscard]] std::size_t size() const { return statements_.size(); }
  void Run();

 private:
  enum class Number { kNone, kInstance, kTask };
  struct Parameter {
    std::string text;
    Number number;  // stands in for the text unless none
  };
  struct Statement {
    std::string name;
    std::vector<Parameter> parameters;
    Number gives;  // what the first column of its row is
  };
  struct Close {
    void operator()(PGconn* connection) const { PQfinish(connection); }
    void operator()(PGresult* result) const { PQclear(result); }
  };
  using Result = std::unique_ptr<PGresult, Close>;

  void Record(std::string_view text, std::int64_t instance, std::int64_t task);
  Result Checked(PGresult* result) const;

  std::unique_ptr<PGconn, Close> connection_;
  std::vector<Statement> statements_;
  std::vector<std::string> shapes_;
};

}  // namespace talm_flow::bench
