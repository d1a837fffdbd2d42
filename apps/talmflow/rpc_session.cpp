#include "rpc_session.h"

#include <new>
#include <utility>

#include "talm_flow/host/unit_of_work.h"

namespace talm_flow::program {
namespace {

constexpr int kParseError = -32700;
constexpr int kInvalidRequest = -32600;
constexpr int kMethodNotFound = -32601;
constexpr int kInvalidParams = -32602;
constexpr int kInternalError = -32603;
constexpr int kFlowError = -32000;

/// The parameters of a request do not fit its method.
struct InvalidParams {
  std::string message;
  Json data = Json::object();
};

bool IsId(const nlohmann::json& id) { return id.is_null() || id.is_string() || id.is_number(); }

bool IsCall(const nlohmann::json& request) {
  const auto version = request.find("jsonrpc");
  const auto method = request.find("method");
  const auto params = request.find("params");
  return version != request.end() && *version == "2.0" && method != request.end() && method->is_string() &&
         (params == request.end() || params->is_structured());
}

/// A member "result" or "error" completed to an answer.
Json Complete(Json&& answer, const nlohmann::json& id) {
  Json complete = {{"jsonrpc", "2.0"}, {"id", id}};
  for (auto& [member, value] : answer.items()) complete[member] = std::move(value);
  return complete;
}

/// What is missing or surplus, and what belongs there.
Json CountData(const late_bound::Operation& operation, std::size_t count) {
  Json data = Json::object();
  Json expected = Json::array();
  for (std::size_t i = 0; i < operation.MaxArguments(); ++i) expected.push_back(operation.ArgumentName(i));
  if (count < operation.MinArguments()) {
    Json missing = Json::array();
    for (std::size_t i = count; i < operation.MinArguments(); ++i) missing.push_back(operation.ArgumentName(i));
    data["missing"] = std::move(missing);
  } else {
    data["surplus"] = count - operation.MaxArguments();
  }
  data["expected"] = std::move(expected);
  return data;
}

std::vector<late_bound::Argument> Arguments(const late_bound::Operation& operation, const nlohmann::json& params) {
  try {
    late_bound::RequireCount(operation, params.size());
  } catch (const late_bound::ArgumentCountError& error) {
    throw InvalidParams{error.what(), CountData(operation, params.size())};
  }
  std::vector<late_bound::Argument> arguments;
  arguments.reserve(params.size());
  for (std::size_t i = 0; i < params.size(); ++i) {
    auto value = FromJson(params[i]);
    if (!value) {
      throw InvalidParams{std::string(operation.name) + ": the argument " + std::string(operation.ArgumentName(i)) +
                          " takes null, a Boolean, a number or a text"};
    }
    arguments.emplace_back(*std::move(value));
  }
  return arguments;
}

}  // namespace

RpcSession::RpcSession(adapters::Database& database, const host::Services& services, RpcOptions options)
    : database_(database), services_(services), options_(options), tracing_(database, [this](std::string_view text) {
        if (options_.trace) statements_.emplace_back(text);
      }) {}

std::optional<std::string> RpcSession::Answer(std::string_view line) {
  if (line.find_first_not_of(" \t\r\n") == std::string_view::npos) return std::nullopt;
  statements_.clear();
  try {
    const auto request = nlohmann::json::parse(line);
    const auto answer = request.is_array() ? AnswerBatch(request) : AnswerRequest(request);
    if (!answer) return std::nullopt;
    return Dump(*answer);
  } catch (const nlohmann::json::exception& error) {
    return Dump(Complete(Error(kParseError, error.what()), nullptr));
  } catch (const std::bad_alloc&) {
    statements_.clear();
    return Dump(Complete(Error(kInternalError, "out of memory"), nullptr));
  }
}

std::optional<Json> RpcSession::AnswerBatch(const nlohmann::json& batch) {
  if (batch.empty()) return Complete(Error(kInvalidRequest, "the batch is empty"), nullptr);
  Json answers = Json::array();
  for (const auto& request : batch) {
    if (auto answer = AnswerRequest(request)) answers.push_back(*std::move(answer));
  }
  if (answers.empty()) return std::nullopt;
  return answers;
}

std::optional<Json> RpcSession::AnswerRequest(const nlohmann::json& request) {
  statements_.clear();
  if (!request.is_object()) return Complete(Error(kInvalidRequest, "a request is an object"), nullptr);
  const auto found = request.find("id");
  const bool has_id = found != request.end();
  if (has_id && !IsId(*found)) {
    return Complete(Error(kInvalidRequest, "\"id\" is a text, a number or null"), nullptr);
  }
  const nlohmann::json id = has_id ? *found : nlohmann::json();
  if (!IsCall(request)) {
    return Complete(Error(kInvalidRequest,
                          "a request has \"jsonrpc\": \"2.0\", a text \"method\" and, where it has "
                          "\"params\", an array of them"),
                    id);
  }
  auto answer = AnswerCall(request);
  if (!has_id) return std::nullopt;
  return Complete(std::move(answer), id);
}

Json RpcSession::AnswerCall(const nlohmann::json& request) {
  const auto none = nlohmann::json::array();
  const auto params = request.find("params");
  try {
    return Result(request["method"].get_ref<const std::string&>(), params == request.end() ? none : *params);
  } catch (const InvalidParams& error) {
    return Error(kInvalidParams, error.message, error.data);
  } catch (const late_bound::UnknownClassError& error) {
    return Error(kMethodNotFound, error.what());
  } catch (const late_bound::UnknownOperationError& error) {
    return Error(kMethodNotFound, error.what());
  } catch (const DatabaseError& error) {
    return Error(kFlowError, error.what(), {{"kind", error.Kind()}, {"statement", error.Statement()}});
  } catch (const FlowError& error) {
    return Error(kFlowError, error.what(), {{"kind", error.Kind()}});
  } catch (const std::bad_alloc&) {
    return Error(kInternalError, "out of memory", {{"kind", "OutOfMemory"}});
  } catch (const std::exception& error) {
    return Error(kInternalError, error.what(), {{"kind", "InternalError"}});
  }
}

Json RpcSession::Result(const std::string& method, const nlohmann::json& params) {
  auto result = RunMethod(method, params);
  if (options_.trace) result["statements"] = std::exchange(statements_, {});
  return {{"result", std::move(result)}};
}

Json RpcSession::RunMethod(const std::string& method, const nlohmann::json& params) {
  // A statement may begin or end a transaction: it is alone already.
  if (method == "Connection.Execute") return ExecuteText(params);
  if (!options_.all_or_nothing) return CallOperation(method, params);
  return host::UnitOfWork(database_).Run([&] {
    statements_.clear();
    return CallOperation(method, params);
  });
}

Json RpcSession::CallOperation(const std::string& method, const nlohmann::json& params) {
  const auto& operation = late_bound::Resolve(method);
  if (!params.is_array()) throw InvalidParams{"parameters go by position, as an array"};
  auto arguments = Arguments(operation, params);
  auto returned = late_bound::Call(operation, tracing_, services_, arguments);
  Json result = {{"value", ToJson(returned)}, {"params", Json::array()}};
  for (const auto& argument : arguments) result["params"].push_back(ToJson(argument));
  return result;
}

Json RpcSession::ExecuteText(const nlohmann::json& params) {
  if (!params.is_array() || params.size() != 1 || !params[0].is_string()) {
    throw InvalidParams{"Connection.Execute takes one text, the statement"};
  }
  const auto& text = params[0].get_ref<const std::string&>();
  const auto rows = database_.Execute(text);
  return {{"value", rows ? ToJson(*rows) : Json()}, {"params", {text}}};
}

Json RpcSession::Error(int code, const std::string& message, Json data) const {
  if (options_.trace) data["statements"] = statements_;
  Json error = {{"code", code}, {"message", message}};
  if (!data.empty()) error["data"] = std::move(data);
  return {{"error", std::move(error)}};
}

}  // namespace talm_flow::program
