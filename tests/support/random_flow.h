#pragma once

/// Definitions that nobody wrote: a seed gives a well-formed flow, the same one everywhere.

#include <cstdint>
#include <random>
#include <string>

namespace talm_flow::test {

/// Makes flows for an `ExampleOffice`. Their trees have conditions, jumps, waits, timers and child flows; every command
/// comes up, with parameters of the kinds that it takes. Each ends in bounded time: a jump leads forwards, but for one
/// in a few flows, and a flow starts only flows with lower numbers.
class RandomFlow {
 public:
  explicit RandomFlow(std::uint32_t seed) : random_(seed) {}

  /// The next flow as a definition text.
  /// @param first_flow  the lowest number of a flow that it may start.
  /// @param flow        its own number, which bounds those that it may start.
  [[nodiscard]] std::string Next(int first_flow, int flow);

  /// An expression over the flow's variables, numbers, texts and references.
  [[nodiscard]] std::string Expression();

 private:
  /// A number from `first` to `last`.
  [[nodiscard]] int Number(int first, int last);
  [[nodiscard]] bool OneIn(int count) { return Number(1, count) == 1; }
  template <std::size_t count>
  [[nodiscard]] std::string OneOf(const char* const (&texts)[count]) {
    return texts[static_cast<std::size_t>(Number(0, static_cast<int>(count) - 1))];
  }
  [[nodiscard]] std::string Command();
  [[nodiscard]] std::string Parameters(const std::string& command);
  [[nodiscard]] std::string Operand();
  [[nodiscard]] std::string Target();

  /// What the parameters of the step in the making depend on.
  struct Place {
    int step = 0;
    int steps = 0;
    int first_flow = 0;
    int flow = 0;
  };

  // A standard engine gives the same numbers on every system; a standard distribution does not.
  std::mt19937 random_;
  Place place_;
};

}  // namespace talm_flow::test
