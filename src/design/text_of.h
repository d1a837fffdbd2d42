#pragma once

#include <string>
#include <string_view>

#include "talm_flow/conversion.h"

namespace talm_flow::design {

/// An argument as a text, without a copy when it is one. Valid as long as the argument is.
class TextOf {
 public:
  explicit TextOf(const Value& value) {
    if (value.IsText()) {
      text_ = value.Text();
    } else {
      own_ = JoinedText(value);
      text_ = own_;
    }
  }
  TextOf(const TextOf&) = delete;
  TextOf& operator=(const TextOf&) = delete;

  [[nodiscard]] std::string_view view() const { return text_; }

 private:
  std::string own_;
  std::string_view text_;
};

}  // namespace talm_flow::design
