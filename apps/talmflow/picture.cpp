#include "picture.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <string_view>
#include <unordered_map>

#include "html.h"
#include "talm_flow/command_catalogue.h"
#include "talm_flow/text.h"
#include "terminal.h"
#include "text_fit.h"
#include "tidy_tree.h"

namespace talm_flow::program {
namespace {

// All in pixels.
constexpr double kMargin = 24;
constexpr double kCardWidth = 216;
constexpr double kCardGap = 24;
constexpr double kLevelGap = 40;
constexpr double kPadding = 12;
constexpr double kHeadHeight = 30;
constexpr double kTextSize = 13;
constexpr double kSmallSize = 11.5;
constexpr double kLineHeight = 18;
constexpr double kTitleSize = 20;
constexpr double kTitleHeight = 62;
constexpr std::size_t kMostCaptionLines = 4;
constexpr std::size_t kMostWaitingLines = 4;
constexpr std::size_t kMostChildren = 10000;

struct Colours {
  std::string_view strong;
  std::string_view soft;
};
constexpr Colours kAsk = {"#1f5fbf", "#e8f0fc"};     // tasks of people
constexpr Colours kDecide = {"#7a3fb0", "#f3eafa"};  // conditions and jumps
constexpr Colours kFlow = {"#1a7f5a", "#e5f5ee"};    // child flows
constexpr Colours kTime = {"#a15c00", "#fbf0df"};    // timers
constexpr Colours kOther = {"#475467", "#eef1f5"};
constexpr std::string_view kWaits = "#d97706";

const Colours& ColoursOf(std::string_view command) {
  struct Group {
    std::string_view command;
    const Colours& colours;
  };
  static constexpr std::array<Group, 14> kGroups = {{{"C_1", kAsk},
                                                     {"C_2", kAsk},
                                                     {"C_3", kAsk},
                                                     {"C_97", kAsk},
                                                     {"C_11", kDecide},
                                                     {"C_16", kDecide},
                                                     {"C_68", kDecide},
                                                     {"C_98", kDecide},
                                                     {"C_18", kFlow},
                                                     {"C_70", kFlow},
                                                     {"C_73", kFlow},
                                                     {"C_74", kFlow},
                                                     {"C_15", kTime},
                                                     {"C_86", kTime}}};
  const auto* const group = std::ranges::find(kGroups, command, &Group::command);
  return group == kGroups.end() ? kOther : group->colours;
}

/// A text that XML can hold.
std::string Drawn(std::string_view text) {
  auto shown = Escaped(Printable(WellFormed(text)));
  for (const std::string_view refused : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"}) shown = ReplaceAll(shown, refused, "\uFFFD");
  return shown;
}

struct Card {
  const StepRow* step = nullptr;
  bool again = false;  ///< drawn before; what is below it stands there
  std::size_t level = 0;
  std::vector<std::string> caption;
  std::vector<std::string> waiting;
  double height = 0;
};

class Picture {
 public:
  Picture(const PictureText& text, const std::vector<StepRow>& steps, const Waiting& waiting)
      : text_(text), steps_(steps), waiting_(waiting) {}

  std::string Make() {
    Grow();
    Measure();
    const auto columns = TidyColumns(nodes_);
    for (const double column : columns) lefts_.push_back(kMargin + column * (kCardWidth + kCardGap));
    Begin();
    DrawLines();
    for (std::size_t i = 0; i < cards_.size(); ++i) DrawCard(i);
    out_ += "</svg>\n";
    return std::move(out_);
  }

 private:
  /// The tree below step 1, every card after the one above it.
  void Grow() {
    std::unordered_map<std::int64_t, const StepRow*> by_number;
    std::unordered_map<std::int64_t, std::vector<const StepRow*>> children;
    for (const auto& step : steps_) {
      by_number.emplace(step.number, &step);
      auto& siblings = children[step.parent];
      if (siblings.size() < kMostChildren) siblings.push_back(&step);
    }
    const auto root = by_number.find(1);
    if (root == by_number.end()) return;
    std::unordered_map<std::int64_t, bool> drawn;
    const auto add = [&](const StepRow* step, std::size_t level) {
      cards_.push_back({step, !drawn.emplace(step->number, true).second, level, {}, {}, 0});
      nodes_.emplace_back();
    };
    add(root->second, 0);
    for (std::size_t i = 0; i < cards_.size(); ++i) {
      if (cards_[i].again) continue;
      const auto found = children.find(cards_[i].step->number);
      if (found == children.end()) continue;
      for (const auto* const child : found->second) {
        nodes_[i].children.push_back(cards_.size());
        add(by_number.at(child->number), cards_[i].level + 1);
      }
    }
  }

  void Measure() {
    for (auto& card : cards_) {
      constexpr double kTextWidth = (kCardWidth - 2 * kPadding) / kTextSize;
      card.caption = Lines(WellFormed(card.step->caption), kTextWidth, kMostCaptionLines);
      if (card.again) card.caption.emplace_back("(as drawn above)");
      const auto waits = waiting_.find(card.step->number);
      if (waits != waiting_.end()) {
        std::string things = "Waits for ";
        for (const auto& thing : waits->second) things += (&thing == waits->second.data() ? "" : ", ") + thing;
        card.waiting = Lines(WellFormed(things), kTextWidth, kMostWaitingLines);
      }
      card.height = kHeadHeight + kLineHeight + kPadding +
                    kLineHeight * static_cast<double>(card.caption.size() + card.waiting.size()) +
                    (card.waiting.empty() ? 0 : kPadding);
      if (card.level >= level_heights_.size()) level_heights_.resize(card.level + 1);
      level_heights_[card.level] = std::max(level_heights_[card.level], card.height);
    }
    double top = kMargin + kTitleHeight;
    for (const double height : level_heights_) {
      level_tops_.push_back(top);
      top += height + kLevelGap;
    }
    bottom_ = top - (level_tops_.empty() ? 0 : kLevelGap) + kMargin;
  }

  void Begin() {
    double right = kMargin + kTitleSize * WidthOf(text_.title);
    for (const double left : lefts_) right = std::max(right, left + kCardWidth);
    const auto width = Number(right + kMargin);
    const auto height = Number(bottom_);
    out_ += "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + width + "\" height=\"" + height +
            "\" viewBox=\"0 0 " + width + " " + height + "\" font-family=\"'Noto Sans', 'Noto Sans CJK SC', " +
            "'PingFang SC', 'Microsoft YaHei', 'DejaVu Sans', sans-serif\" font-size=\"" + Number(kTextSize) +
            "\" fill=\"#1d2433\">\n<title>" + Drawn(text_.title) + "</title>\n<rect width=\"100%\" height=\"100%\" " +
            "fill=\"#ffffff\"/>\n<text x=\"" + Number(kMargin) + "\" y=\"" + Number(kMargin + kTitleSize) +
            "\" font-size=\"" + Number(kTitleSize) + "\" font-weight=\"700\">" + Drawn(text_.title) + "</text>\n";
    Text(kMargin, kMargin + 42, text_.subtitle, " fill=\"#5b6577\"");
    if (cards_.empty()) Text(kMargin, kMargin + 64, "It has no step 1.", "");
  }

  /// From each card down to its children: one stem, one bar, an arrow to each.
  void DrawLines() {
    out_ += "<g fill=\"none\" stroke=\"#8b97aa\" stroke-width=\"1.5\">\n";
    for (std::size_t i = 0; i < cards_.size(); ++i) {
      const auto& children = nodes_[i].children;
      if (children.empty()) continue;
      const double end = level_tops_[cards_[i].level + 1];
      const double bar = end - kLevelGap / 2;
      out_ += "<path d=\"M" + Number(Middle(i)) + " " + Number(Top(i) + cards_[i].height) + "V" + Number(bar);
      if (children.size() > 1) {
        out_ += "M" + Number(Middle(children.front())) + " " + Number(bar) + "H" + Number(Middle(children.back()));
      }
      for (const auto child : children) {
        const auto x = Middle(child);
        out_ += "M" + Number(x) + " " + Number(bar) + "V" + Number(end - 1) + "M" + Number(x - 4) + " " +
                Number(end - 6) + "L" + Number(x) + " " + Number(end - 1) + "L" + Number(x + 4) + " " + Number(end - 6);
      }
      out_ += "\"/>\n";
    }
    out_ += "</g>\n";
  }

  void DrawCard(std::size_t i) {
    const auto& card = cards_[i];
    const auto& colours = ColoursOf(card.step->command);
    const bool waits = !card.waiting.empty();
    const auto command = DescribeCommand(card.step->command);
    const auto number = std::to_string(card.step->number);
    const double left = lefts_[i];
    const double top = Top(i);
    out_ += "<g data-step=\"" + number + "\"" + (waits ? " data-waits=\"1\"" : "") + ">";
    if (!card.step->caption.empty()) out_ += "<title>" + Drawn(card.step->caption) + "</title>";
    Box(left, top, card.height, waits ? "#fff7e8" : "#ffffff", waits ? kWaits : colours.strong, waits ? 2.5 : 1);
    out_ += "<path d=\"M" + Number(left + 1) + " " + Number(top + kHeadHeight) + "v-21a8 8 0 0 1 8-8h" +
            Number(kCardWidth - 18) + "a8 8 0 0 1 8 8v21z\" fill=\"" + std::string(colours.soft) + "\"/>";
    const double number_width = kTextSize * (WidthOf(number) + 0.8);
    const double title_width = (kCardWidth - 2 * kPadding - number_width) / kTextSize;
    Text(left + kPadding, top + 20, number, Fill(colours.strong, true));
    const auto title = Lines(command ? std::string(command->title) : "Unknown command", title_width, 1);
    if (!title.empty()) Text(left + kPadding + number_width, top + 20, title.front(), Fill(colours.strong, true));
    double line = top + kHeadHeight + kLineHeight - 2;
    Text(left + kPadding, line, FirstLine(WellFormed(card.step->command)),
         " fill=\"#5b6577\" font-size=\"" + Number(kSmallSize) + "\"");
    for (const auto& text : card.caption) Text(left + kPadding, line += kLineHeight, text, "");
    if (waits) line += kPadding - 4;
    for (const auto& text : card.waiting) Text(left + kPadding, line += kLineHeight, text, Fill("#9a4a00", true));
    out_ += "</g>\n";
  }

  static std::string FirstLine(std::string_view text) {
    const auto lines = Lines(text, (kCardWidth - 2 * kPadding) / kTextSize, 1);
    return lines.empty() ? std::string() : lines.front();
  }

  void Box(double left, double top, double height, std::string_view fill, std::string_view stroke, double width) {
    out_ += "<rect x=\"" + Number(left) + "\" y=\"" + Number(top) + "\" width=\"" + Number(kCardWidth) +
            "\" height=\"" + Number(height) + "\" rx=\"9\" fill=\"";
    out_ += fill;
    out_ += "\" stroke=\"";
    out_ += stroke;
    out_ += "\" stroke-width=\"" + Number(width) + "\"/>";
  }

  static std::string Fill(std::string_view colour, bool bold) {
    return " fill=\"" + std::string(colour) + (bold ? "\" font-weight=\"700\"" : "\"");
  }

  void Text(double x, double y, std::string_view text, std::string_view attributes) {
    out_ += "<text x=\"" + Number(x) + "\" y=\"" + Number(y) + "\"";
    out_ += attributes;
    out_ += ">" + Drawn(text) + "</text>";
  }

  double Top(std::size_t i) const { return level_tops_[cards_[i].level]; }
  double Middle(std::size_t i) const { return lefts_[i] + kCardWidth / 2; }

  /// With one decimal at most.
  static std::string Number(double number) {
    std::array<char, 32> digits{};
    const auto tenths = static_cast<std::int64_t>(number * 10 + (number < 0 ? -0.5 : 0.5));
    auto* end = std::to_chars(digits.data(), digits.data() + digits.size(), tenths / 10).ptr;
    if (tenths % 10 != 0) {
      *end++ = '.';
      *end++ = static_cast<char>('0' + std::abs(tenths % 10));
    }
    return {digits.data(), end};
  }

  const PictureText& text_;
  const std::vector<StepRow>& steps_;
  const Waiting& waiting_;
  std::vector<Card> cards_;
  std::vector<TreeNode> nodes_;
  std::vector<double> lefts_;
  std::vector<double> level_heights_;
  std::vector<double> level_tops_;
  double bottom_ = 0;
  std::string out_;
};

}  // namespace

std::string MakePicture(const PictureText& text, const std::vector<StepRow>& steps, const Waiting& waiting) {
  return Picture(text, steps, waiting).Make();
}

}  // namespace talm_flow::program
