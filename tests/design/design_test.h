#pragma once

/// What the tests of the design side share: a world, the three classes on it, and short ways to store definitions.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <ostream>
#include <string>
#include <string_view>

#include "support/world.h"
#include "talm_flow/construction.h"
#include "talm_flow/conversion.h"
#include "talm_flow/error.h"
#include "talm_flow/in_out.h"
#include "talm_flow/name.h"

namespace talm_flow {

/// How a value stands in the message of a failed comparison.
inline void PrintTo(const Value& value, std::ostream* out) {
  constexpr const char* kKinds[] = {"Null", "Boolean ", "whole ", "double ", "text "};
  *out << kKinds[static_cast<int>(value.kind())] << JoinedText(value);
}

}  // namespace talm_flow

namespace talm_flow::test {

// What drawings are made of.
inline constexpr std::string_view kRow = R"(<table border="0" cellspacing="0" cellpadding="0"><tr>)";
inline constexpr std::string_view kCell = "<td align=center valign=top>";

/// A box of a step stored by `World::Step`.
inline std::string Box(int flow_no, int parent_no) {
  return R"(<table border="1" cellspacing="0" cellpadding="0"><tr><td>序号：)" + std::to_string(flow_no) +
         "<br>父序：" + std::to_string(parent_no) + "<br>说明：Step " + std::to_string(flow_no) + "</td></tr></table>";
}

inline std::string Joined(std::initializer_list<std::string_view> pieces) {
  std::string text;
  for (const auto piece : pieces) text += piece;
  return text;
}

class DesignTest : public ::testing::Test {
 protected:
  void Flow(int flow_id, std::string_view flow_name, std::string_view creater = "", std::string_view remark = "") {
    world.Run("Insert Into WorkFlowName (FlowID,FlowName,Creater,Remark) Values (" + std::to_string(flow_id) + "," +
              Literal(flow_name) + "," + Literal(creater) + "," + Literal(remark) + ")");
  }

  void Input(int flow_id, std::string_view title, int order_no, int sort, std::string_view content) {
    world.Run("Insert Into WorkFlowFunctionInput (FlowID,InputTitle,OrderNo,Sort,ClassContent) Values (" +
              std::to_string(flow_id) + "," + Literal(title) + "," + std::to_string(order_no) + "," +
              std::to_string(sort) + "," + Literal(content) + ")");
  }

  World world;
  Connection& db = world.connection();
  Construction construction{world.services()};
  InOut in_out{world.services()};
  Name name{world.services()};
};

}  // namespace talm_flow::test
