#include "support/html.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "talm_flow/text.h"

namespace talm_flow::test {
namespace {

constexpr std::string_view kBlanks = " \t\r\n\f";
constexpr std::array<std::string_view, 4> kWithoutEnd = {"br", "hr", "img", "input"};
constexpr std::array<std::string_view, 2> kHoldTextOnly = {"script", "textarea"};

/// Where elements may stand.
struct AllowedParent {
  std::string_view element;
  std::string_view parent;
};
constexpr std::array<AllowedParent, 6> kPlaces = {
    {{"tr", "table"}, {"td", "tr"}, {"th", "tr"}, {"option", "select"}, {"li", "ul"}, {"tspan", "text"}}};

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool IsBlank(char c) { return kBlanks.find(c) != kBlanks.npos; }

template <typename List>
bool Holds(const List& list, std::string_view sought) {
  return std::find(list.begin(), list.end(), sought) != list.end();
}

class Reader {
 public:
  explicit Reader(std::string_view html) : html_(html) {}

  HtmlReading Read() {
    while (reading_.fault.empty() && at_ < html_.size()) {
      if (html_[at_] == '<') {
        Tag();
      } else {
        const std::size_t end = std::min(html_.find('<', at_), html_.size());
        Text(end);
      }
    }
    if (reading_.fault.empty() && !open_.empty()) Fault("<" + Parent() + "> has no end tag");
    return std::move(reading_);
  }

 private:
  void Fault(const std::string& what) {
    if (reading_.fault.empty()) reading_.fault = what + " at byte " + std::to_string(at_);
  }

  [[nodiscard]] std::string Parent() const {
    return open_.empty() ? std::string() : reading_.elements[open_.back()].name;
  }

  void Text(std::size_t end) {
    if (!open_.empty()) reading_.elements[open_.back()].text += html_.substr(at_, end - at_);
    at_ = end;
  }

  std::string Name() {
    const std::size_t begin = at_;
    while (at_ < html_.size() && !IsBlank(html_[at_]) &&
           std::string_view("/>=\"'<`").find(html_[at_]) == std::string::npos)
      ++at_;
    return LowerCase(html_.substr(begin, at_ - begin));
  }

  void PassBlanks() {
    while (at_ < html_.size() && IsBlank(html_[at_])) ++at_;
  }

  [[nodiscard]] bool Next(std::string_view piece) const { return html_.substr(at_).starts_with(piece); }

  bool Take(std::string_view piece) {
    if (!Next(piece)) return false;
    at_ += piece.size();
    return true;
  }

  void Tag() {
    ++at_;
    const bool end = Take("/");
    if (at_ == html_.size() || !IsLetter(html_[at_])) return Fault("\"<\" begins no tag");
    const std::string name = Name();
    if (end) {
      PassBlanks();
      if (!Take(">")) return Fault("</" + name + " is not closed");
      if (Parent() != name) return Fault("</" + name + "> stands in <" + Parent() + ">");
      open_.pop_back();
      return;
    }
    Begin(name);
  }

  void Begin(const std::string& name) {
    for (const AllowedParent& place : kPlaces) {
      if (name == place.element && Parent() != place.parent)
        return Fault("<" + name + "> stands in <" + Parent() + ">");
    }
    const std::size_t index = reading_.elements.size();
    reading_.elements.push_back({name, {}, {}});
    for (;;) {
      const std::size_t before = at_;
      PassBlanks();
      if (Take("/>")) return;
      if (Take(">")) break;
      if (at_ == html_.size()) return Fault("<" + name + " is not closed");
      if (at_ == before) return Fault("nothing parts the attributes of <" + name);
      Attribute(reading_.elements[index]);
      if (!reading_.fault.empty()) return;
    }
    if (Holds(kWithoutEnd, name)) return;
    open_.push_back(index);
    if (Holds(kHoldTextOnly, name)) TextOnly(name);
  }

  void Attribute(HtmlElement& element) {
    std::string name = Name();
    if (name.empty()) return Fault("an attribute of <" + element.name + " has no name");
    const bool twice = std::any_of(element.attributes.begin(), element.attributes.end(),
                                   [&](const auto& other) { return other.first == name; });
    if (twice) return Fault("<" + element.name + " has " + name + " twice");
    std::string value;
    if (Take("=")) {
      if (at_ == html_.size()) return Fault(name + " has no value");
      const char quote = html_[at_];
      const std::size_t begin = at_ + (quote == '"' || quote == '\'' ? 1 : 0);
      const std::size_t end = begin > at_ ? html_.find(quote, begin) : html_.find_first_of(" \t\r\n\f>", begin);
      if (end == html_.npos) return Fault("the value of " + name + " does not end");
      value = html_.substr(begin, end - begin);
      // Browsers keep an apostrophe that does not stand first.
      if (begin == at_ && value.find_first_of("\"<=`") != value.npos) {
        return Fault("the value of " + name + " needs quotes");
      }
      at_ = begin > at_ ? end + 1 : end;
    }
    element.attributes.emplace_back(std::move(name), std::move(value));
  }

  void TextOnly(const std::string& name) {
    const std::string end_tag = "</" + name;
    std::size_t end = at_;
    while (end < html_.size() && !EqualIgnoringAsciiCase(html_.substr(end, end_tag.size()), end_tag)) ++end;
    if (name != "script" && html_.substr(at_, end - at_).find('<') != html_.npos) {
      return Fault("\"<\" stands in <" + name + ">");
    }
    Text(end);
  }

  std::string_view html_;
  std::size_t at_ = 0;
  std::vector<std::size_t> open_;  // elements, the innermost last
  HtmlReading reading_;
};

}  // namespace

HtmlReading ReadHtml(std::string_view html) { return Reader(html).Read(); }

}  // namespace talm_flow::test
