#pragma once

/// Where the nodes of a tree stand beside each other: as narrow as possible, every node over the middle of its
/// children, equal subtrees drawn equally. After Buchheim, Jünger and Leipert, "Improving Walker's algorithm to run in
/// linear time"; the recursion is replaced by orders of nodes, so that depth costs no stack.

#include <cstddef>
#include <vector>

namespace talm_flow::program {

struct TreeNode {
  std::vector<std::size_t> children;
};

/// The column of each node, the leftmost 0, neighbours at least 1 apart.
/// @param nodes  a tree whose root is node 0; every child has a higher index than its parent.
[[nodiscard]] std::vector<double> TidyColumns(const std::vector<TreeNode>& nodes);

}  // namespace talm_flow::program
