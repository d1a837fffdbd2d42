#include "talm_flow/host/unit_of_work.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <set>
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
    if (busy_begins > 0) {
      --busy_begins;
      throw DatabaseError("locked", {}, "busy");
    }
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
  [[nodiscard]] bool InTransaction() const override { return open_ && !lost; }
  [[nodiscard]] bool OffersSavepoints() const override { return offers_savepoints; }
  void SetSavepoint() override { Note("set"); }
  void ReleaseSavepoint() override { Note("release"); }
  void RollbackToSavepoint() override { Note("back"); }
  [[nodiscard]] bool MayBeRepeated(const DatabaseError& error) const override { return error.State() == "busy"; }

  std::vector<std::string> notes;
  std::vector<std::string> refused;
  /// The next commits end the transaction and raise this state, each once.
  std::vector<std::string> commit_states;
  int busy_begins = 0;
  bool offers_savepoints = true;
  bool lost = false;

 private:
  void Note(const std::string& operation) {
    notes.push_back(operation);
    if (lost) throw DatabaseError("the server is gone", {}, "gone");
    if (operation == "commit" && !commit_states.empty()) {
      const std::string state = commit_states.front();
      commit_states.erase(commit_states.begin());
      open_ = false;
      lost = state == "gone";
      throw DatabaseError("commit: " + state, {}, state);
    }
    for (const std::string& sought : refused) {
      if (sought == operation) throw DatabaseError("refused: " + operation, {}, "1");
    }
  }

  bool open_ = false;
};

/// Notes pauses instead of letting them go by.
class Pauses {
 public:
  [[nodiscard]] Repetition NotedIn(int attempts) {
    Repetition repetition;
    repetition.attempts = attempts;
    repetition.wait = [this](Repetition::Pause pause) { taken.push_back(pause.count()); };
    return repetition;
  }
  std::vector<std::int64_t> taken;
};

Repetition WithoutWaiting() {
  Repetition repetition;
  repetition.wait = [](Repetition::Pause) {};
  return repetition;
}

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
  const int result = UnitOfWork(transaction, WithoutWaiting()).Run([&] {
    if (++runs < 3) throw DatabaseError("locked", {}, "busy");
    return runs;
  });
  EXPECT_EQ(result, 3);
  EXPECT_THAT(transaction.notes, ElementsAre("begin", "rollback", "begin", "rollback", "begin", "commit"));
}

TEST(UnitOfWorkTest, RepetitionHasAnEnd) {
  for (const int attempts : {1, 4}) {
    NotedTransaction transaction;
    Pauses pauses;
    int runs = 0;
    EXPECT_EQ(MessageOf([&] {
                UnitOfWork(transaction, pauses.NotedIn(attempts)).Run([&] {
                  ++runs;
                  throw DatabaseError("locked", {}, "busy");
                });
              }),
              "locked");
    EXPECT_EQ(runs, attempts);
    EXPECT_EQ(pauses.taken.size(), static_cast<std::size_t>(attempts - 1));
    EXPECT_FALSE(transaction.InTransaction());
  }
}

TEST(UnitOfWorkTest, PausesGrowToABound) {
  NotedTransaction transaction;
  Pauses pauses;
  Repetition repetition = pauses.NotedIn(7);
  repetition.first_pause = Repetition::Pause(10);
  repetition.longest_pause = Repetition::Pause(100);
  EXPECT_EQ(
      MessageOf([&] { UnitOfWork(transaction, repetition).Run([] { throw DatabaseError("locked", {}, "busy"); }); }),
      "locked");
  const std::vector<std::int64_t> most = {10, 20, 40, 80, 100, 100};
  ASSERT_EQ(pauses.taken.size(), most.size());
  for (std::size_t i = 0; i < most.size(); ++i) {
    EXPECT_GE(pauses.taken[i], most[i] / 2) << i;
    EXPECT_LE(pauses.taken[i], most[i]) << i;
  }
}

