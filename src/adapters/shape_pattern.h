#pragma once

/// Recognising a text by a shape that is known already.
///
/// A text of the shape is what the shape has between its marks, with literals in place of the marks. Comparing a text
/// with that is many times faster than reading it sign by sign, and tells its literals as well. A pattern promises less
/// than `ScannedText` does: it may fail to recognise a text (numbers with a point or very many digits, texts with quotes
/// inside), but what it recognises has this shape and these literals.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/sql_text.h"

namespace talm_flow::adapters {

class ShapePattern {
 public:
  /// Recognises nothing.
  ShapePattern() = default;
  /// Of the shape that was found, with the text's literals.
  explicit ShapePattern(const ScannedText& scanned);

  /// @param literals  replaced by those of the text; incomplete when the answer is no.
  [[nodiscard]] bool Match(std::string_view text, std::vector<Literal>& literals) const;

 private:
  /// What stands before a mark, and what stands for the mark.
  struct Part {
    std::size_t size;
    bool is_text;  // else a number
  };

  bool usable_ = false;
  std::string fragments_;  // the shape without its marks
  std::vector<Part> parts_;
  std::size_t rest_size_ = 0;  // behind the last mark
};

}  // namespace talm_flow::adapters
