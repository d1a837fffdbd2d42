#include "adapters/odbc_handles.h"

#include <algorithm>
#include <charconv>

#include "talm_flow/text.h"

namespace talm_flow::adapters {
namespace {

struct Complaint {
  std::string message;
  std::string state;
  SQLINTEGER native = 0;
};

constexpr std::size_t kStateSize = 5;
constexpr std::size_t kUsualMessage = 512;
constexpr std::size_t kLongestMessage = 32000;

/// Calls for a message until it fits. @returns false when there is none.
template <typename Text, typename Call>
bool ReadMessage(Text& text, Call call) {
  for (std::size_t room = kUsualMessage;;) {
    text.resize(room);
    SQLSMALLINT size = 0;
    if (!SQL_SUCCEEDED(call(static_cast<SQLSMALLINT>(room), &size)) || size < 0) return false;
    // A terminator stands behind the message.
    const auto needed = static_cast<std::size_t>(size);
    if (needed < room || room == kLongestMessage) {
      text.resize(std::min(needed, room - 1));
      return true;
    }
    room = std::min(needed + 1, kLongestMessage);
  }
}

bool ReadWide(const OdbcHandle& handle, SQLSMALLINT number, Complaint& complaint) {
  std::u16string state(kStateSize + 1, u'\0');
  std::u16string message;
  const bool read = ReadMessage(message, [&](SQLSMALLINT room, SQLSMALLINT* size) {
    return SQLGetDiagRecW(handle.type(), handle.get(), number, WideBuffer(state), &complaint.native,
                          WideBuffer(message), room, size);
  });
  complaint.message = ToUtf8(message);
  complaint.state = ToUtf8(std::u16string_view(state).substr(0, kStateSize));
  return read;
}

bool ReadNarrow(const OdbcHandle& handle, SQLSMALLINT number, Complaint& complaint) {
  complaint.state.assign(kStateSize + 1, '\0');
  const bool read = ReadMessage(complaint.message, [&](SQLSMALLINT room, SQLSMALLINT* size) {
    return SQLGetDiagRec(handle.type(), handle.get(), number, NarrowBuffer(complaint.state), &complaint.native,
                         NarrowBuffer(complaint.message), room, size);
  });
  complaint.state.resize(kStateSize);
  return read;
}

}  // namespace

OdbcHandle::OdbcHandle(SQLSMALLINT type, const OdbcHandle& parent) : type_(type), texts_(parent.texts_) {
  const SQLRETURN result = SQLAllocHandle(type, parent.get(), &handle_);
  if (SQL_SUCCEEDED(result)) return;
  handle_ = nullptr;
  if (parent.get() == nullptr) throw DatabaseError("the ODBC driver manager gives no environment");
  throw OdbcError(parent);
}

OdbcHandle& OdbcHandle::operator=(OdbcHandle&& other) noexcept {
  if (this != &other) {
    Free();
    type_ = other.type_;
    texts_ = other.texts_;
    handle_ = std::exchange(other.handle_, nullptr);
  }
  return *this;
}

void OdbcHandle::Free() noexcept {
  if (handle_ != nullptr) SQLFreeHandle(type_, handle_);
  handle_ = nullptr;
}

DatabaseError OdbcError(const OdbcHandle& handle, std::string_view statement) {
  const auto read = handle.texts() == OdbcTexts::kWide ? ReadWide : ReadNarrow;
  std::string messages;
  std::string state;
  Complaint complaint;
  for (SQLSMALLINT number = 1; read(handle, number, complaint); ++number) {
    messages.append(messages.empty() ? "" : "\n").append(complaint.message);
    if (!state.empty()) continue;
    state = complaint.state;
    if (complaint.native != 0) state += ":" + std::to_string(complaint.native);
  }
  if (messages.empty()) messages = "the ODBC driver failed and gave no reason";
  return DatabaseError(messages, std::string(statement), state);
}

void CheckOdbc(SQLRETURN result, const OdbcHandle& handle, std::string_view statement) {
  if (!SQL_SUCCEEDED(result) && result != SQL_NO_DATA) throw OdbcError(handle, statement);
}

OdbcState StateOf(const DatabaseError& error) {
  const std::string_view state = error.State();
  const std::size_t colon = state.find(':');
  OdbcState parts{.sql_state = state.substr(0, colon)};
  if (colon != state.npos) std::from_chars(state.data() + colon + 1, state.data() + state.size(), parts.native);
  return parts;
}

std::u16string WideText(std::string_view text, std::string_view statement) {
  std::u16string wide = ToUtf16(text);
  constexpr char16_t kReplacement = u'\uFFFD';
  if (wide.find(kReplacement) != wide.npos && ToUtf8(wide) != text) {
    throw DatabaseError("a text is no well-formed UTF-8, and ODBC takes nothing else", std::string(statement));
  }
  return wide;
}

}  // namespace talm_flow::adapters
