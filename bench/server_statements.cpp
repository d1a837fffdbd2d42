#include "server_statements.h"

#include <algorithm>
#include <stdexcept>

#include "adapters/postgresql_catalog.h"
#include "adapters/rewriter.h"
#include "adapters/sql_text.h"

namespace talm_flow::bench {
namespace {

/// Records what the component and the host's own services hand over.
class Recorder : public Connection {
 public:
  Recorder(Connection& inner, std::vector<std::string>& texts) : inner_(inner), texts_(texts) {}

  std::unique_ptr<RowSet> Execute(std::string_view statement) override {
    texts_.emplace_back(statement);
    return inner_.Execute(statement);
  }
  [[nodiscard]] std::unique_ptr<RowSet> Open(std::string_view query) override {
    texts_.emplace_back(query);
    return inner_.Open(query);
  }

 private:
  Connection& inner_;
  std::vector<std::string>& texts_;
};

}  // namespace

ServerStatements::ServerStatements(const std::string& url, Connection& connection, std::int64_t instance,
                                   std::int64_t task, const std::function<void(Connection&)>& body)
    : connection_(PQconnectdb(url.c_str())) {
  if (PQstatus(connection_.get()) != CONNECTION_OK) throw std::runtime_error(PQerrorMessage(connection_.get()));
  std::vector<std::string> texts;
  Recorder recorder(connection, texts);
  body(recorder);

  adapters::PostgresqlConnection catalog_connection(url);
  adapters::PostgresqlCatalog catalog(catalog_connection);
  adapters::ScannedText scanned;
  for (const std::string& text : texts) {
    scanned.Scan(text);
    const adapters::Rewritten rewritten = adapters::Rewrite(scanned.shape, adapters::PostgresqlDialect(), catalog);
    auto known = std::find(shapes_.begin(), shapes_.end(), rewritten.text);
    if (known == shapes_.end()) known = shapes_.insert(shapes_.end(), rewritten.text);
    Statement& statement = statements_.emplace_back();
    statement.name = "s" + std::to_string(known - shapes_.begin());
    statement.gives = text.find("@@IDENTITY") != text.npos                                       ? Number::kInstance
                      : text.find("DataAppID From DataApp Order By DataAppID Desc") != text.npos ? Number::kTask
                                                                                                 : Number::kNone;
    for (const adapters::Literal& literal : scanned.literals) {
      Parameter& parameter = statement.parameters.emplace_back();
      adapters::AppendUnquoted(literal, parameter.text);
      parameter.number = parameter.text == std::to_string(instance) ? Number::kInstance
                         : parameter.text == std::to_string(task)   ? Number::kTask
                                                                    : Number::kNone;
    }
  }
  for (std::size_t i = 0; i < shapes_.size(); ++i) {
    (void)Checked(PQprepare(connection_.get(), ("s" + std::to_string(i)).c_str(), shapes_[i].c_str(), 0, nullptr));
  }
}

ServerStatements::Result ServerStatements::Checked(PGresult* result) const {
  Result owned(result);
  const ExecStatusType status = PQresultStatus(result);
  if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) throw std::runtime_error(PQresultErrorMessage(result));
  return owned;
}

void ServerStatements::Run() {
  std::string instance;
  std::string task;
  std::vector<const char*> values;
  std::size_t read = 0;
  for (const Statement& statement : statements_) {
    values.clear();
    for (const Parameter& parameter : statement.parameters) {
      values.push_back(parameter.number == Number::kInstance ? instance.c_str()
                       : parameter.number == Number::kTask   ? task.c_str()
                                                             : parameter.text.c_str());
    }
    const Result result = Checked(PQexecPrepared(connection_.get(), statement.name.c_str(),
                                                 static_cast<int>(values.size()), values.data(), nullptr, nullptr, 0));
    for (int row = 0; row < PQntuples(result.get()); ++row) {
      for (int column = 0; column < PQnfields(result.get()); ++column) {
        read += static_cast<std::size_t>(PQgetlength(result.get(), row, column));
        if (column == 0 && statement.gives == Number::kInstance) instance = PQgetvalue(result.get(), row, 0);
        if (column == 0 && statement.gives == Number::kTask) task = PQgetvalue(result.get(), row, 0);
      }
    }
  }
  if (read == 0) throw std::runtime_error("the replay read nothing");
}

}  // namespace talm_flow::bench
