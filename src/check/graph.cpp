#include "check/graph.h"

#include <algorithm>

namespace talm_flow::check {
namespace {

constexpr std::size_t kUnseen = static_cast<std::size_t>(-1);

/// Tarjan's algorithm with its own stack.
class ComponentSearch {
 public:
  explicit ComponentSearch(const Graph& graph)
      : graph_(graph), order_(graph.size(), kUnseen), low_(graph.size()), component_(graph.size(), kUnseen) {}

  std::vector<std::size_t> Run() {
    for (std::size_t node = 0; node < graph_.size(); ++node) {
      if (order_[node] == kUnseen) Explore(node);
    }
    return std::move(component_);
  }

 private:
  struct Visit {
    std::size_t node;
    std::size_t next_edge = 0;
  };

  void Explore(std::size_t start) {
    Enter(start);
    while (!path_.empty()) {
      auto& [node, next_edge] = path_.back();
      if (next_edge == graph_[node].size()) {
        Leave();
        continue;
      }
      const std::size_t target = graph_[node][next_edge++];
      if (order_[target] == kUnseen) {
        Enter(target);
      } else if (component_[target] == kUnseen) {
        low_[node] = std::min(low_[node], order_[target]);
      }
    }
  }

  void Enter(std::size_t node) {
    order_[node] = low_[node] = next_order_++;
    open_.push_back(node);
    path_.push_back({node});
  }

  void Leave() {
    const std::size_t node = path_.back().node;
    path_.pop_back();
    if (!path_.empty()) low_[path_.back().node] = std::min(low_[path_.back().node], low_[node]);
    if (low_[node] != order_[node]) return;
    std::size_t member = kUnseen;
    while (member != node) {
      member = open_.back();
      open_.pop_back();
      component_[member] = components_;
    }
    ++components_;
  }

  const Graph& graph_;
  std::vector<std::size_t> order_;
  std::vector<std::size_t> low_;
  std::vector<std::size_t> component_;
  std::vector<std::size_t> open_;
  std::vector<Visit> path_;
  std::size_t next_order_ = 0;
  std::size_t components_ = 0;
};

}  // namespace

std::vector<std::size_t> Components(const Graph& graph) { return ComponentSearch(graph).Run(); }

std::vector<bool> OnCircle(const Graph& graph, const std::vector<std::size_t>& components) {
  std::vector<bool> on_circle(graph.size(), false);
  for (std::size_t node = 0; node < graph.size(); ++node) {
    for (const std::size_t target : graph[node]) {
      if (components[node] == components[target]) on_circle[node] = true;
    }
  }
  return on_circle;
}

}  // namespace talm_flow::check
