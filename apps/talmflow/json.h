#pragma once

/// Values, rows and arguments as JSON. Objects keep their members in order, so that rows show the columns of the query.

#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "talm_flow/late_bound.h"

namespace talm_flow::program {

using Json = nlohmann::ordered_json;

[[nodiscard]] Json ToJson(const Value& value);
[[nodiscard]] Json ToJson(const late_bound::Argument& argument);
/// The rows that are left, as objects by column name.
[[nodiscard]] Json ToJson(RowSet& rows);
/// Null for an operation without a result.
[[nodiscard]] Json ToJson(late_bound::Result& result);

/// The value that a JSON scalar stands for; nothing for arrays and objects. A number beyond 64 bits is a double.
[[nodiscard]] std::optional<Value> FromJson(const nlohmann::json& scalar);

/// The text of a JSON value on one line, or indented. Bytes that are no UTF-8 become U+FFFD.
[[nodiscard]] std::string Dump(const Json& json, int indent = -1);

}  // namespace talm_flow::program
