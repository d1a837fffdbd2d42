#include "allocations/allocation_sweep.h"

#include <gtest/gtest.h>

#include <new>

#include "support/figures.h"

namespace talm_flow::test {

void SweepAllocations(Shortage shortage, const std::function<std::string()>& call, const std::function<void()>& reset) {
  const auto undisturbed = [&] {
    std::string gave = call();
    reset();
    return gave;
  };
  // What is kept from call to call, as prepared statements are, is there before the blocks are counted.
  (void)undisturbed();
  const std::string gave = undisturbed();
  const long live = LiveBlocks();
  std::size_t refused = 0;
  Refusal refusal = Refusal::kRaised;
  for (std::size_t failing = 1; refusal != Refusal::kNone && !testing::Test::HasFailure(); ++failing) {
    bool told = false;
    FailAllocation(failing, shortage);
    try {
      (void)call();
    } catch (const std::bad_alloc&) {
      told = true;
    }
    refusal = EndShortage();
    reset();
    EXPECT_EQ(undisturbed(), gave) << "after allocation " << failing;
    EXPECT_EQ(LiveBlocks(), live) << "a leak after allocation " << failing;
    EXPECT_EQ(told, refusal == Refusal::kRaised) << "allocation " << failing << " failed and nobody was told";
    if (refusal != Refusal::kNone) ++refused;
  }
  AddToFigure("allocations_made_to_fail", refused);
}

}  // namespace talm_flow::test
