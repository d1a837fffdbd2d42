#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "adapters/shape_pattern.h"

namespace talm_flow::adapters {

/// What an adapter has prepared, by shape: bounded, the least recently used goes first. Finding allocates nothing.
/// A prepared entry that is still in use when it goes lives on with its users.
///
/// Statements come in sequences that repeat, so each entry remembers which came behind it last: most texts are found by
/// comparing them with one pattern, and need not be taken apart to know their shape.
template <typename Prepared>
class ShapeCache {
 public:
  explicit ShapeCache(std::size_t capacity) : capacity_(capacity) {}

  /// The entry of a text that follows the last one found as it did before, with the text's literals. Null when nothing
  /// is known to follow, or the text is another; `literals` is then of no use.
  [[nodiscard]] const std::shared_ptr<Prepared>* Follow(std::string_view text, std::vector<Literal>& literals) {
    if (last_ == nullptr) return nullptr;
    for (Entry* const follower : last_->followers) {
      if (follower != nullptr && follower->pattern.Match(text, literals)) return &Found(*follower);
    }
    return nullptr;
  }

  /// Null when there is none. The pointer is valid until the cache changes.
  [[nodiscard]] const std::shared_ptr<Prepared>* Find(std::string_view shape) {
    const auto found = by_shape_.find(shape);
    return found == by_shape_.end() ? nullptr : &Found(*found->second);
  }

  /// @param pattern  recognises texts of this shape; by default none.
  const std::shared_ptr<Prepared>& Insert(std::string_view shape, std::shared_ptr<Prepared> prepared,
                                          ShapePattern pattern = {}) {
    Erase(shape);
    if (by_shape_.size() == capacity_) Erase(LeastRecentlyUsed());
    auto entry = std::make_unique<Entry>(std::string(shape), std::move(prepared), std::move(pattern));
    Entry& inserted = *entry;
    by_shape_.emplace(inserted.shape, std::move(entry));
    return Found(inserted);
  }

  void Erase(std::string_view shape) {
    const auto found = by_shape_.find(shape);
    if (found == by_shape_.end()) return;
    Entry* const erased = found->second.get();
    for (const auto& [other, entry] : by_shape_) {
      for (Entry*& follower : entry->followers) {
        if (follower == erased) follower = nullptr;
      }
    }
    if (last_ == erased) last_ = nullptr;
    const std::unique_ptr<Entry> keeps_key = std::move(found->second);
    by_shape_.erase(found);
  }

  void Erase(const Prepared& prepared) {
    for (const auto& [shape, entry] : by_shape_) {
      if (entry->prepared.get() == &prepared) return Erase(shape);
    }
  }

  void Clear() {
    last_ = nullptr;
    by_shape_.clear();
  }

  [[nodiscard]] std::size_t size() const { return by_shape_.size(); }

 private:
  struct Entry {
    Entry(std::string its_shape, std::shared_ptr<Prepared> its_prepared, ShapePattern its_pattern)
        : shape(std::move(its_shape)), prepared(std::move(its_prepared)), pattern(std::move(its_pattern)) {}

    std::string shape;
    std::shared_ptr<Prepared> prepared;
    ShapePattern pattern;
    std::array<Entry*, 2> followers{};  // the latest first
    std::uint64_t last_use = 0;
  };

  const std::shared_ptr<Prepared>& Found(Entry& entry) {
    entry.last_use = ++uses_;
    if (last_ != nullptr && last_->followers[0] != &entry) {
      last_->followers[1] = last_->followers[0];
      last_->followers[0] = &entry;
    }
    last_ = &entry;
    return entry.prepared;
  }

  [[nodiscard]] std::string_view LeastRecentlyUsed() const {
    const auto oldest = std::min_element(by_shape_.begin(), by_shape_.end(), [](const auto& a, const auto& b) {
      return a.second->last_use < b.second->last_use;
    });
    return oldest->first;
  }

  std::size_t capacity_;
  std::unordered_map<std::string_view, std::unique_ptr<Entry>> by_shape_;
  Entry* last_ = nullptr;
  std::uint64_t uses_ = 0;
};

}  // namespace talm_flow::adapters
