#include "support/fault_sweep.h"

#include <gtest/gtest.h>

#include <optional>
#include <string_view>
#include <vector>

#include "support/rows.h"
#include "talm_flow/host/unit_of_work.h"

namespace talm_flow::test {
namespace {

/// The faulty surroundings of one run.
struct Surroundings {
  Surroundings(adapters::Database& database, const host::Services& services, std::size_t failing)
      : points(failing), connection(database, points), files(services.files, points) {}

  std::string Run(const SweptCall& call, const host::Services& services) {
    host::Services disturbed{services.common,     services.records, services.tables,
                             services.user_lists, services.forms,   services.dates,
                             services.urls,       services.clock,   files};
    return call(connection, disturbed);
  }

  FaultPoints points;
  FaultyConnection connection;
  FaultyFileSystem files;
};

class Sweeper {
 public:
  Sweeper(adapters::Database& database, const host::Services& services, const SweptCall& call)
      : database_(database), services_(services), call_(call), dumper_(database), initial_(dumper_.Dump()) {}

  SweepResult RunUndisturbed() {
    Surroundings run(database_, services_, 0);
    run.points.OnReaching([&] { before_.push_back(KeptDump()); });
    database_.Begin();
    gave_ = run.Run(call_, services_);
    EXPECT_EQ(run.points.open_row_sets, 0U);
    const std::string final_rows = dumper_.Dump();
    after_ = final_rows;
    database_.Rollback();
    EXPECT_EQ(dumper_.Dump(), initial_);
    return {run.points.statements, run.points.reached(), final_rows != initial_};
  }

  void FailAt(std::size_t point) {
    Surroundings run(database_, services_, point);
    std::optional<std::string> rows;
    try {
      host::UnitOfWork(database_).Run([&] {
        try {
          (void)run.Run(call_, services_);
        } catch (...) {
          rows = dumper_.Dump();
          throw;
        }
      });
      ADD_FAILURE() << "no error reached the caller";
    } catch (const InjectedFault& error) {
      EXPECT_EQ(std::current_exception(), run.points.fault()) << "another error object: " << error.what();
    } catch (const std::exception& error) {
      ADD_FAILURE() << "another error reached the caller: " << error.what();
    }
    EXPECT_EQ(run.points.reached(), point) << "something ran behind the fault";
    EXPECT_EQ(run.points.open_row_sets, 0U) << "a row set stayed open";
    if (rows) {
      EXPECT_EQ(*rows, dumps_.at(before_.at(point - 1))) << "other rows than those of the statements before the fault";
    }
    EXPECT_FALSE(database_.InTransaction()) << "the unit of work did not end";
  }

  /// The call again, without a fault, on the connection that has seen one.
  void RunAgain() {
    ExpectNothingChanged();
    database_.Begin();
    EXPECT_EQ(call_(database_, services_), gave_);
    EXPECT_EQ(dumper_.Dump(), after_);
    database_.Rollback();
  }

  void RunNext(const SweptCall& next) {
    EXPECT_NO_THROW((void)next(database_, services_));
    ExpectNothingChanged();
  }

 private:
  void ExpectNothingChanged() const {
    EXPECT_EQ(dumper_.Dump(), initial_) << "the unit of work did not take everything back";
  }

  /// The number of the dump of what stands in the database now; equal ones are kept once.
  std::size_t KeptDump() {
    std::string dump = dumper_.Dump();
    if (dumps_.empty() || dumps_.back() != dump) dumps_.push_back(std::move(dump));
    return dumps_.size() - 1;
  }

  adapters::Database& database_;
  const host::Services& services_;
  const SweptCall& call_;
  Dumper dumper_;
  std::string initial_;
  std::string gave_;
  std::string after_;
  std::vector<std::string> dumps_;
  std::vector<std::size_t> before_;  ///< of each point, the dump that stood when it was reached
};

template <typename AndThen>
SweepResult SweepAll(Sweeper& sweeper, const AndThen& and_then) {
  const SweepResult result = sweeper.RunUndisturbed();
  for (std::size_t point = 1; point <= result.points && !testing::Test::HasFailure(); ++point) {
    SCOPED_TRACE("fault point " + std::to_string(point) + " of " + std::to_string(result.points));
    sweeper.FailAt(point);
    and_then();
  }
  return result;
}

}  // namespace

SweepResult Sweep(adapters::Database& database, const host::Services& services, const SweptCall& call,
                  const SweptCall& next) {
  Sweeper sweeper(database, services, call);
  const SweepResult result = SweepAll(sweeper, [&] { sweeper.RunNext(next); });
  sweeper.RunAgain();
  return result;
}

SweepResult Sweep(adapters::Database& database, const host::Services& services, const SweptCall& call) {
  Sweeper sweeper(database, services, call);
  return SweepAll(sweeper, [&] { sweeper.RunAgain(); });
}

}  // namespace talm_flow::test
