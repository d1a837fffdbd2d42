#pragma once

/// @file
/// All or nothing: calls of the component run nothing in a transaction by themselves, so a host that wants a call to
/// leave no half of its rows behind wraps it.
///
///   UnitOfWork(database).Run([&] { command.FlowExecute(...); });
///
/// Several calls, and the host's own writes on the same connection, go into one unit as well as one call does.
///
/// One thread at a time. The work must be fit to run again: when another connection was in the way, everything is taken
/// back and, after a pause, the work is done again from its start, a bounded number of times.
///
/// The component reads some new rows' keys as the highest key of their table. Between hosts that work at the same time
/// only units of work make that safe: see `Transaction::Begin`.

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

#include "talm_flow/export.h"
#include "talm_flow/host/transaction.h"

namespace talm_flow::host {

/// How work that other connections disturb is done again.
struct TALM_FLOW_API Repetition {
  /// How long a pause is.
  using Pause = std::chrono::milliseconds;

  /// How often the work is done in all; one at least.
  int attempts = 8;
  /// The pause before the second attempt is at most this long; before each further one at most twice as long as before
  /// the last. A pause is a random part of that, half of it at least, so that those who met do not meet again.
  Pause first_pause{5};
  /// No pause is longer.
  Pause longest_pause{500};
  /// Lets a pause go by. Empty: the thread sleeps.
  std::function<void(Pause)> wait;
};

/// Runs work in a transaction.
class TALM_FLOW_API UnitOfWork {
 public:
  /// @param transaction  of the connection that the work uses; outlives this object.
  explicit UnitOfWork(Transaction& transaction, Repetition repetition = {})
      : transaction_(transaction), repetition_(std::move(repetition)) {}

  /// Runs `work` in one transaction, which is committed when it returns. When the work or the commit throws, everything
  /// is taken back and the error goes to the caller; an error of the taking back does not hide it.
  ///
  /// Work is done again only after errors of which `Transaction::MayBeRepeated` says so, and only when everything could
  /// be taken back. After a lost connection it never is: the error goes to the caller, and when the commit was under
  /// way it is open whether the work is kept.
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
  void PauseAfter(int attempt) const;

  Transaction& transaction_;
  Repetition repetition_;
};

}  // namespace talm_flow::host
