/// An ODBC driver that does nothing but write down the texts it is given, one a line: "run ..." or "prepare ...". The
/// option File of the connection string names where. No statement gives rows.

#include <fstream>
#include <memory>
#include <string>

#include "adapters/odbc_api.h"
#include "talm_flow/text.h"

namespace {

/// An environment, a connection or a statement.
struct Recorder {
  std::string path;
};

std::string Utf8Of(const SQLWCHAR* text, SQLINTEGER size) {
  return talm_flow::ToUtf8({reinterpret_cast<const char16_t*>(text), static_cast<std::size_t>(size)});
}

void Record(SQLHSTMT statement, const char* kind, const SQLWCHAR* text, SQLINTEGER size) {
  std::ofstream(static_cast<Recorder*>(statement)->path, std::ios::app) << kind << Utf8Of(text, size) << '\n';
}

}  // namespace

extern "C" {

SQLRETURN SQLAllocHandle(SQLSMALLINT /*type*/, SQLHANDLE parent, SQLHANDLE* handle) {
  auto made = std::make_unique<Recorder>();
  if (parent != nullptr) made->path = static_cast<Recorder*>(parent)->path;
  *handle = made.release();
  return SQL_SUCCESS;
}
SQLRETURN SQLFreeHandle(SQLSMALLINT /*type*/, SQLHANDLE handle) {
  const std::unique_ptr<Recorder> owned(static_cast<Recorder*>(handle));
  return SQL_SUCCESS;
}
SQLRETURN SQLSetEnvAttr(SQLHENV, SQLINTEGER, SQLPOINTER, SQLINTEGER) { return SQL_SUCCESS; }
SQLRETURN SQLSetConnectAttrW(SQLHDBC, SQLINTEGER, SQLPOINTER, SQLINTEGER) { return SQL_SUCCESS; }
SQLRETURN SQLSetStmtAttrW(SQLHSTMT, SQLINTEGER, SQLPOINTER, SQLINTEGER) { return SQL_SUCCESS; }
SQLRETURN SQLGetStmtAttrW(SQLHSTMT, SQLINTEGER, SQLPOINTER value, SQLINTEGER, SQLINTEGER*) {
  // The manager asks for descriptors, which it only wants to exist.
  static Recorder descriptor;
  *static_cast<SQLPOINTER*>(value) = &descriptor;
  return SQL_SUCCESS;
}
SQLRETURN SQLDriverConnectW(SQLHDBC connection, SQLHWND, SQLWCHAR* text, SQLSMALLINT size, SQLWCHAR*, SQLSMALLINT,
                            SQLSMALLINT*, SQLUSMALLINT) {
  const std::string options = Utf8Of(text, size);
  const std::size_t begin = options.find("File=") + 5;
  static_cast<Recorder*>(connection)->path = options.substr(begin, options.find(';', begin) - begin);
  return SQL_SUCCESS;
}
SQLRETURN SQLDisconnect(SQLHDBC) { return SQL_SUCCESS; }
SQLRETURN SQLGetInfoW(SQLHDBC, SQLUSMALLINT, SQLPOINTER, SQLSMALLINT, SQLSMALLINT*) { return SQL_ERROR; }
SQLRETURN SQLExecDirectW(SQLHSTMT statement, SQLWCHAR* text, SQLINTEGER size) {
  Record(statement, "run ", text, size);
  return SQL_SUCCESS;
}
SQLRETURN SQLPrepareW(SQLHSTMT statement, SQLWCHAR* text, SQLINTEGER size) {
  Record(statement, "prepare ", text, size);
  return SQL_SUCCESS;
}
SQLRETURN SQLBindParameter(SQLHSTMT, SQLUSMALLINT, SQLSMALLINT, SQLSMALLINT, SQLSMALLINT, SQLULEN, SQLSMALLINT,
                           SQLPOINTER, SQLLEN, SQLLEN*) {
  return SQL_SUCCESS;
}
SQLRETURN SQLExecute(SQLHSTMT) { return SQL_SUCCESS; }
SQLRETURN SQLNumResultCols(SQLHSTMT, SQLSMALLINT* count) {
  *count = 0;
  return SQL_SUCCESS;
}
SQLRETURN SQLFreeStmt(SQLHSTMT, SQLUSMALLINT) { return SQL_SUCCESS; }
SQLRETURN SQLGetDiagRecW(SQLSMALLINT, SQLHANDLE, SQLSMALLINT, SQLWCHAR*, SQLINTEGER*, SQLWCHAR*, SQLSMALLINT,
                         SQLSMALLINT*) {
  return SQL_NO_DATA;
}
SQLRETURN SQLEndTran(SQLSMALLINT, SQLHANDLE, SQLSMALLINT) { return SQL_SUCCESS; }

}  // extern "C"
