#pragma once

/// All or nothing: calls of the component run nothing in a transaction by themselves, so a host that wants a call to
/// leave no half of its rows behind wraps it.
///
///   UnitOfWork(database).Run([&] { command.FlowExecute(...); });
///
/// One thread at a time. The work must be fit to run again: when another connection was in the way, everything is taken
/// back and the work is done again from its start, a bounded number of times.

#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

#include "talm_flow/host/transaction.h"

namespace talm_flow::host {

class UnitOfWork {
 public:
  /// How often work that other connections disturb is done in all.
  static constexpr int kUsualAttempts = 5;

  /// @param transaction  of the connection that the work uses; outlives this object.
  explicit UnitOfWork(Transaction& transaction, int attempts = kUsualAttempts)
      : transaction_(transaction), attempts_(attempts) {}

  /// Runs `work` in one transaction, which is committed when it returns. When the work or the commit throws, everything
  /// is taken back and the error goes to the caller; an error of the taking back does not hide it.
  ///
  /// Inside a transaction that is open already the work runs in a savepoint, so that it alone is taken back; without
  /// savepoints it becomes a part of the open transaction. Either way the outermost unit of work decides about
  /// repetition.
  /// @returns what the work returns.
  template <typename Work>
  std::invoke_result_t<Work&> Run(Work&& work) {
    using Result = std::invoke_result_t<Work&>;
    if constexpr (std::is_void_v<Result>) {
      RunAny(Callable(work));
    } else {
      std::optional<Result> result;
      auto kept = [&] { result.emplace(work()); };
      RunAny(Callable(kept));
      return std::move(*result);
    }
  }

 private:
  /// Work whose type does not matter any more. Refers to it.
  class Callable {
   public:
    template <typename Work>
    explicit Callable(Work& work)
        : work_(const_cast<void*>(static_cast<const void*>(std::addressof(work)))),
          call_([](void* held) { (*static_cast<Work*>(held))(); }) {}
    void operator()() const { call_(work_); }

   private:
    void* work_;
    void (*call_)(void*);
  };

  void RunAny(const Callable& work);
  void RunNested(const Callable& work);
  void RunOnce(const Callable& work);

  Transaction& transaction_;
  int attempts_;
};

}  // namespace talm_flow::host
