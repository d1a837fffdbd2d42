#include "talm_flow/host/unit_of_work.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/rows.h"
#include "support/temporary_folder.h"
#include "talm_flow/adapters/database.h"

namespace talm_flow::host {
namespace {

using test::RowsOf;
using testing::ElementsAre;
using testing::IsEmpty;

/// Notes what it is asked for, and refuses what it is told to refuse.
class NotedTransaction : public Transaction {
 public:
  void Begin() override {
    Note("begin");
    open_ = true;
  }
  void Commit() override {
    Note("commit");
    open_ = false;
  }
  void Rollback() override {
    Note("rollback");
    open_ = false;
  }
  [[nodiscard]] bool InTransaction() const override { return open_; }
  [[nodiscard]] bool OffersSavepoints() const override { return offers_savepoints; }
  void SetSavepoint() override { Note("set"); }
  void ReleaseSavepoint() override { Note("release"); }
  void RollbackToSavepoint() override { Note("back"); }
  [[nodiscard]] bool MayBeRepeated(const DatabaseError& error) const override { return error.State() == "busy"; }

  std::vector<std::string> notes;
  std::vector<std::string> refused;
  bool offers_savepoints = true;

 private:
  void Note(const std::string& operation) {
    notes.push_back(operation);
    for (const std::string& sought : refused) {
      if (sought == operation) throw DatabaseError("refused: " + operation, {}, "1");
    }
  }

  bool open_ = false;
};

std::string MessageOf(const std::function<void()>& failing) {
  try {
    failing();
  } catch (const std::exception& error) {
    return error.what();
  }
  return "none";
}

TEST(UnitOfWorkTest, WorkThatReturnsIsCommitted) {
  NotedTransaction transaction;
  UnitOfWork(transaction).Run([&] { transaction.notes.emplace_back("work"); });
  EXPECT_THAT(transaction.notes, ElementsAre("begin", "work", "commit"));
}

TEST(UnitOfWorkTest, TheWorksResultIsHandedOn) {
  NotedTransaction transaction;
  EXPECT_EQ(UnitOfWork(transaction).Run([] { return std::string("done"); }), "done");
  EXPECT_EQ(*UnitOfWork(transaction).Run([] { return std::make_unique<int>(7); }), 7);
}

TEST(UnitOfWorkTest, WorkThatThrowsIsTakenBackAndItsErrorIsRaised) {
  NotedTransaction transaction;
  EXPECT_EQ(MessageOf([&] { UnitOfWork(transaction).Run([] { throw std::runtime_error("mine"); }); }), "mine");
  EXPECT_THAT(transaction.notes, ElementsAre("begin", "rollback"));
}

TEST(UnitOfWorkTest, ACommitThatFailsIsTakenBack) {
  NotedTransaction transaction;
  transaction.refused = {"commit"};
  EXPECT_EQ(MessageOf([&] { UnitOfWork(transaction).Run([] {}); }), "refused: commit");
  EXPECT_THAT(transaction.notes, ElementsAre("begin", "commit", "rollback"));
}

TEST(UnitOfWorkTest, AFailingRollbackDoesNotHideTheFirstError) {
  NotedTransaction transaction;
  transaction.refused = {"rollback"};
  EXPECT_EQ(MessageOf([&] { UnitOfWork(transaction).Run([] { throw std::runtime_error("mine"); }); }), "mine");
}

TEST(UnitOfWorkTest, AFailingBeginRunsNoWork) {
  NotedTransaction transaction;
  transaction.refused = {"begin"};
  EXPECT_EQ(MessageOf([&] { UnitOfWork(transaction).Run([&] { transaction.notes.emplace_back("work"); }); }),
            "refused: begin");
  EXPECT_THAT(transaction.notes, ElementsAre("begin"));
}

TEST(UnitOfWorkTest, ATransactionThatTheEngineEndedIsNotRolledBackAgain) {
  NotedTransaction transaction;
  EXPECT_EQ(MessageOf([&] {
              UnitOfWork(transaction).Run([&] {
                transaction.Rollback();
                throw std::runtime_error("the disk is full");
              });
            }),
            "the disk is full");
  EXPECT_THAT(transaction.notes, ElementsAre("begin", "rollback"));
}

TEST(UnitOfWorkTest, WorkInsideWorkHasASavepoint) {
  NotedTransaction transaction;
  UnitOfWork(transaction).Run([&] { UnitOfWork(transaction).Run([] {}); });
  EXPECT_THAT(transaction.notes, ElementsAre("begin", "set", "release", "commit"));
}

TEST(UnitOfWorkTest, FailingWorkInsideWorkIsTakenBackAlone) {
  NotedTransaction transaction;
  UnitOfWork(transaction).Run([&] {
    EXPECT_EQ(MessageOf([&] { UnitOfWork(transaction).Run([] { throw std::runtime_error("inner"); }); }), "inner");
  });
  EXPECT_THAT(transaction.notes, ElementsAre("begin", "set", "back", "commit"));
}

TEST(UnitOfWorkTest, WithoutSavepointsWorkInsideWorkIsAPartOfIt) {
  NotedTransaction transaction;
  transaction.offers_savepoints = false;
  UnitOfWork(transaction).Run([&] { UnitOfWork(transaction).Run([&] { transaction.notes.emplace_back("work"); }); });
  EXPECT_THAT(transaction.notes, ElementsAre("begin", "work", "commit"));
}

TEST(UnitOfWorkTest, WorkThatWasDisturbedIsDoneAgainFromItsStart) {
  NotedTransaction transaction;
  int runs = 0;
  const int result = UnitOfWork(transaction).Run([&] {
    if (++runs < 3) throw DatabaseError("locked", {}, "busy");
    return runs;
  });
  EXPECT_EQ(result, 3);
  EXPECT_THAT(transaction.notes, ElementsAre("begin", "rollback", "begin", "rollback", "begin", "commit"));
}

TEST(UnitOfWorkTest, RepetitionHasAnEnd) {
  NotedTransaction transaction;
  int runs = 0;
  const auto disturbed = [&] {
    ++runs;
    throw DatabaseError("locked", {}, "busy");
  };
  EXPECT_EQ(MessageOf([&] { UnitOfWork(transaction).Run(disturbed); }), "locked");
  EXPECT_EQ(runs, UnitOfWork::kUsualAttempts);
  runs = 0;
  EXPECT_EQ(MessageOf([&] { UnitOfWork(transaction, 1).Run(disturbed); }), "locked");
  EXPECT_EQ(runs, 1);
}

TEST(UnitOfWorkTest, OtherErrorsAreNotRepeated) {
  NotedTransaction transaction;
  int runs = 0;
  EXPECT_EQ(MessageOf([&] {
              UnitOfWork(transaction).Run([&] {
                ++runs;
                throw DatabaseError("no such table", {}, "1");
              });
            }),
            "no such table");
  EXPECT_EQ(runs, 1);
}

TEST(UnitOfWorkTest, OnlyTheOutermostWorkIsRepeated) {
  NotedTransaction transaction;
  int outer = 0;
  int inner = 0;
  UnitOfWork(transaction).Run([&] {
    ++outer;
    UnitOfWork(transaction).Run([&] {
      if (++inner < 2) throw DatabaseError("locked", {}, "busy");
    });
  });
  EXPECT_EQ(outer, 2);
  EXPECT_EQ(inner, 2);
}

// ---- On a database --------------------------------------------------------------------------------------------------

class UnitOfWorkOnDatabaseTest : public testing::Test {
 protected:
  UnitOfWorkOnDatabaseTest() : database_(adapters::Open("sqlite:" + folder_.File("a.db"))) {
    Run("create table t (a)");
  }

