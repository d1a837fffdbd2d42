#include "talm_flow/host/unit_of_work.h"

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
      if (attempt >= attempts_ || !transaction_.MayBeRepeated(error)) throw;
    }
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
