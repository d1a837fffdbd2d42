#include "db/reference.h"

#include <algorithm>
#include <limits>

#include "talm_flow/conversion.h"
#include "talm_flow/text.h"

namespace talm_flow::db {
namespace {

struct KeyAndValue {
  std::string_view key;
  std::string_view value;
};

// Split at the first ":"; further ones stay in the value.
std::optional<KeyAndValue> SplitAtColon(std::string_view part) {
  const std::size_t colon = part.find(':');
  if (colon == std::string_view::npos) return std::nullopt;
  return KeyAndValue{part.substr(0, colon), part.substr(colon + 1)};
}

// `name` is in lower case.
bool KeyIs(std::string_view key, std::string_view name) {
  if (EqualIgnoringAsciiCase(key, name)) return true;
  const bool ascii = std::ranges::all_of(key, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  return !ascii && LowerCase(key) == name;
}

std::optional<std::int32_t> NumberFrom1(double number) {
  const double whole = RoundHalfEven(number);
  if (whole < 1 || whole > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
  return static_cast<std::int32_t>(whole);
}

std::optional<std::int32_t> NumberFrom1(std::string_view text) {
  const auto number = ParseNumber(text);
  if (!number) return std::nullopt;
  return NumberFrom1(*number);
}

std::optional<std::int32_t> NumberUnderKey(std::string_view text, std::string_view name) {
  const auto part = SplitAtColon(text);
  if (!part || !KeyIs(part->key, name)) return std::nullopt;
  return NumberFrom1(part->value);
}

}  // namespace

std::string RecordReference::Text() const {
  return "TableID:" + std::to_string(table_id) + ",DataID:" + std::to_string(data_id);
}

std::optional<RecordReference> SeparateTableIDAndDataID(std::string_view text) {
  const std::size_t comma = text.find(',');
  if (comma == std::string_view::npos) return std::nullopt;
  // A missing part is as good as an empty one: neither is numeric.
  std::string_view table_text;
  std::string_view data_text;
  for (const std::string_view part : {text.substr(0, comma), text.substr(comma + 1)}) {
    const auto split = SplitAtColon(part);
    if (!split) return std::nullopt;
    if (KeyIs(split->key, "tableid")) {
      table_text = split->value;
    } else if (KeyIs(split->key, "dataid")) {
      data_text = split->value;
    }
  }
  const auto table_number = ParseNumber(table_text);
  const auto data_number = ParseNumber(data_text);
  if (!table_number || !data_number) return std::nullopt;
  const std::int16_t table_id = ToInt16(*table_number);
  const auto data_id = NumberFrom1(*data_number);
  if (table_id < 1 || !data_id) return std::nullopt;
  return RecordReference{table_id, *data_id};
}

std::optional<std::int32_t> SeparateTableID(std::string_view text) {
  if (text.find(':') == std::string_view::npos) return NumberFrom1(text);
  return NumberUnderKey(text, "tableid");
}

std::optional<std::string> SeparateInUnitID(std::string_view text, const host::CommonFunctions& common) {
  std::string_view code = text;
  if (const auto part = SplitAtColon(text)) {
    if (!KeyIs(part->key, "inunitid")) return std::nullopt;
    code = part->value;
  }
  if (!common.CheckInUnitID(code)) return std::nullopt;
  return UpperCase(code);
}

std::optional<std::int32_t> SeparateFileID(std::string_view text) { return NumberUnderKey(text, "fileid"); }

std::optional<std::int32_t> SeparateTablePicDataID(std::string_view text) {
  return NumberUnderKey(text, "tablepicdataid");
}

}  // namespace talm_flow::db
