/// Servers behind ODBC that cannot be used, and one that dies at work.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <future>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "support/databases.h"
#include "support/places.h"
#include "support/rows.h"
#include "support/run_program.h"
#include "support/server_place.h"
#include "support/silent_server.h"
#include "talm_flow/adapters/database.h"
#include "talm_flow/error.h"
#include "talm_flow/host/unit_of_work.h"
#include "talm_flow/text.h"

namespace talm_flow::adapters {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

DatabaseError OpeningError(const std::string& url) {
  try {
    (void)Open(url);
  } catch (const DatabaseError& error) {
    return error;
  }
  ADD_FAILURE() << "opened: " << url;
  return DatabaseError("");
}

test::ProgramResult RunFlows(const std::string& url) {
  const test::TemporaryFolder folder;
  return test::RunProgram(test::ProgramPath(), {"--db", url, "flows"}, folder);
}

void ExpectStatusOneWithoutPassword(const test::ProgramResult& result) {
  EXPECT_EQ(result.status, 1) << result.err;
  EXPECT_THAT(result.err,
              AllOf(StartsWith("talmflow: cannot open \"odbc:"), HasSubstr("Pwd=***"), Not(HasSubstr("secret"))));
  EXPECT_EQ(result.out, "");
}

TEST(OdbcServerTest, WrongPasswordsAndMissingDatabasesAreToldInTheServersWords) {
  const std::string url = test::ServerUrl("mariadb_tcp");
  EXPECT_NO_THROW((void)Open(url));
  const std::string wrong = ReplaceAll(url, "Pwd=talm_flow", "Pwd=secret");
  EXPECT_THAT(OpeningError(wrong).what(), HasSubstr("Access denied for user 'talm_flow'@'127.0.0.1'"));
  EXPECT_EQ(OpeningError(wrong).State(), "28000:1045");
  EXPECT_THAT(OpeningError(test::WithDatabase(url, "no_such_database")).what(),
              HasSubstr("Unknown database 'no_such_database'"));
  const auto result = RunFlows(wrong);
  ExpectStatusOneWithoutPassword(result);
  EXPECT_THAT(result.err, HasSubstr("Access denied"));
}

TEST(OdbcServerTest, AServerThatDoesNotAnswerIsGivenUp) {
  const test::SilentServer server;
  const std::string url = "odbc:Driver=MariaDB Unicode;Server=127.0.0.1;Port=" + server.Port() +
                          ";Database=x;Uid=a;Pwd=secret;dialect=mariadb;login_timeout=1";
  EXPECT_THAT(OpeningError(url).what(), HasSubstr("Lost connection to server"));
  ExpectStatusOneWithoutPassword(RunFlows(url));
}

TEST(OdbcServerTest, ARefusedConnectionAndAMissingDriverEndTheProgramWithTheirReason) {
  const auto refused = RunFlows("odbc:Driver=MariaDB Unicode;Server=127.0.0.1;Port=1;Uid=a;Pwd=secret;dialect=mariadb");
  ExpectStatusOneWithoutPassword(refused);
  EXPECT_THAT(refused.err, HasSubstr("127.0.0.1"));
  const auto missing = RunFlows("odbc:Driver=/nowhere/driver.so;Pwd={secret};dialect=mariadb");
  ExpectStatusOneWithoutPassword(missing);
  EXPECT_THAT(missing.err, HasSubstr("/nowhere/driver.so"));
}

TEST(OdbcServerTest, AMalformedUrlEndsTheProgramWithStatusOne) {
  const auto result = RunFlows("odbc:Driver=MariaDB Unicode;Pwd=x;secret;dialect=mariadb");
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, AllOf(HasSubstr("option Pwd"), Not(HasSubstr("secret"))));
}

/// A server of this test alone, to be killed.
class MortalServer {
 public:
  MortalServer() {
    const auto started = Tool("start");
    if (started.status != 0) throw std::runtime_error("no server: " + started.err);
    std::istringstream(test::ReadFile(folder_.path() / "mariadb.running")) >> process_;
    const std::string urls = test::ReadFile(folder_.path() / "urls");
    url_ = urls.substr(urls.find('=') + 1, urls.find('\n') - urls.find('=') - 1);
  }
  MortalServer(const MortalServer&) = delete;
  MortalServer& operator=(const MortalServer&) = delete;
  ~MortalServer() { (void)Tool("stop"); }

  [[nodiscard]] const std::string& url() const { return url_; }
  void Kill() const { ASSERT_EQ(kill(process_, SIGKILL), 0); }

 private:
  test::ProgramResult Tool(const std::string& action) {
    std::vector<std::string> arguments = {action, folder_.path().string()};
    if (action == "start") arguments.emplace_back("mariadb");
    return test::RunProgram(test::SourcePath("tools/test_servers"), arguments, folder_);
  }

  test::TemporaryFolder folder_;
  pid_t process_ = 0;
  std::string url_;
};

/// Waits until a statement of another connection waits for a lock. @returns whether one does.
bool SomebodyWaits(Database& database) {
  constexpr int kAttempts = 600;
  for (int i = 0; i < kAttempts; ++i) {
    if (!test::RowsOf(database, "select trx_id from information_schema.innodb_trx where trx_state='LOCK WAIT'")
             .empty()) {
      return true;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }
  return false;
}

TEST(OdbcServerTest, AServerThatDiesAtWorkIsToldAndNothingIsRepeated) {
  const MortalServer server;
  const auto database = Open(server.url());
  const auto watcher = Open(server.url());
  database->CreateTables();
  int attempts = 0;
  std::future<test::ProgramResult> program;
  const test::TemporaryFolder folder;
  try {
    host::UnitOfWork(*database).Run([&] {
      ++attempts;
      (void)database->Execute("insert into DataNotice (Sort) values (1)");
      // The program waits for the turn of this unit of work when the server dies.
      program = std::async(std::launch::async, [&] {
        return test::RunProgram(test::ProgramPath(),
                                {"--db", server.url(), "call", "Command.AddExecuteTimes", "5", "1"}, folder);
      });
      EXPECT_TRUE(SomebodyWaits(*watcher));
      server.Kill();
      (void)database->Execute("insert into DataNotice (Sort) values (2)");
    });
    FAIL() << "committed";
  } catch (const DatabaseError& error) {
    EXPECT_THAT(error.State(), StartsWith("08"));
    EXPECT_EQ(error.Statement(), "insert into DataNotice (Sort) values (2)");
    EXPECT_FALSE(database->MayBeRepeated(error));
  }
  EXPECT_EQ(attempts, 1);
  EXPECT_THROW((void)database->Open("select Sort from DataNotice"), DatabaseError);
  EXPECT_THROW(database->Begin(), DatabaseError);
  const test::ProgramResult result = program.get();
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, AllOf(StartsWith("talmflow: "), Not(HasSubstr("Pwd=talm_flow"))));
  ExpectStatusOneWithoutPassword(RunFlows(server.url()));
}

}  // namespace
}  // namespace talm_flow::adapters
