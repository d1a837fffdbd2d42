#pragma once

/// The depth-first walk over a step tree that all structure queries and the drawing share.
///
/// The pending work stands on the heap, so that the depth of a tree is bounded by memory and not by a thread's stack;
/// the steps come, and the queries run, in the order in which a recursive walk would take them. A step's children are
/// read as a whole before anything below them is visited, so that never more than one row set is open.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_set>
#include <utility>
#include <vector>

#include "talm_flow/value.h"

namespace talm_flow::design {

/// The step numbers between the start of a walk and where it stands.
class StepPath {
 public:
  explicit StepPath(const Value& flow_id) : flow_id_(flow_id) {}

  /// @throws NestingError  the step stands on the path already: the tree is cyclic.
  void Enter(const Value& flow_no);
  void Leave(const Value& flow_no);

 private:
  /// Nothing for what is no step number: no child row can name it again.
  [[nodiscard]] static std::optional<std::int64_t> Number(const Value& flow_no);

  const Value& flow_id_;
  std::unordered_set<std::int64_t> numbers_;
};

/// Walks everything below the step `start`. The visitor has
///   void ReadChildren(const Value& flow_no, std::vector<Value>& children)   appends the children's numbers
///   void BeginChildren(std::size_t count)                                   before the first child, if there is any
///   void EnterChild(const Value& flow_no, std::size_t index, std::size_t count)
///   void LeaveChild()                                                       everything below the child was visited
///   void EndChildren()                                                      after the last child, if there is any
/// @throws NestingError  the tree is cyclic.
template <typename Visitor>
void WalkBelow(const Value& flow_id, const Value& start, Visitor& visitor) {
  struct Level {
    std::size_t first;
    std::size_t next;
  };
  std::vector<Value> children;  // of all levels, the deepest last
  std::vector<Level> levels;
  StepPath path(flow_id);
  const auto descend = [&](const Value& flow_no) {
    const std::size_t first = children.size();
    visitor.ReadChildren(flow_no, children);
    levels.push_back({first, first});
    if (children.size() > first) visitor.BeginChildren(children.size() - first);
  };
  path.Enter(start);
  descend(start);
  while (true) {
    auto& [first, next] = levels.back();
    if (next < children.size()) {
      const Value flow_no = children[next];
      const std::size_t index = next++ - first;
      path.Enter(flow_no);
      visitor.EnterChild(flow_no, index, children.size() - first);
      descend(flow_no);
      continue;
    }
    if (children.size() > first) visitor.EndChildren();
    children.resize(first);
    levels.pop_back();
    if (levels.empty()) return;
    path.Leave(children[levels.back().next - 1]);
    visitor.LeaveChild();
  }
}

}  // namespace talm_flow::design
