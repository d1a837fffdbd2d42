#include "tidy_tree.h"

#include <algorithm>
#include <utility>

namespace talm_flow::program {
namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);
constexpr double kDistance = 1;

/// What the algorithm keeps for a node, by the names of the paper.
struct State {
  std::size_t parent = kNone;
  std::size_t number = 0;  ///< among its siblings
  std::size_t ancestor = kNone;
  std::size_t default_ancestor = kNone;  ///< of its children
  std::size_t thread = kNone;
  double prelim = 0;
  double mod = 0;
  double shift = 0;
  double change = 0;
};

class Layout {
 public:
  explicit Layout(const std::vector<TreeNode>& nodes) : nodes_(nodes), states_(nodes.size()) {
    for (std::size_t v = 0; v < nodes.size(); ++v) {
      states_[v].ancestor = v;
      const auto& children = nodes[v].children;
      if (!children.empty()) states_[v].default_ancestor = children.front();
      for (std::size_t i = 0; i < children.size(); ++i) {
        states_[children[i]].parent = v;
        states_[children[i]].number = i;
      }
    }
  }

  std::vector<double> Columns() {
    PlaceSubtrees();
    std::vector<double> columns(nodes_.size());
    std::vector<double> moved(nodes_.size());
    for (std::size_t v = 0; v < nodes_.size(); ++v) {
      columns[v] = states_[v].prelim + moved[v];
      for (const auto child : nodes_[v].children) moved[child] = moved[v] + states_[v].mod;
    }
    if (columns.empty()) return columns;
    const double leftmost = *std::ranges::min_element(columns);
    for (auto& column : columns) column -= leftmost;
    return columns;
  }

 private:
  /// Every node after its children and after everything below its left siblings.
  void PlaceSubtrees() {
    std::vector<std::pair<std::size_t, std::size_t>> pending;  // a node, and its next child
    if (!nodes_.empty()) pending.emplace_back(0, 0);
    while (!pending.empty()) {
      auto& [v, next] = pending.back();
      if (next < nodes_[v].children.size()) {
        const auto child = nodes_[v].children[next++];
        pending.emplace_back(child, 0);
        continue;
      }
      Place(v);
      pending.pop_back();
    }
  }

  void Place(std::size_t v) {
    auto& state = states_[v];
    const auto left = LeftSibling(v);
    const double beside = left == kNone ? 0 : states_[left].prelim + kDistance;
    const auto& children = nodes_[v].children;
    if (children.empty()) {
      state.prelim = beside;
    } else {
      ExecuteShifts(v);
      const double middle = (states_[children.front()].prelim + states_[children.back()].prelim) / 2;
      state.prelim = left == kNone ? middle : beside;
      state.mod = left == kNone ? 0 : state.prelim - middle;
    }
    if (left != kNone) Apportion(v, left);
  }

  std::size_t LeftSibling(std::size_t v) const {
    const auto& state = states_[v];
    return state.number == 0 ? kNone : nodes_[state.parent].children[state.number - 1];
  }

  std::size_t NextLeft(std::size_t v) const {
    return nodes_[v].children.empty() ? states_[v].thread : nodes_[v].children.front();
  }
  std::size_t NextRight(std::size_t v) const {
    return nodes_[v].children.empty() ? states_[v].thread : nodes_[v].children.back();
  }

  /// Moves the subtree of `v` right until its left contour clears the right contour of all that stands left of it.
  void Apportion(std::size_t v, std::size_t left) {
    std::size_t inner_right = v;
    std::size_t outer_right = v;
    std::size_t inner_left = left;
    std::size_t outer_left = nodes_[states_[v].parent].children.front();
    double sum_inner_right = states_[v].mod;
    double sum_outer_right = states_[v].mod;
    double sum_inner_left = states_[inner_left].mod;
    double sum_outer_left = states_[outer_left].mod;
    while (NextRight(inner_left) != kNone && NextLeft(inner_right) != kNone) {
      inner_left = NextRight(inner_left);
      inner_right = NextLeft(inner_right);
      outer_left = NextLeft(outer_left);
      outer_right = NextRight(outer_right);
      states_[outer_right].ancestor = v;
      const double overlap =
          states_[inner_left].prelim + sum_inner_left - states_[inner_right].prelim - sum_inner_right + kDistance;
      if (overlap > 0) {
        MoveSubtree(GreatestDistinctAncestor(inner_left, v), v, overlap);
        sum_inner_right += overlap;
        sum_outer_right += overlap;
      }
      sum_inner_left += states_[inner_left].mod;
      sum_inner_right += states_[inner_right].mod;
      sum_outer_left += states_[outer_left].mod;
      sum_outer_right += states_[outer_right].mod;
    }
    if (NextRight(inner_left) != kNone && NextRight(outer_right) == kNone) {
      states_[outer_right].thread = NextRight(inner_left);
      states_[outer_right].mod += sum_inner_left - sum_outer_right;
    }
    if (NextLeft(inner_right) != kNone && NextLeft(outer_left) == kNone) {
      states_[outer_left].thread = NextLeft(inner_right);
      states_[outer_left].mod += sum_inner_right - sum_outer_left;
      states_[states_[v].parent].default_ancestor = v;
    }
  }

  std::size_t GreatestDistinctAncestor(std::size_t inner_left, std::size_t v) const {
    const auto ancestor = states_[inner_left].ancestor;
    const auto parent = states_[v].parent;
    return states_[ancestor].parent == parent ? ancestor : states_[parent].default_ancestor;
  }

  /// Moves `right`, and notes that the siblings between share in the movement.
  void MoveSubtree(std::size_t left, std::size_t right, double distance) {
    const double each = distance / static_cast<double>(states_[right].number - states_[left].number);
    states_[right].change -= each;
    states_[right].shift += distance;
    states_[left].change += each;
    states_[right].prelim += distance;
    states_[right].mod += distance;
  }

  void ExecuteShifts(std::size_t v) {
    double shift = 0;
    double change = 0;
    const auto& children = nodes_[v].children;
    for (std::size_t i = children.size(); i-- > 0;) {
      auto& child = states_[children[i]];
      child.prelim += shift;
      child.mod += shift;
      change += child.change;
      shift += child.shift + change;
    }
  }

  const std::vector<TreeNode>& nodes_;
  std::vector<State> states_;
};

}  // namespace

std::vector<double> TidyColumns(const std::vector<TreeNode>& nodes) { return Layout(nodes).Columns(); }

}  // namespace talm_flow::program
