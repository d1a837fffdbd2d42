#include "talm_flow/host/unit_of_work.h"

#include <algorithm>
#include <random>
#include <thread>

namespace talm_flow::host {
namespace {

/// Takes something back while an error is on its way to the caller, which no second error may hide.
template <typename TakeBack>
void Quietly(TakeBack take_back) noexcept {
  try {
    take_back();
  } catch (...) {  // the first error tells what went wrong
  }
}

}  // namespace

void UnitOfWork::RunAny(const Callable& work) {
  if (transaction_.InTransaction()) {
    RunNested(work);
    return;
  }
  for (int attempt = 1;; ++attempt) {
    try {
      RunOnce(work);
      return;
    } catch (const DatabaseError& error) {
      if (attempt >= repetition_.attempts || !transaction_.MayBeRepeated(error)) throw;
      if (transaction_.InTransaction()) throw;  // it could not be taken back
    }
    PauseAfter(attempt);
  }
}

void UnitOfWork::PauseAfter(int attempt) const {
  using Pause = Repetition::Pause;
  Pause most = std::min(repetition_.first_pause, repetition_.longest_pause);
  for (int i = 1; i < attempt && most < repetition_.longest_pause; ++i) {
    most = std::min(most * 2, repetition_.longest_pause);
  }
  most = std::max(most, Pause::zero());
  std::random_device random;
  const Pause pause(std::uniform_int_distribution<Pause::rep>(most.count() / 2, most.count())(random));
  if (repetition_.wait) {
    repetition_.wait(pause);
  } else {
    std::this_thread::sleep_for(pause);
  }
}

void UnitOfWork::RunOnce(const Callable& work) {
  transaction_.Begin();
  try {
    work();
    transaction_.Commit();
  } catch (...) {
    Quietly([this] {
      // Some errors make the engine itself end the transaction.
      if (transaction_.InTransaction()) transaction_.Rollback();
    });
    throw;
  }
}

void UnitOfWork::RunNested(const Callable& work) {
  if (!transaction_.OffersSavepoints()) {
    work();
    return;
  }
  transaction_.SetSavepoint();
  try {
    work();
    transaction_.ReleaseSavepoint();
  } catch (...) {
    Quietly([this] {
      if (transaction_.InTransaction()) transaction_.RollbackToSavepoint();
    });
    throw;
  }
}

}  // namespace talm_flow::host
