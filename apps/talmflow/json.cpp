#include "json.h"

#include <limits>

namespace talm_flow::program {

Json ToJson(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::kNull:
      return nullptr;
    case Value::Kind::kBoolean:
      return value.Boolean();
    case Value::Kind::kWhole:
      return value.Whole();
    case Value::Kind::kDouble:
      return value.Double();
    case Value::Kind::kText:
      return value.Text();
  }
  return nullptr;
}

Json ToJson(const late_bound::Argument& argument) {
  if (argument.IsList()) return argument.Items();
  return ToJson(argument.Single());
}

Json ToJson(RowSet& rows) {
  Json result = Json::array();
  for (; !rows.AtEnd(); rows.MoveNext()) {
    Json& row = result.emplace_back(Json::object());
    for (std::size_t i = 0; i < rows.ColumnCount(); ++i) {
      row[std::string(rows.ColumnName(i))] = ToJson(rows.FieldAt(i));
    }
  }
  return result;
}

Json ToJson(late_bound::Result& result) {
  if (const auto* const value = std::get_if<Value>(&result)) return ToJson(*value);
  if (const auto* const rows = std::get_if<std::unique_ptr<RowSet>>(&result)) return ToJson(**rows);
  return nullptr;
}

std::optional<Value> FromJson(const nlohmann::json& scalar) {
  switch (scalar.type()) {
    case nlohmann::json::value_t::null:
      return Value();
    case nlohmann::json::value_t::boolean:
      return Value(scalar.get<bool>());
    case nlohmann::json::value_t::number_integer:
      return Value(scalar.get<std::int64_t>());
    case nlohmann::json::value_t::number_unsigned: {
      const auto number = scalar.get<std::uint64_t>();
      constexpr auto kLargest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
      return number <= kLargest ? Value(static_cast<std::int64_t>(number)) : Value(static_cast<double>(number));
    }
    case nlohmann::json::value_t::number_float:
      return Value(scalar.get<double>());
    case nlohmann::json::value_t::string:
      return Value(scalar.get<std::string>());
    default:
      return std::nullopt;
  }
}

std::string Dump(const Json& json, int indent) { return json.dump(indent, ' ', false, Json::error_handler_t::replace); }

}  // namespace talm_flow::program
