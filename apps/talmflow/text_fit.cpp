#include "text_fit.h"

#include "talm_flow/text.h"
#include "terminal.h"

namespace talm_flow::program {
namespace {

constexpr std::string_view kCut = "…";

double WidthOfCharacter(std::string_view character) {
  constexpr double kWide = 1.0;
  constexpr double kNarrow = 0.66;
  if (character.size() > 1) return DisplayWidth(character) > 1 || character == kCut ? kWide : kNarrow;
  const char c = character.front();
  if (std::string_view(" .,:;'|!ijl()[]").find(c) != std::string_view::npos) return 0.4;
  if (std::string_view("mwMW@%").find(c) != std::string_view::npos) return 0.98;
  return c >= 'A' && c <= 'Z' ? 0.74 : 0.62;
}

/// Lines that are being filled.
class Filling {
 public:
  Filling(double width, std::size_t most) : width_(width), most_(most) {}

  /// Puts a word, with what stands before it, on the line or on a new one.
  void Add(std::string_view word) {
    if (full_) return;
    if (!line_.empty() && used_ + WidthOf(word) > width_) {
      Break();
      word = TrimBlanks(word);
    }
    while (!word.empty() && !full_) {
      const auto character = FirstCharacters(word, 1);
      const double wide = WidthOfCharacter(character);
      if (!line_.empty() && used_ + wide > width_) Break();
      if (full_) return;
      line_ += character;
      used_ += wide;
      word.remove_prefix(character.size());
    }
  }

  void Break() {
    if (full_) return;
    if (lines_.size() + 1 == most_) {
      Cut();
      return;
    }
    lines_.push_back(std::string(TrimBlanks(line_)));
    line_.clear();
    used_ = 0;
  }

  std::vector<std::string> Take() {
    if (!TrimBlanks(line_).empty()) lines_.push_back(std::string(TrimBlanks(line_)));
    return std::move(lines_);
  }

 private:
  /// Ends the last line so that it tells of more.
  void Cut() {
    full_ = true;
    std::string_view kept = line_;
    while (!kept.empty() && WidthOf(kept) + 1.0 > width_) kept = FirstCharacters(kept, CharacterCount(kept) - 1);
    line_ = std::string(TrimBlanks(kept)) + std::string(kCut);
  }

  double width_;
  std::size_t most_;
  std::vector<std::string> lines_;
  std::string line_;
  double used_ = 0;
  bool full_ = false;
};

}  // namespace

double WidthOf(std::string_view text) {
  double width = 0;
  while (!text.empty()) {
    const auto character = FirstCharacters(text, 1);
    width += WidthOfCharacter(character);
    text.remove_prefix(character.size());
  }
  return width;
}

std::vector<std::string> Lines(std::string_view text, double width, std::size_t most) {
  Filling filling(width, most);
  std::string word;
  const auto end_word = [&] {
    filling.Add(word);
    word.clear();
  };
  while (!text.empty()) {
    const auto character = FirstCharacters(text, 1);
    text.remove_prefix(character.size());
    if (character == "\r") continue;
    if (character == "\n") {
      end_word();
      if (!text.empty()) filling.Break();
      continue;
    }
    const bool wide = DisplayWidth(character) > 1;
    if (character == " " || wide) end_word();
    word += Printable(character);
    if (wide) end_word();
  }
  end_word();
  return filling.Take();
}

}  // namespace talm_flow::program
