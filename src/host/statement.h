#pragma once

/// Statement texts of the reference host: fragments and numbers as they are, texts as literals.

#include <concepts>
#include <string>
#include <string_view>

#include "talm_flow/conversion.h"
#include "talm_flow/host/common_functions.h"

namespace talm_flow::host {

/// A text that goes into a statement as a complete literal.
struct Literal {
  std::string_view text;
};

class StatementText {
 public:
  template <typename... Pieces>
  explicit StatementText(const CommonFunctions& common, const Pieces&... pieces) : common_(common) {
    (Append(pieces), ...);
  }

  operator std::string_view() const { return text_; }

 private:
  void Append(std::string_view fragment) { text_ += fragment; }
  void Append(Literal literal) { common_.SqlText(literal.text, text_); }
  template <std::integral T>
  void Append(T number) {
    AppendJoined(text_, Value(number));
  }

  const CommonFunctions& common_;
  std::string text_;
};

}  // namespace talm_flow::host
