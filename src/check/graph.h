#pragma once

/// Circles in directed graphs, found without recursion in linear time.

#include <cstddef>
#include <vector>

namespace talm_flow::check {

/// Edges by their source node.
using Graph = std::vector<std::vector<std::size_t>>;

/// The strongly connected component of every node, as a number. Two nodes lie on a common circle when they have the
/// same; a node alone in its component lies on a circle only by an edge to itself.
[[nodiscard]] std::vector<std::size_t> Components(const Graph& graph);

/// For every node, whether it lies on a circle.
[[nodiscard]] std::vector<bool> OnCircle(const Graph& graph, const std::vector<std::size_t>& components);

}  // namespace talm_flow::check
