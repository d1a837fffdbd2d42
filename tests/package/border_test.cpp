/// Errors and interfaces across the border of the shared library: this program links it, sees its public headers only, and
/// hides all of its own.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include "talm_flow/adapters/database.h"
#include "talm_flow/command.h"
#include "talm_flow/conversion.h"
#include "talm_flow/error.h"
#include "talm_flow/host/reference_host.h"
#include "talm_flow/host/tracing_connection.h"
#include "talm_flow/host/unit_of_work.h"
#include "talm_flow/in_out.h"
#include "talm_flow/late_bound.h"

namespace {

using talm_flow::Command;
using talm_flow::Value;

/// An error of a host's own.
class OfficeClosedError : public talm_flow::DatabaseError {
 public:
  using DatabaseError::DatabaseError;
};

/// A host's own connection, of an office that is closed.
class ClosedOffice : public talm_flow::Connection {
 public:
  std::unique_ptr<talm_flow::RowSet> Execute(std::string_view statement) override {
    throw OfficeClosedError("closed", std::string(statement));
  }
  std::unique_ptr<talm_flow::RowSet> Open(std::string_view query) override {
    throw OfficeClosedError("closed", std::string(query));
  }
};

/// Transactions of a host's own; what failed may be done again.
class PatientTransaction : public talm_flow::host::Transaction {
 public:
  void Begin() override { open_ = true; }
  void Commit() override { open_ = false; }
  void Rollback() override { open_ = false; }
  [[nodiscard]] bool InTransaction() const override { return open_; }
  [[nodiscard]] bool MayBeRepeated(const talm_flow::DatabaseError& error) const override {
    return dynamic_cast<const OfficeClosedError*>(&error) != nullptr;
  }

 private:
  bool open_ = false;
};

class BorderTest : public testing::Test {
 protected:
  talm_flow::host::ReferenceHost host_;
  Command command_{host_.services()};
  std::unique_ptr<talm_flow::adapters::Database> database_ = talm_flow::adapters::Open("sqlite::memory:");
};

TEST_F(BorderTest, EveryKindOfErrorIsCaughtAsWhatItIs) {
  EXPECT_THROW((void)talm_flow::ToText(Value()), talm_flow::ConversionError);
  EXPECT_THROW((void)talm_flow::ToInt32(1e20), talm_flow::OverflowError);
  EXPECT_THROW((void)talm_flow::adapters::Open("unknown:place"), talm_flow::ArgumentError);
  EXPECT_THROW((void)talm_flow::late_bound::Resolve("Command.Unknown"), talm_flow::late_bound::UnknownOperationError);
  EXPECT_THROW(talm_flow::InOut(host_.services()).CreateTxt("/nowhere/at/all.txt", "text"), talm_flow::FileError);
  EXPECT_THROW((void)database_->Execute("nonsense"), talm_flow::DatabaseError);

  database_->CreateTables();
  std::string sum = "1";
  for (int i = 0; i < 60; ++i) sum += "+1";
  EXPECT_THROW((void)command_.GetVariableValue(*database_, 0, 0, sum, 0, 0), talm_flow::SubscriptError);
  (void)database_->Execute("Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Command) Values (1,2,2,'C_1')");
  EXPECT_THROW((void)command_.GetFlowNoApprov(*database_, 1, 2), talm_flow::NestingError);
}

TEST_F(BorderTest, AnErrorIsCaughtAsTheBaseOfAll) {
  try {
    (void)database_->Execute("nonsense");
    FAIL() << "nothing was raised";
  } catch (const talm_flow::FlowError& error) {
    EXPECT_STREQ(error.Kind(), "DatabaseError");
    EXPECT_NE(dynamic_cast<const talm_flow::DatabaseError*>(&error), nullptr);
  }
}

TEST_F(BorderTest, AHostsOwnErrorPassesThroughTheLibraryAsItIs) {
  ClosedOffice office;
  std::string traced;
  talm_flow::host::TracingConnection tracing(office, [&](std::string_view statement) { traced = statement; });
  try {
    command_.FlowExecute(tracing, 1, 0, 0, "kim", "127.0.0.1", 0, 0);
    FAIL() << "nothing was raised";
  } catch (const OfficeClosedError& error) {
    EXPECT_EQ(error.Statement(), traced);
    EXPECT_FALSE(traced.empty());
  }
}

TEST_F(BorderTest, TheLibraryKnowsAHostsOwnErrorForADatabasesOne) {
  PatientTransaction transaction;
  int pauses = 0;
  talm_flow::host::Repetition repetition{.attempts = 3, .wait = [&](auto) { ++pauses; }};
  int attempts = 0;

  const int result = talm_flow::host::UnitOfWork(transaction, repetition).Run([&] {
    if (++attempts < 3) throw OfficeClosedError("closed");
    return attempts;
  });

  EXPECT_EQ(result, 3);
  EXPECT_EQ(pauses, 2);
}

TEST_F(BorderTest, AConnectionTellsWhatElseItIs) {
  talm_flow::Connection& connection = *database_;
  EXPECT_NE(dynamic_cast<talm_flow::host::Transaction*>(&connection), nullptr);
  EXPECT_NE(dynamic_cast<talm_flow::adapters::Database*>(&connection), nullptr);
  ClosedOffice office;
  EXPECT_EQ(dynamic_cast<talm_flow::host::Transaction*>(static_cast<talm_flow::Connection*>(&office)), nullptr);
}

}  // namespace
