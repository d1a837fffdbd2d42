// Copies of values where memory is short.

#include <gtest/gtest.h>

#include <string>

#include "allocations/allocation_sweep.h"
#include "talm_flow/value.h"

namespace talm_flow::test {
namespace {

TEST(ValueAllocationsTest, ACopyOfATextTellsTheCaller) {
  const Value text(std::string(100, 'x'));
  SweepAllocations(
      Shortage::kPassing, [&] { return Value(text).Text(); }, [] {});
  Value assigned = 1;
  SweepAllocations(
      Shortage::kPassing,
      [&] {
        assigned = text;
        return assigned.Text();
      },
      [&] { assigned = 1; });
}

}  // namespace
}  // namespace talm_flow::test