  void Run(const std::string& statement) { (void)database_->Execute(statement); }

  test::TemporaryFolder folder_;
  std::unique_ptr<adapters::Database> database_;
};

TEST_F(UnitOfWorkOnDatabaseTest, RowsStayOrGoTogether) {
  UnitOfWork(*database_).Run([&] { Run("insert into t values (1)"); });
  EXPECT_THROW(UnitOfWork(*database_).Run([&] {
    Run("insert into t values (2)");
    Run("insert into nowhere values (2)");
  }),
               DatabaseError);
  EXPECT_THAT(RowsOf(*database_, "select a from t"), ElementsAre("1"));
  EXPECT_FALSE(database_->InTransaction());
}

TEST_F(UnitOfWorkOnDatabaseTest, InnerWorkGoesAlone) {
  UnitOfWork(*database_).Run([&] {
    Run("insert into t values (1)");
    UnitOfWork(*database_).Run([&] {
      Run("insert into t values (2)");
      EXPECT_THROW(UnitOfWork(*database_).Run([&] {
        Run("insert into t values (3)");
        throw std::runtime_error("inner");
      }),
                   std::runtime_error);
    });
  });
  EXPECT_THAT(RowsOf(*database_, "select a from t"), ElementsAre("1", "2"));
}

TEST_F(UnitOfWorkOnDatabaseTest, ACommitThatTheEngineRefusesLeavesNothing) {
  Run("pragma foreign_keys=on");
  Run("create table p (a integer primary key)");
  Run("create table c (a references p deferrable initially deferred)");
  EXPECT_EQ(MessageOf([&] { UnitOfWork(*database_).Run([&] { Run("insert into c values (9)"); }); }),
            "FOREIGN KEY constraint failed");
  EXPECT_FALSE(database_->InTransaction());
  EXPECT_THAT(RowsOf(*database_, "select a from c"), IsEmpty());
}

TEST_F(UnitOfWorkOnDatabaseTest, WorkWaitsItsTurnByRepetition) {
  const auto other = adapters::Open("sqlite:" + folder_.File("a.db"));
  Run("pragma busy_timeout=0");
  other->Begin();
  (void)other->Execute("insert into t values (1)");
  EXPECT_EQ(MessageOf([&] { UnitOfWork(*database_).Run([&] { Run("insert into t values (2)"); }); }),
            "database is locked");
  try {
    database_->Begin();
    FAIL() << "two writers";
  } catch (const DatabaseError& error) {
    EXPECT_EQ(error.State(), "5");
    EXPECT_TRUE(database_->MayBeRepeated(error));
  }
  other->Commit();
  UnitOfWork(*database_).Run([&] { Run("insert into t values (2)"); });
  EXPECT_THAT(RowsOf(*other, "select a from t"), ElementsAre("1", "2"));
}

TEST_F(UnitOfWorkOnDatabaseTest, OnlyErrorsOfOtherConnectionsMayBeRepeated) {
  EXPECT_TRUE(database_->MayBeRepeated(DatabaseError("", "", "517")));
  EXPECT_TRUE(database_->MayBeRepeated(DatabaseError("", "", "6")));
  EXPECT_FALSE(database_->MayBeRepeated(DatabaseError("", "", "1")));
  EXPECT_FALSE(database_->MayBeRepeated(DatabaseError("", "", "2067")));
  EXPECT_FALSE(database_->MayBeRepeated(DatabaseError("", "", "")));
}

}  // namespace
}  // namespace talm_flow::host
