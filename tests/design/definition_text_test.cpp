#include "design/definition_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "design/design_test.h"
#include "talm_flow/text.h"

namespace talm_flow::test {
namespace {

/// The separator keys, one by one, in the order in which the format lists them.
std::vector<std::string> SeparatorKeys() {
  std::vector<std::string> keys = {"//",
                                   "Ver:",
                                   "FlowBegin",
                                   "FlowRemark:",
                                   "StepBegin",
                                   "ParameterBegin",
                                   "FlowNo:",
                                   "ParentNo:",
                                   "Serial:",
                                   "Remark:",
                                   "Command:",
                                   "FunctionParameterBegin",
                                   "InputTitle:",
                                   "OrderNo:",
                                   "Sort:",
                                   "ClassContent:",
                                   "FunctionParameterEnd"};
  for (int n = 1; n <= 98; ++n) {
    for (int k = 1; k <= 8; ++k) keys.push_back("C_" + std::to_string(n) + "_" + std::to_string(k) + ":");
  }
  for (const char* key : {"ParameterEnd", "StepEnd", "FlowEnd"}) keys.emplace_back(key);
  return keys;
}

class PlainKeyList {
 public:
  [[nodiscard]] bool IsSeparateLine(std::string_view line) const {
    for (const std::string& key : keys_) {
      if (line.starts_with(key)) return true;
    }
    return false;
  }
  [[nodiscard]] const std::vector<std::string>& keys() const { return keys_; }

