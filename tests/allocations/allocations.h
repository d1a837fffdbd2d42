#pragma once

/// Memory that runs out on order. Linked into a program, the source beside this header replaces its operators new and
/// delete: they count the blocks of each thread, and make an allocation fail that was asked to.

#include <cstddef>

namespace talm_flow::test {

enum class Shortage {
  kPassing,  ///< one allocation fails, those behind it succeed
  kLasting,  ///< one allocation fails and all behind it
};

/// What came of a shortage.
enum class Refusal {
  kNone,    ///< no allocation was refused
  kNull,    ///< only such as can do without gave null, and nobody need be told
  kRaised,  ///< std::bad_alloc was raised
};

/// From now on the calling thread's allocation number `failing`, counted from 1, is refused; 0 for none.
void FailAllocation(std::size_t failing, Shortage shortage);

/// Ends the shortage.
Refusal EndShortage();

/// Blocks that the calling thread has allocated and nobody has given back.
[[nodiscard]] long LiveBlocks();

}  // namespace talm_flow::test
