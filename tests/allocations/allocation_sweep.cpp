#include "allocations/allocation_sweep.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <new>

namespace talm_flow::test {
namespace {

/// Tells how many allocations were made to fail, behind the last test.
class Figures : public testing::Environment {
 public:
  static void Count() { ++count; }
  void TearDown() override { std::printf("allocations made to fail: %zu\n", count); }

 private:
  static inline std::size_t count = 0;
};

[[maybe_unused]] const testing::Environment* const kFigures =
    testing::AddGlobalTestEnvironment(std::make_unique<Figures>().release());

}  // namespace

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
    if (refusal != Refusal::kNone) Figures::Count();
  }
}

}  // namespace talm_flow::test
