#pragma once

/// Handles of the driver manager, and what it says when something fails.

#include <string>
#include <string_view>
#include <utility>

#include "adapters/odbc_api.h"
#include "talm_flow/error.h"

namespace talm_flow::adapters {

/// How texts of statements, names of columns and messages travel. Values always travel in UTF-16.
enum class OdbcTexts {
  kWide,    ///< in UTF-16
  kNarrow,  ///< in UTF-8, for drivers that know no wide functions; the manager would lose what is not ASCII
};

/// Owns one handle.
class OdbcHandle {
 public:
  OdbcHandle() = default;
  /// @throws DatabaseError  the parent gives none.
  OdbcHandle(SQLSMALLINT type, const OdbcHandle& parent);
  OdbcHandle(OdbcHandle&& other) noexcept
      : type_(other.type_), texts_(other.texts_), handle_(std::exchange(other.handle_, nullptr)) {}
  OdbcHandle& operator=(OdbcHandle&& other) noexcept;
  ~OdbcHandle() { Free(); }

  [[nodiscard]] SQLSMALLINT type() const { return type_; }
  [[nodiscard]] SQLHANDLE get() const { return handle_; }
  /// Of this handle, and of those that are made from it later.
  [[nodiscard]] OdbcTexts texts() const { return texts_; }
  void SetTexts(OdbcTexts texts) { texts_ = texts; }

 private:
  void Free() noexcept;

  SQLSMALLINT type_ = 0;
  OdbcTexts texts_ = OdbcTexts::kWide;
  SQLHANDLE handle_ = nullptr;
};

/// What the handle's last call complained of. The message is the driver's own; several are joined by line breaks. The
/// state is the SQLSTATE, and behind a ":" the database's own number when it has one: "40001:1213".
/// @param statement  the text that the component handed over.
[[nodiscard]] DatabaseError OdbcError(const OdbcHandle& handle, std::string_view statement = {});

/// @throws DatabaseError  the result of the handle's last call says that it failed.
void CheckOdbc(SQLRETURN result, const OdbcHandle& handle, std::string_view statement = {});

/// The parts of an error's state.
struct OdbcState {
  std::string_view sql_state;
  int native = 0;
};
[[nodiscard]] OdbcState StateOf(const DatabaseError& error);

/// Buffers as the driver manager wants them.
[[nodiscard]] inline SQLWCHAR* WideBuffer(std::u16string& text) { return reinterpret_cast<SQLWCHAR*>(text.data()); }
[[nodiscard]] inline SQLCHAR* NarrowBuffer(std::string& text) { return reinterpret_cast<SQLCHAR*>(text.data()); }

/// A text in UTF-16.
/// @param statement  what errors tell as the statement.
/// @throws DatabaseError  it is no well-formed UTF-8.
[[nodiscard]] std::u16string WideText(std::string_view text, std::string_view statement);

}  // namespace talm_flow::adapters
