/// What stands behind "odbc:" in a URL.

#include "adapters/odbc_url.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "talm_flow/error.h"

namespace talm_flow::adapters {
namespace {

using testing::HasSubstr;

std::string RefusalOf(std::string_view rest) {
  try {
    (void)ParseOdbcUrl(rest);
  } catch (const ArgumentError& error) {
    return error.what();
  }
  return "accepted";
}

TEST(OdbcUrlTest, OwnOptionsAreTakenOutAndTheRestGoesToTheDriver) {
  const OdbcUrl url = ParseOdbcUrl("Driver=MariaDB Unicode;DIALECT=mariadb;Server=db;Login_Timeout=3;Pwd={a;}}b};");
  EXPECT_EQ(url.connection_string, "Driver=MariaDB Unicode;Server=db;Pwd={a;}}b}");
  EXPECT_EQ(url.dialect, &MariadbDialect());
  EXPECT_EQ(url.login_timeout, 3);
}

TEST(OdbcUrlTest, ConnectingMayTakeTenSecondsUnlessTheUrlSaysOtherwise) {
  EXPECT_EQ(ParseOdbcUrl("DSN=office;dialect=tsql").login_timeout, 10);
}

TEST(OdbcUrlTest, BlanksAndEmptyPartsDoNoHarm) {
  const OdbcUrl url = ParseOdbcUrl(" ; Driver = SQLite3 ;; Database = {/a b} ; dialect = sqlite ;");
  EXPECT_EQ(url.connection_string, "Driver = SQLite3 ;Database = {/a b} ");
  EXPECT_EQ(url.dialect, &SqliteDialect());
}

TEST(OdbcUrlTest, WithoutAKnownDialectTheMessageListsThem) {
  for (const char* const rest : {"Driver=x", "Driver=x;dialect=oracle", "Driver=x;dialect="}) {
    const std::string refusal = RefusalOf(rest);
    for (const char* const dialect : {"tsql", "mariadb", "postgresql", "sqlite"}) {
      EXPECT_THAT(refusal, HasSubstr(dialect)) << rest;
    }
  }
}

TEST(OdbcUrlTest, AMalformedStringIsRefusedWithItsFault) {
  EXPECT_THAT(RefusalOf(""), HasSubstr("names no driver"));
  EXPECT_THAT(RefusalOf("dialect=mariadb"), HasSubstr("names no driver"));
  EXPECT_THAT(RefusalOf("Driver;dialect=mariadb"), HasSubstr("does not begin with an option=value"));
  EXPECT_THAT(RefusalOf("Driver=x;=y;dialect=mariadb"), HasSubstr("behind the option Driver of the odbc URL"));
  EXPECT_THAT(RefusalOf("Driver=x;Pwd={a;dialect=mariadb"), HasSubstr("braces around the value of Pwd are not closed"));
  EXPECT_THAT(RefusalOf("Driver={x}y;dialect=mariadb"), HasSubstr("behind the braces around the value of Driver"));
  EXPECT_THAT(RefusalOf("Driver=x;dialect=tsql;dialect=tsql"), HasSubstr("dialect twice"));
  EXPECT_THAT(RefusalOf("Driver=x;dialect=tsql;login_timeout=1;login_timeout=1"), HasSubstr("login_timeout twice"));
}

TEST(OdbcUrlTest, TheTimeForConnectingIsANumberOfSeconds) {
  for (const char* const value : {"0", "-1", "3601", "1.5", "soon", "", "99999999999"}) {
    EXPECT_THAT(RefusalOf("Driver=x;dialect=tsql;login_timeout=" + std::string(value)), HasSubstr("from 1 to 3600"))
        << value;
  }
}

TEST(OdbcUrlTest, ARefusalShowsNoPartOfAPassword) {
  for (const char* const password : {"secret;nonsense", "x;secret", "{secret", "{x}secret", "{x};secret"}) {
    const std::string refusal = RefusalOf("Driver=x;Pwd=" + std::string(password) + ";dialect=tsql");
    EXPECT_THAT(refusal, testing::Not(HasSubstr("secret"))) << password;
    EXPECT_THAT(refusal, HasSubstr("Pwd")) << password;
  }
}

TEST(OdbcUrlTest, AnOptionIsFoundInAnyCaseButNotInsideAValue) {
  EXPECT_TRUE(HasOption("Driver=x; charset =utf8mb4", "CHARSET"));
  EXPECT_FALSE(HasOption("Driver={CHARSET=x}", "CHARSET"));
}

}  // namespace
}  // namespace talm_flow::adapters
