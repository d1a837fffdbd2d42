// docs/checks.md: every code is told there, and every example gives exactly what the document says.

#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/definitions.h"
#include "support/places.h"
#include "support/run_program.h"
#include "support/world.h"
#include "talm_flow/in_out.h"

namespace talm_flow::test {
namespace {

struct Example {
  std::string mark;   ///< what stands in the comment before it: "E206", "none stored"
  std::string other;  ///< the definition of flow 2, where there is one
  std::string body;
  std::size_t line = 0;
};

std::string Document() { return ReadFile(SourcePath("docs/checks.md")); }

/// The text between two marks, when the line has both.
std::optional<std::string> Between(const std::string& line, std::string_view begin, std::string_view end) {
  if (!line.starts_with(begin) || !line.ends_with(end)) return std::nullopt;
  return line.substr(begin.size(), line.size() - begin.size() - end.size());
}

std::string ReadBlock(std::istringstream& lines, std::size_t& number) {
  std::string block;
  std::string line;
  std::getline(lines, line);
  ++number;
  EXPECT_EQ(line, "```") << "line " << number;
  while (std::getline(lines, line) && line != "```") {
    block += line + "\n";
    ++number;
  }
  ++number;
  return block;
}

std::vector<Example> Examples() {
  std::vector<Example> examples;
  std::istringstream lines(Document());
  std::string line;
  std::string other;
  for (std::size_t number = 1; std::getline(lines, line); ++number) {
    if (Between(line, "<!-- flow: ", " -->")) {
      other = ReadBlock(lines, number);
    } else if (const auto mark = Between(line, "<!-- check: ", " -->")) {
      const std::size_t at = number;
      examples.push_back({*mark, std::exchange(other, {}), ReadBlock(lines, number), at});
    }
  }
  return examples;
}

/// The whole definition text that an example stands for.
std::string WholeText(const std::string& body, bool cut_off) {
  if (body.starts_with("Command:")) {
    const auto end = body.find('\n');
    return Text(StepLines(1, 0, body.substr(8, end - 8), body.substr(end + 1)));
  }
  if (!body.starts_with("StepBegin")) return WithCrLf(body);
  auto text = Text(body);
  if (cut_off) text.resize(text.size() - std::string_view("FlowEnd\r\n").size());
  return text;
}

void Store(World& world, int flow, const std::string& text) {
  world.Run("Insert Into WorkFlowName (FlowName,Creater,Remark) Values ('Flow','kim','')");
  InOut in_out(world.services());
  ASSERT_EQ(in_out.CreatFlow(world.connection(), flow, text), 0);
}

std::string CodesOfStored(const Example& example, bool with_other) {
  World world;
  if (example.mark.ends_with(" as C_80_1")) {
    Store(world, 1, Text(StepLines(1, 0, "C_80")));
    world.Parameter(1, 1, "C_80_1", WithCrLf(example.body.substr(0, example.body.size() - 1)));
  } else {
    Store(world, 1, WholeText(example.body, false));
  }
  const std::string harmless = StepLines(1, 0, "C_60", "C_60_1:now\n");
  if (with_other) Store(world, 2, example.other.empty() ? Text(harmless) : WholeText(example.other, false));
  return Codes(CheckFlow(world.connection(), world.services(), 1));
}

std::string CodesOfExample(const Example& example) {
  const bool stored = example.mark.find(" stored") != std::string::npos;
  if (stored) return CodesOfStored(example, example.mark.ends_with(" with flow 2"));
  return CodesOf(WholeText(example.body, example.mark.ends_with(" at the end")));
}

TEST(CheckDocumentTest, EveryExampleGivesExactlyItsCode) {
  const auto examples = Examples();
  ASSERT_GT(examples.size(), 90U);
  for (const auto& example : examples) {
    const auto expected = example.mark.substr(0, example.mark.find(' '));
    EXPECT_EQ(CodesOfExample(example), expected == "none" ? "" : expected) << "docs/checks.md:" << example.line << "\n"
                                                                           << example.body;
  }
}

TEST(CheckDocumentTest, EveryCodeIsToldWithItsTitle) {
  const auto document = Document();
  std::set<std::string> with_example;
  for (const auto& example : Examples()) with_example.insert(example.mark.substr(0, example.mark.find(' ')));
  for (const auto& [code, title] : CheckCodes()) {
    EXPECT_NE(document.find("\n### " + std::string(code) + " " + std::string(title) + "\n"), std::string::npos) << code;
    // An example of 10001 steps is no example.
    EXPECT_TRUE(code == "W107" || with_example.contains(std::string(code))) << code;
  }
}

TEST(CheckDocumentTest, NoOtherCodesAreTold) {
  std::size_t told = 0;
  const auto document = Document();
  for (std::size_t at = document.find("\n### "); at != std::string::npos; at = document.find("\n### ", at + 1)) ++told;
  EXPECT_EQ(told, CheckCodes().size());
}

}  // namespace
}  // namespace talm_flow::test
