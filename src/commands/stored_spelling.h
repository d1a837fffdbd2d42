#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "talm_flow/text.h"

namespace talm_flow::commands {

/// Finds the lower-cased tokens again in the text as it was stored, one after another. Lower-casing maps character to
/// character, but not always to as many bytes.
class StoredSpelling {
 public:
  explicit StoredSpelling(std::string_view stored) : stored_(stored), lowered_(LowerCase(stored)) {}

  [[nodiscard]] std::string_view Next(std::string_view token) {
    const std::size_t begin = lowered_.find(token, lowered_position_);
    const std::size_t before = Advance(begin);
    return stored_.substr(before, Advance(begin + token.size()) - before);
  }

 private:
  /// Goes on to a place in the lowered text. @returns the same place in the stored text.
  std::size_t Advance(std::size_t lowered_position) {
    while (lowered_position_ < lowered_position) {
      lowered_position_ += FirstCharacters(std::string_view(lowered_).substr(lowered_position_, 4), 1).size();
      stored_position_ += FirstCharacters(stored_.substr(stored_position_, 4), 1).size();
    }
    return stored_position_;
  }

  std::string_view stored_;
  std::string lowered_;
  std::size_t lowered_position_ = 0;
  std::size_t stored_position_ = 0;
};

}  // namespace talm_flow::commands
