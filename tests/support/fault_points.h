#pragma once

/// Visiting every place at which a call may fail.
///
/// A fault point is a place at which the outside world can refuse: a statement, an access to a row set, an operation on
/// a file. A first, undisturbed run counts them; further runs make one of them fail, each another one.

#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <string_view>

#include "talm_flow/error.h"
#include "talm_flow/host/connection.h"
#include "talm_flow/host/file_system.h"

namespace talm_flow::test {

/// What a fault point raises. Its type and its text are nobody else's.
class InjectedFault : public DatabaseError {
 public:
  using DatabaseError::DatabaseError;
};

/// Counts the fault points of one run, and makes one of them fail.
class FaultPoints {
 public:
  /// @param failing  which point fails, from 1; 0 for none.
  explicit FaultPoints(std::size_t failing = 0);

  /// A point is reached: what would happen behind it has not happened yet.
  void Reach();

  /// Called at each point, before it fails; for looking at what stands in the database just then.
  void OnReaching(std::function<void()> observer) { observer_ = std::move(observer); }

  /// The points reached, the failed one included.
  [[nodiscard]] std::size_t reached() const { return reached_; }

  /// The error object that the failing point raises.
  [[nodiscard]] const std::exception_ptr& fault() const { return fault_; }

  /// Statements handed over, also those that failed.
  std::size_t statements = 0;
  /// Row sets that are neither closed nor gone.
  std::size_t open_row_sets = 0;

 private:
  std::size_t failing_;
  std::size_t reached_ = 0;
  std::exception_ptr fault_;
  std::function<void()> observer_;
};

/// Hands everything on; each statement and each access to a row is a fault point. Host services read through it too, so
/// that their faults are visited as well.
class FaultyConnection : public Connection {
 public:
  FaultyConnection(Connection& inner, FaultPoints& points) : inner_(inner), points_(points) {}

  std::unique_ptr<RowSet> Execute(std::string_view statement) override;
  [[nodiscard]] std::unique_ptr<RowSet> Open(std::string_view query) override;

 private:
  void ReachStatement();

  Connection& inner_;
  FaultPoints& points_;
};

/// Hands everything on; each operation on a file is a fault point.
class FaultyFileSystem : public host::FileSystem {
 public:
  FaultyFileSystem(host::FileSystem& inner, FaultPoints& points) : inner_(inner), points_(points) {}

  void RequireEncodable(std::string_view file_name, std::string_view text) override;
  [[nodiscard]] bool FileExists(std::string_view file_name) override;
  void DeleteFile(std::string_view file_name) override;
  [[nodiscard]] std::unique_ptr<host::TextStream> CreateTextFile(std::string_view file_name) override;

 private:
  host::FileSystem& inner_;
  FaultPoints& points_;
};

}  // namespace talm_flow::test