TEST(UnitOfWorkTest, PausesDiffer) {
  NotedTransaction transaction;
  Pauses pauses;
  Repetition repetition = pauses.NotedIn(40);
  repetition.first_pause = repetition.longest_pause = Repetition::Pause(1'000'000);
  EXPECT_THROW(UnitOfWork(transaction, repetition).Run([] { throw DatabaseError("locked", {}, "busy"); }),
               DatabaseError);
  EXPECT_GT(std::set<std::int64_t>(pauses.taken.begin(), pauses.taken.end()).size(), 1U);
}

TEST(UnitOfWorkTest, WithoutAPauseOfItsOwnTheThreadSleeps) {
  NotedTransaction transaction;
  Repetition repetition;
  repetition.first_pause = Repetition::Pause(2);
  const auto begin = std::chrono::steady_clock::now();
  int runs = 0;
  UnitOfWork(transaction, repetition).Run([&] {
    if (++runs < 2) throw DatabaseError("locked", {}, "busy");
  });
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(1));
}

TEST(UnitOfWorkTest, ABeginThatWasDisturbedIsTriedAgain) {
  NotedTransaction transaction;
  transaction.busy_begins = 2;
  int runs = 0;
  UnitOfWork(transaction, WithoutWaiting()).Run([&] { ++runs; });
  EXPECT_EQ(runs, 1);
  EXPECT_THAT(transaction.notes, ElementsAre("begin", "begin", "begin", "commit"));
}

TEST(UnitOfWorkTest, ACommitThatWasDisturbedRepeatsTheWork) {
  NotedTransaction transaction;
  transaction.commit_states = {"busy", "busy"};
  int runs = 0;
  EXPECT_EQ(UnitOfWork(transaction, WithoutWaiting()).Run([&] { return ++runs; }), 3);
  EXPECT_THAT(transaction.notes, ElementsAre("begin", "commit", "begin", "commit", "begin", "commit"));
}

TEST(UnitOfWorkTest, ALostConnectionIsNeverRepeated) {
  NotedTransaction at_commit;
  at_commit.commit_states = {"gone"};
  int runs = 0;
  EXPECT_EQ(MessageOf([&] { UnitOfWork(at_commit, WithoutWaiting()).Run([&] { ++runs; }); }), "commit: gone");
  EXPECT_EQ(runs, 1);
  EXPECT_THAT(at_commit.notes, ElementsAre("begin", "commit"));

  NotedTransaction in_work;
  EXPECT_EQ(MessageOf([&] {
              UnitOfWork(in_work, WithoutWaiting()).Run([&] {
                in_work.lost = true;
                throw DatabaseError("the server is gone", {}, "gone");
              });
            }),
            "the server is gone");
  EXPECT_THAT(in_work.notes, ElementsAre("begin"));
}

TEST(UnitOfWorkTest, AConnectionLostBetweenAttemptsEndsTheRepetition) {
  NotedTransaction transaction;
  int runs = 0;
  EXPECT_EQ(MessageOf([&] {
              UnitOfWork(transaction, WithoutWaiting()).Run([&] {
                ++runs;
                transaction.lost = true;
                throw DatabaseError("locked", {}, "busy");
              });
            }),
            "the server is gone");
  EXPECT_EQ(runs, 1);
}

TEST(UnitOfWorkTest, WhatCannotBeTakenBackIsNotRepeated) {
  NotedTransaction transaction;
  transaction.refused = {"rollback"};
  int runs = 0;
  EXPECT_EQ(MessageOf([&] {
              UnitOfWork(transaction, WithoutWaiting()).Run([&] {
                ++runs;
                throw DatabaseError("locked", {}, "busy");
              });
            }),
            "locked");
  EXPECT_EQ(runs, 1);
}