 private:
  std::vector<std::string> keys_ = SeparatorKeys();
};

TEST(SeparatorTest, EveryKeyBeginsASeparatorLineAndNoShorterTextDoes) {
  const PlainKeyList list;
  ASSERT_EQ(list.keys().size(), 804U);
  for (const std::string& key : list.keys()) {
    EXPECT_TRUE(design::IsSeparateLine(key)) << key;
    EXPECT_TRUE(design::IsSeparateLine(key + "rest")) << key;
    EXPECT_FALSE(design::IsSeparateLine(" " + key)) << key;
    const std::string cut = key.substr(0, key.size() - 1);
    EXPECT_EQ(design::IsSeparateLine(cut), list.IsSeparateLine(cut)) << cut;
  }
}

TEST(SeparatorTest, ParameterNamesOutsideTheFormatAreNoSeparators) {
  const PlainKeyList list;
  const auto expect_same = [&list](const std::string& line) {
    EXPECT_EQ(design::IsSeparateLine(line), list.IsSeparateLine(line)) << line;
  };
  for (int n = 0; n <= 110; ++n) {
    for (int k = 0; k <= 11; ++k) {
      const std::string numbers = std::to_string(n) + "_" + std::to_string(k);
      for (const char* end : {":x", "", " :"}) expect_same("C_" + numbers + end);
      if (n % 9 != 0) continue;
      for (const char* begin : {"C_0", "c_", "C_-", "C_ ", "C-", "C"}) expect_same(begin + numbers + ":");
    }
  }
}

TEST(SeparatorTest, LinesOfAnySpellingAreJudgedAsByThePlainKeyList) {
  const PlainKeyList list;
  std::mt19937 random(20260131);
  const auto pick = [&random](std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
  };
  constexpr std::string_view kCharacters = "C_0123456789:/FVSPRIOx bg";
  std::size_t separators = 0;
  for (int i = 0; i < 8000; ++i) {
    std::string line = list.keys()[pick(list.keys().size())];
    for (std::size_t changes = pick(3); changes > 0; --changes)
      line[pick(line.size())] = kCharacters[pick(kCharacters.size())];
    if (pick(4) == 0) line.resize(pick(line.size() + 1));
    const bool expected = list.IsSeparateLine(line);
    separators += expected ? 1 : 0;
    ASSERT_EQ(design::IsSeparateLine(line), expected) << line;
  }
  EXPECT_GT(separators, 2000U);
  EXPECT_LT(separators, 6000U);
}

struct Judged {
  const char* line;
  bool is_separator;
};

class SeparatorLineTest : public DesignTest, public ::testing::WithParamInterface<Judged> {};

TEST_P(SeparatorLineTest, IsJudgedByItsBeginning) {
  EXPECT_EQ(in_out.IsSeparateLine(GetParam().line), GetParam().is_separator);
}

INSTANTIATE_TEST_SUITE_P(Lines, SeparatorLineTest,
                         ::testing::Values(Judged{"", false}, Judged{"/", false}, Judged{"//", true},
                                           Judged{"flowend", false}, Judged{"FlowEnding", true},
                                           Judged{"Remark", false}, Judged{"Remark:", true}, Judged{"C_2_9:x", false},
                                           Judged{"C_99_1:x", false}, Judged{"C_98_8:x", true},
                                           Judged{"C_10_1:x", true}, Judged{"C_01_1:x", false}, Judged{"StepEnd", true},
                                           Judged{"FlowNumber", false}, Judged{"流程", false}));

TEST(SeparatorTest, ANumberOrNullIsNoSeparatorLine) {
  World world;
  InOut in_out(world.services());
  EXPECT_FALSE(in_out.IsSeparateLine(12));
  EXPECT_FALSE(in_out.IsSeparateLine(Value()));
}

struct Parting {
  std::string text, front, back;
};

class LinePartingTest : public DesignTest, public ::testing::WithParamInterface<Parting> {};

TEST_P(LinePartingTest, CutsAtTheFirstLineEnd) {
  Value front = "old";
  Value back = "old";
  in_out.SeparateLine(GetParam().text, front, back);
  EXPECT_EQ(front, Value(GetParam().front));
  EXPECT_EQ(back, Value(GetParam().back));
}

INSTANTIATE_TEST_SUITE_P(Texts, LinePartingTest,
                         ::testing::Values(Parting{"", "", ""}, Parting{"a", "a", ""}, Parting{"a\r\n", "a", ""},
                                           Parting{"a\r\nb\r\nc", "a", "b\r\nc"}, Parting{"\r\n", "", ""},
                                           Parting{"\r\na", "", "a"}, Parting{"a\nb\rc", "a\nb\rc", ""},
                                           Parting{"a\r\r\n\nb", "a\r", "\nb"}));

class ValuePartingTest : public DesignTest, public ::testing::WithParamInterface<Parting> {};

TEST_P(ValuePartingTest, TakesTheLinesThatContinueTheFirst) {
  Value front = "old";
  Value back = "old";
  in_out.SeparateValue(GetParam().text, front, back);
  EXPECT_EQ(front, Value(GetParam().front));
  EXPECT_EQ(back, Value(GetParam().back));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ValuePartingTest,
    ::testing::Values(Parting{"", "", ""}, Parting{"Remark:first\r\nsecond", "Remark:first\r\nsecond", ""},
                      Parting{"Remark:first\r\nsecond\r\nCommand:C_1\r\n", "Remark:first\r\nsecond", "Command:C_1\r\n"},
                      Parting{"C_3_1:a\r\nC_3_9:x\r\nC_3_2:y", "C_3_1:a\r\nC_3_9:x", "C_3_2:y"},
                      Parting{"a\r\n", "a", ""}, Parting{"a\r\n\r\n", "a\r\n", ""},
                      Parting{"a\r\n\r\nb\r\n//c", "a\r\n\r\nb", "//c"}, Parting{"//a\r\n//b", "//a", "//b"},
                      Parting{"\r\nFlowEnd", "", "FlowEnd"}, Parting{"\r\na", "\r\na", ""}));

/// Splits as the format tells it, line after line, each put together anew.
std::pair<std::string, std::string> PlainSeparateValue(const PlainKeyList& list, std::string rest) {
  const auto take_line = [&rest] {
    const std::size_t end = rest.find("\r\n");
    std::string line = rest.substr(0, end);
    rest = end == std::string::npos ? "" : rest.substr(end + 2);
    return line;
  };
  std::string value = take_line();
  while (!rest.empty()) {
    const std::string before = rest;
    const std::string line = take_line();
    if (list.IsSeparateLine(line)) return {value, before};
    value += "\r\n" + line;
  }
  return {value, rest};
}

TEST(ValueTest, TextsOfAnyShapeArePartedAsLineAfterLine) {
  const PlainKeyList list;
  std::mt19937 random(600);
  const auto pick = [&random](std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
  };
  const std::vector<std::string> pieces = {"\r\n", "\r\n", "\r\n", "\r",     "\n",     "a",
                                           "流",   ":",    "//",   "C_2_1:", "C_2_9:", "FlowEnd"};
  for (int i = 0; i < 5000; ++i) {
    std::string text;
    for (std::size_t count = pick(12); count > 0; --count) text += pieces[pick(pieces.size())];
    const auto [front, back] = PlainSeparateValue(list, text);
    const auto parted = design::SeparateValue(text);
    ASSERT_EQ(parted.front, front) << text;
    ASSERT_EQ(parted.back, back) << text;
  }
}

using DefinitionTextTest = DesignTest;

TEST_F(DefinitionTextTest, TheTextTakenApartMayTakeAPart) {
  Value text = "a\r\nb\r\n//c";
  Value other;
  in_out.SeparateLine(text, other, text);
  EXPECT_EQ(other, Value("a"));
  EXPECT_EQ(text, Value("b\r\n//c"));
  in_out.SeparateValue(text, text, other);
  EXPECT_EQ(text, Value("b"));
  EXPECT_EQ(other, Value("//c"));
}

TEST_F(DefinitionTextTest, ARemarkOfAFlowIsKnownByItsKey) {
  EXPECT_TRUE(in_out.IsFlowRemark("FlowRemark:"));
  EXPECT_TRUE(in_out.IsFlowRemark("FlowRemark:x\r\ny"));
  EXPECT_FALSE(in_out.IsFlowRemark("flowremark:x"));
  EXPECT_FALSE(in_out.IsFlowRemark(" FlowRemark:x"));
  EXPECT_FALSE(in_out.IsFlowRemark("FlowRemark"));
  EXPECT_FALSE(in_out.IsFlowRemark(Value()));
}

struct StepValues {
  Value back = "old", flow_no, parent_no, serial, remark, command;
};

TEST_F(DefinitionTextTest, StepAttributesAreReadInAnyOrderUpToTheFirstOtherValue) {
  StepValues v;
  in_out.GetStepValue(
      "Command:C_2\r\nRemark:first\r\nsecond\r\nFlowNo:3\r\nFlowNo: 4\r\nParameterBegin\r\nSerial:9\r\n", v.back,
      v.flow_no, v.parent_no, v.serial, v.remark, v.command);
  EXPECT_EQ(v.flow_no, Value(" 4"));
  EXPECT_EQ(v.parent_no, Value(0));
  EXPECT_EQ(v.serial, Value(0));
  EXPECT_EQ(v.remark, Value("first\r\nsecond"));
  EXPECT_EQ(v.command, Value("C_2"));
  EXPECT_EQ(v.back, Value("ParameterBegin\r\nSerial:9\r\n"));
}

TEST_F(DefinitionTextTest, StepAttributesCutBehindTheirKeys) {
  StepValues v;
  in_out.GetStepValue("FlowNo:1\r\nParentNo:2\r\nSerial:3\r\nRemark:\r\nCommand:C_9", v.back, v.flow_no, v.parent_no,
                      v.serial, v.remark, v.command);
  EXPECT_EQ(v.flow_no, Value("1"));
  EXPECT_EQ(v.parent_no, Value("2"));
  EXPECT_EQ(v.serial, Value("3"));
  EXPECT_EQ(v.remark, Value(""));
  EXPECT_EQ(v.command, Value("C_9"));
  EXPECT_EQ(v.back, Value(""));
}

TEST_F(DefinitionTextTest, WithoutAStepAttributeTheRestIsNotWritten) {
  for (const char* text : {"", "x", "//c\r\nFlowNo:1"}) {
    StepValues v;
    v.flow_no = v.remark = "old";
    in_out.GetStepValue(text, v.back, v.flow_no, v.parent_no, v.serial, v.remark, v.command);
    EXPECT_EQ(v.flow_no, Value(0));
    EXPECT_EQ(v.remark, Value(""));
    EXPECT_EQ(v.back, Value("old"));
  }
}

TEST_F(DefinitionTextTest, TheTextOfAttributesMayTakeTheRest) {
  StepValues v;
  Value text = "FlowNo:1\r\nFlowEnd\r\n";
  in_out.GetStepValue(text, text, v.flow_no, v.parent_no, v.serial, v.remark, v.command);
  EXPECT_EQ(v.flow_no, Value("1"));
  EXPECT_EQ(text, Value("FlowEnd\r\n"));
}

TEST_F(DefinitionTextTest, InputParameterAttributesAreReadTheSameWay) {
  Value back = "old";
  Value title, order, sort, content;
  in_out.GetFunctionValue(
      "Sort:5\r\nClassContent:a,b\r\nc\r\nInputTitle:金额\r\nInputTitle:数量\r\nFunctionParameterEnd", back, title,
      order, sort, content);
  EXPECT_EQ(title, Value("数量"));
  EXPECT_EQ(order, Value(0));
  EXPECT_EQ(sort, Value("5"));
  EXPECT_EQ(content, Value("a,b\r\nc"));
  EXPECT_EQ(back, Value("FunctionParameterEnd"));
  in_out.GetFunctionValue("OrderNo:7", back, title, order, sort, content);
  EXPECT_EQ(title, Value(""));
  EXPECT_EQ(order, Value("7"));
  EXPECT_EQ(sort, Value(0));
  EXPECT_EQ(content, Value(""));
  EXPECT_EQ(back, Value(""));
  back = "kept";
  in_out.GetFunctionValue("FlowNo:7", back, title, order, sort, content);
  EXPECT_EQ(order, Value(0));
  EXPECT_EQ(back, Value("kept"));
}

}  // namespace
}  // namespace talm_flow::test
