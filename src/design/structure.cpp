#include "design/structure.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

#include "design/tree_walk.h"
#include "talm_flow/error.h"

namespace talm_flow::design {

namespace {

constexpr std::int32_t kMost = std::numeric_limits<std::int16_t>::max();

void AppendStepNumbers(RowSet& rows, std::vector<Value>& numbers) {
  if (!db::Session::HasRow(rows)) return;
  for (; !rows.AtEnd(); rows.MoveNext()) numbers.emplace_back(ToInt16(rows.Field("FlowNo")));
}

/// Computes the height of every subtree when its last child has been left.
class HeightVisitor {
 public:
  HeightVisitor(db::Session& session, const Value& flow_id) : session_(session), flow_id_(flow_id) {}

  void ReadChildren(const Value& flow_no, std::vector<Value>& children) {
    const auto rows = session_.Open("select Top 10000 flowno from WorkFlowConstruction where FlowID=", flow_id_,
                                    " and ParentNo=", flow_no);
    AppendStepNumbers(*rows, children);
  }
  void BeginChildren(std::size_t) { tallest_child_.push_back(0); }
  void EnterChild(const Value&, std::size_t, std::size_t) { last_height_ = 0; }
  void LeaveChild() { tallest_child_.back() = std::max(tallest_child_.back(), last_height_); }
  void EndChildren() {
    last_height_ = 1 + tallest_child_.back();
    tallest_child_.pop_back();
    if (last_height_ > kMost) throw OverflowError("the step tree is higher than 32767");
  }
  [[nodiscard]] std::int16_t height() const { return static_cast<std::int16_t>(last_height_); }

 private:
  db::Session& session_;
  const Value& flow_id_;
  std::vector<std::int32_t> tallest_child_;  // of every open step, as far as its children were visited
  std::int32_t last_height_ = 0;             // of the subtree that was finished last
};

/// Collects the numbers of all steps on first sight.
class DescendantVisitor {
 public:
  DescendantVisitor(db::Session& session, const Value& flow_id) : session_(session), flow_id_(flow_id) {}

  void ReadChildren(const Value& flow_no, std::vector<Value>& children) {
    const auto rows = session_.Open("select Top 10000 FlowNo from WorkFlowConstruction where parentno=", flow_no,
                                    " and flowid=", flow_id_);
    AppendStepNumbers(*rows, children);
  }
  void BeginChildren(std::size_t) {}
  void EnterChild(const Value& flow_no, std::size_t, std::size_t) {
    if (!list_.empty()) list_ += ',';
    AppendJoined(list_, flow_no);
  }
  void LeaveChild() {}
  void EndChildren() {}
  [[nodiscard]] std::string TakeList() { return std::move(list_); }

 private:
  db::Session& session_;
  const Value& flow_id_;
  std::string list_;
};

}  // namespace

std::int16_t MaxFlowNo(db::Session& session, const Value& flow_id) {
  const auto found = session.FirstField(
      "FlowNo", "Select top 1 FlowNo from WorkFlowConstruction where FlowID=", flow_id, " order by FlowNo desc");
  return found ? ToInt16(*found) : std::int16_t{0};
}

bool FlowNoExists(db::Session& session, const Value& flow_id, const Value& flow_no) {
  return session.AnyRow("Select Top 1 FlowNo From WorkFlowConstruction where FlowID=", flow_id,
                        " and FlowNo=", flow_no);
}

std::int16_t GetParentNo(db::Session& session, const Value& flow_id, const Value& flow_no) {
  const auto found = session.FirstField(
      "ParentNo", "Select Top 1 ParentNo from WorkFlowConstruction where FlowID=", flow_id, " and FlowNo=", flow_no);
  return found ? ToInt16(*found) : std::int16_t{0};
}

std::int16_t GetStepQty(db::Session& session, const Value& flow_id, const Value& flow_no) {
  std::int32_t depth = 0;
  for (std::int16_t step = ToInt16(flow_no); step > 0; step = GetParentNo(session, flow_id, step)) {
    if (++depth > kMost) throw OverflowError("a step lies deeper than 32767");
  }
  return static_cast<std::int16_t>(depth);
}

std::int16_t GetMaxStepQty(db::Session& session, const Value& flow_id, const Value& flow_no) {
  HeightVisitor visitor(session, flow_id);
  WalkBelow(flow_id, flow_no, visitor);
  return visitor.height();
}

std::string GetChildFlowNo(db::Session& session, const Value& flow_id, const Value& flow_no) {
  DescendantVisitor visitor(session, flow_id);
  WalkBelow(flow_id, flow_no, visitor);
  return visitor.TakeList();
}

bool InChild(db::Session& session, const Value& flow_id, const Value& flow_no, const Value& sought) {
  const std::string list = GetChildFlowNo(session, flow_id, flow_no);
  return session.host().common.InList(list, JoinedText(sought));
}

bool ChildExists(db::Session& session, const Value& flow_id, const Value& flow_no) {
  return FlowNoExists(session, flow_id, flow_no) &&
         session.AnyRow("select Top 1 flowno from WorkFlowConstruction where FlowID=", flow_id,
                        " and ParentNo=", flow_no);
}

std::int16_t DelCommand(db::Session& session, const Value& flow_id, const Value& flow_no) {
  if (!FlowNoExists(session, flow_id, flow_no)) return 1;
  if (SwitchIs(flow_no, 1) && ChildExists(session, flow_id, flow_no)) return 2;
  const std::int16_t parent_no = GetParentNo(session, flow_id, flow_no);
  session.Execute("delete from WorkFlowConstruction where FlowID=", flow_id, " and FlowNo=", flow_no);
  session.Execute("delete from WorkFlowParameter where FlowID=", flow_id, " and FlowNo=", flow_no);
  session.Execute("update WorkFlowConstruction set ParentNo=", parent_no, " where FlowID=", flow_id,
                  " and ParentNo=", flow_no);
  return 0;
}

std::string GetCommand(db::Session& session, const Value& flow_id, const Value& flow_no) {
  return session.FirstText("Command", "Select Top 1 Command from WorkFlowConstruction where FlowID=", flow_id,
                           " and FlowNo=", flow_no);
}

}  // namespace talm_flow::design
