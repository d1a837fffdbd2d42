#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

#include "properties.h"
#include "property.h"
#include "support/places.h"
#include "support/run_program.h"

namespace talm_flow::test {
namespace {

std::set<std::filesystem::path> InputsOf(std::string_view property) {
  std::set<std::filesystem::path> inputs;
  for (const auto& entry : std::filesystem::directory_iterator(SourcePath("fuzz/corpus/" + std::string(property)))) {
    inputs.insert(entry.path());
  }
  return inputs;
}

class CorpusTest : public ::testing::TestWithParam<fuzz::Property> {};

TEST_P(CorpusTest, ThePropertyHoldsForEveryInputOfItsCorpus) {
  const auto inputs = InputsOf(GetParam().name);
  ASSERT_FALSE(inputs.empty());
  for (const auto& input : inputs) {
    SCOPED_TRACE(input.filename().string());
    EXPECT_NO_THROW(GetParam().check(ReadFile(input)));
  }
}

TEST_P(CorpusTest, ThePropertyHoldsForBeginningsOfTheInputs) {
  constexpr std::size_t kMostBeginnings = 40;
  for (const auto& input : InputsOf(GetParam().name)) {
    const std::string bytes = ReadFile(input);
    const std::size_t step = bytes.size() / kMostBeginnings + 1;
    for (std::size_t size = 0; size < bytes.size(); size += step) {
      SCOPED_TRACE(input.filename().string() + " cut to " + std::to_string(size));
      EXPECT_NO_THROW(GetParam().check(std::string_view(bytes).substr(0, size)));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, CorpusTest, ::testing::ValuesIn(fuzz::Properties().begin(), fuzz::Properties().end()),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(CorpusFolderTest, EveryFolderBelongsToAProperty) {
  std::set<std::string> folders;
  for (const auto& entry : std::filesystem::directory_iterator(SourcePath("fuzz/corpus"))) {
    folders.insert(entry.path().filename().string());
  }
  std::set<std::string> properties;
  for (const auto& property : fuzz::Properties()) properties.insert(std::string(property.name));
  EXPECT_EQ(folders, properties);
}

}  // namespace
}  // namespace talm_flow::test
