#include "host/record_service.h"

#include "host/loose_number.h"
#include "host/statement.h"

namespace talm_flow::host {
namespace {

// Without padding: the encoded text stands in addresses.
std::string Base64Url(std::string_view bytes) {
  constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
  constexpr unsigned kMask = 0x3F;
  std::string out;
  out.reserve((bytes.size() * 4 + 2) / 3);
  unsigned pending = 0;
  unsigned bits = 0;
  for (const char byte : bytes) {
    pending = (pending << 8U) | static_cast<unsigned char>(byte);
    for (bits += 8; bits >= 6; bits -= 6) out += kAlphabet[(pending >> (bits - 6)) & kMask];
  }
  if (bits > 0) out += kAlphabet[(pending << (6 - bits)) & kMask];
  return out;
}

}  // namespace

bool ReferenceRecordService::AcceptsRecord(Connection& connection, std::int32_t table_id, std::int32_t data_id) {
  if (!tables_.AcceptTable(connection, table_id)) return false;
  const auto rows = connection.Unobserved().Open(
      StatementText(common_, "Select Top 1 ID From TableData", table_id, " Where ID=", data_id));
  return !rows->AtEnd();
}

bool ReferenceRecordService::CheckDocument(Connection& connection, const Value& table_id, const Value& data_id) {
  const auto table_key = LooseKey(table_id);
  const auto data_key = LooseKey(data_id);
  return table_key && data_key && AcceptsRecord(connection, *table_key, *data_key);
}

DateTime ReferenceRecordService::DocumentDate(Connection& connection, std::int32_t table_id, std::int32_t data_id) {
  const DateTime undated = MakeDateTime(1900, 1, 1);
  if (!tables_.AcceptTable(connection, table_id)) return undated;
  const auto rows = connection.Unobserved().Open(
      StatementText(common_, "Select Top 1 inputtime From TableData", table_id, " Where ID=", data_id));
  if (rows->AtEnd()) return undated;
  return ParseDate(JoinedText(rows->Field("inputtime"))).value_or(undated);
}

std::string ReferenceRecordService::EncodeRecord(std::int32_t table_id, std::int32_t data_id) {
  return Base64Url("TableID:" + std::to_string(table_id) + ",DataID:" + std::to_string(data_id));
}

}  // namespace talm_flow::host
