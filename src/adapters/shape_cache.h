#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace talm_flow::adapters {

/// What an adapter has prepared, by shape: bounded, the least recently used goes first. Finding allocates nothing.
/// A prepared entry that is still in use when it goes lives on with its users.
template <typename Prepared>
class ShapeCache {
 public:
  explicit ShapeCache(std::size_t capacity) : capacity_(capacity) {}

  /// Null when there is none. The pointer is valid until the cache changes.
  [[nodiscard]] const std::shared_ptr<Prepared>* Find(std::string_view shape) {
    const auto found = by_shape_.find(shape);
    if (found == by_shape_.end()) return nullptr;
    if (found->second != entries_.begin()) entries_.splice(entries_.begin(), entries_, found->second);
    return &found->second->second;
  }

  const std::shared_ptr<Prepared>& Insert(std::string_view shape, std::shared_ptr<Prepared> prepared) {
    Erase(shape);
    if (entries_.size() == capacity_) {
      by_shape_.erase(entries_.back().first);
      entries_.pop_back();
    }
    entries_.emplace_front(std::string(shape), std::move(prepared));
    by_shape_.emplace(entries_.front().first, entries_.begin());
    return entries_.front().second;
  }

  void Erase(std::string_view shape) {
    const auto found = by_shape_.find(shape);
    if (found == by_shape_.end()) return;
    const auto entry = found->second;
    by_shape_.erase(found);
    entries_.erase(entry);
  }

  void Clear() {
    by_shape_.clear();
    entries_.clear();
  }

  [[nodiscard]] std::size_t size() const { return entries_.size(); }

 private:
  using Entries = std::list<std::pair<std::string, std::shared_ptr<Prepared>>>;

  std::size_t capacity_;
  Entries entries_;
  std::unordered_map<std::string_view, typename Entries::iterator> by_shape_;
};

}  // namespace talm_flow::adapters
