#include "faults/figures.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace talm_flow::test {
namespace {

/// Tells the sum behind the last test, whatever was filtered.
class Figures : public testing::Environment {
 public:
  void Add(const SweepResult& result) {
    statements_ += result.statements;
    points_ += result.points;
  }

  void TearDown() override {
    std::printf("statements made to fail: %zu\nfailure points visited: %zu\n", statements_, points_);
  }

 private:
  std::size_t statements_ = 0;
  std::size_t points_ = 0;
};

/// Owned by the test framework.
Figures& TheFigures() {
  static auto& figures =
      static_cast<Figures&>(*testing::AddGlobalTestEnvironment(std::make_unique<Figures>().release()));
  return figures;
}

[[maybe_unused]] const Figures& registered_before_the_tests_begin = TheFigures();

}  // namespace

void Count(const SweepResult& result) { TheFigures().Add(result); }

}  // namespace talm_flow::test
