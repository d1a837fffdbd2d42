#include "support/figures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>

namespace talm_flow::test {
namespace {

class Figures : public testing::Environment {
 public:
  void Add(const std::string& name, std::size_t count) { counts_[name] += count; }

  void TearDown() override {
    for (const auto& [name, count] : counts_) {
      std::string words = name;
      std::ranges::replace(words, '_', ' ');
      std::printf("%s: %zu\n", words.c_str(), count);
      testing::Test::RecordProperty(name, std::to_string(count));
    }
  }

 private:
  std::map<std::string, std::size_t> counts_;
};

/// Owned by the test framework.
Figures& TheFigures() {
  static auto& figures =
      static_cast<Figures&>(*testing::AddGlobalTestEnvironment(std::make_unique<Figures>().release()));
  return figures;
}

[[maybe_unused]] const Figures& registered_before_the_tests_begin = TheFigures();

}  // namespace

void AddToFigure(const std::string& name, std::size_t count) { TheFigures().Add(name, count); }

}  // namespace talm_flow::test
