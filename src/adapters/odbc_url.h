#pragma once

/// What stands behind "odbc:" in a URL: a connection string with an option or two of our own among its own.
///
///   string    = part *( ";" part )          empty parts are passed over
///   part      = key "=" value               key in any case
///   value     = "{" text "}" / text         "}" doubled inside braces; without braces no ";"
///
/// "dialect" says what the server speaks and must be there: tsql, mariadb, postgresql or sqlite. "login_timeout" gives
/// the seconds that connecting may take, 1 to 3600, by default 10. Both are taken out; the rest goes to the driver
/// manager as it is.

#include <string>
#include <string_view>

#include "adapters/dialect.h"

namespace talm_flow::adapters {

struct OdbcUrl {
  std::string connection_string;
  const Dialect* dialect = nullptr;
  int login_timeout = 10;  ///< seconds
};

/// @param rest  the URL without "odbc:".
/// @throws ArgumentError  no dialect or an unknown one, an own option twice or with no fit value, a part that is no
/// "key=value", braces that are not closed, nothing for the driver.
[[nodiscard]] OdbcUrl ParseOdbcUrl(std::string_view rest);

/// Whether a connection string has an option of this name.
[[nodiscard]] bool HasOption(std::string_view connection_string, std::string_view key);

}  // namespace talm_flow::adapters
