#pragma once

/// JSON-RPC 2.0 over lines: one request or batch a line, one answer a line.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "json.h"
#include "talm_flow/adapters/database.h"
#include "talm_flow/host/services.h"
#include "talm_flow/host/tracing_connection.h"

namespace talm_flow::program {

struct RpcOptions {
  /// Whether every answer tells the statements that its call handed to the connection.
  bool trace = false;
  /// Whether each request is a unit of work: nothing of a failing one stays.
  bool all_or_nothing = false;
};

class RpcSession {
 public:
  RpcSession(adapters::Database& database, const host::Services& services, RpcOptions options);

  /// The answer to a line, or nothing when none is due (notifications, blank lines). Never throws for what a line holds
  /// or does.
  [[nodiscard]] std::optional<std::string> Answer(std::string_view line);

 private:
  [[nodiscard]] std::optional<Json> AnswerBatch(const nlohmann::json& batch);
  [[nodiscard]] std::optional<Json> AnswerRequest(const nlohmann::json& request);
  [[nodiscard]] Json AnswerCall(const nlohmann::json& request);
  [[nodiscard]] Json Result(const std::string& method, const nlohmann::json& params);
  [[nodiscard]] Json RunMethod(const std::string& method, const nlohmann::json& params);
  [[nodiscard]] Json CallOperation(const std::string& method, const nlohmann::json& params);
  [[nodiscard]] Json ExecuteText(const nlohmann::json& params);
  [[nodiscard]] Json Error(int code, const std::string& message, Json data = Json::object()) const;

  adapters::Database& database_;
  host::Services services_;
  RpcOptions options_;
  std::vector<std::string> statements_;
  host::TracingConnection tracing_;
};

}  // namespace talm_flow::program