TEST(UnitOfWorkTest, ATransactionThatTheCallerBeganIsNeitherCommittedNorRepeated) {
  NotedTransaction transaction;
  transaction.Begin();
  UnitOfWork(transaction).Run([] {});
  int runs = 0;
  EXPECT_EQ(MessageOf([&] {
              UnitOfWork(transaction, WithoutWaiting()).Run([&] {
                ++runs;
                throw DatabaseError("locked", {}, "busy");
              });
            }),
            "locked");
  EXPECT_EQ(runs, 1);
  EXPECT_TRUE(transaction.InTransaction());
  EXPECT_THAT(transaction.notes, ElementsAre("begin", "set", "release", "set", "back"));
}

TEST(UnitOfWorkTest, InnerWorkOfATransactionThatTheEngineEndedIsNotTakenBack) {
  NotedTransaction transaction;
  EXPECT_EQ(MessageOf([&] {
              UnitOfWork(transaction).Run([&] {
                UnitOfWork(transaction).Run([&] {
                  transaction.Rollback();
                  throw std::runtime_error("the disk is full");
                });
              });
            }),
            "the disk is full");
  EXPECT_THAT(transaction.notes, ElementsAre("begin", "set", "rollback"));
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
  UnitOfWork(transaction, WithoutWaiting()).Run([&] {
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
  Pauses pauses;
  EXPECT_EQ(MessageOf([&] { UnitOfWork(*database_, pauses.NotedIn(3)).Run([&] { Run("insert into t values (2)"); }); }),
            "database is locked");
  EXPECT_EQ(pauses.taken.size(), 2U);
  try {
    database_->Begin();
    FAIL() << "two writers";
  } catch (const DatabaseError& error) {
    EXPECT_EQ(error.State(), "5");
    EXPECT_TRUE(database_->MayBeRepeated(error));
  }
  Repetition until_it_is_free;
  until_it_is_free.wait = [&](Repetition::Pause) { other->Commit(); };
  UnitOfWork(*database_, until_it_is_free).Run([&] { Run("insert into t values (2)"); });
  EXPECT_THAT(RowsOf(*other, "select a from t"), ElementsAre("1", "2"));
}

TEST_F(UnitOfWorkOnDatabaseTest, TheHighestKeyIsThatOfTheOwnRow) {
  const auto other = adapters::Open("sqlite:" + folder_.File("a.db"));
  (void)other->Execute("pragma busy_timeout=0");
  UnitOfWork(*database_).Run([&] {
    Run("insert into t values (1)");
    EXPECT_EQ(MessageOf([&] { (void)other->Execute("insert into t values (2)"); }), "database is locked");
    EXPECT_THAT(RowsOf(*database_, "Select Top 1 a From t Order By a Desc"), ElementsAre("1"));
  });
}

TEST_F(UnitOfWorkOnDatabaseTest, SeveralUnitsGoIntoTheCallersTransaction) {
  database_->Begin();
  UnitOfWork(*database_).Run([&] { Run("insert into t values (1)"); });
  EXPECT_THROW(UnitOfWork(*database_).Run([&] {
    Run("insert into t values (2)");
    Run("insert into nowhere values (2)");
  }),
               DatabaseError);
  UnitOfWork(*database_).Run([&] { Run("insert into t values (3)"); });
  EXPECT_TRUE(database_->InTransaction());
  EXPECT_THAT(RowsOf(*database_, "select a from t"), ElementsAre("1", "3"));
  database_->Rollback();
  EXPECT_THAT(RowsOf(*database_, "select a from t"), IsEmpty());
}

TEST_F(UnitOfWorkOnDatabaseTest, WorkThatEndsItsTransactionItselfIsRefused) {
  EXPECT_EQ(MessageOf([&] {
              UnitOfWork(*database_).Run([&] {
                Run("insert into t values (1)");
                database_->Rollback();
              });
            }),
            "cannot commit - no transaction is active");
  EXPECT_THAT(RowsOf(*database_, "select a from t"), IsEmpty());
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
