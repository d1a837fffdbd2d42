#include "adapters/sql_text.h"

#include <array>
#include <cstdint>

#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::adapters {
namespace {

enum class Character : std::uint8_t {
  kOther,
  kBlank,
  kNameStart,
  kDigit,
  kPoint,
  kTextQuote,
  kNameQuote,  // " and `: doubled inside
  kBracket,
  kMinus,
  kSlash,
  kSemicolon,
  kQuestionMark,
  kNamedMark,
};

constexpr std::array<Character, 256> MakeCharacters() {
  std::array<Character, 256> of{};
  for (std::size_t i = 0; i < of.size(); ++i) {
    const bool letter = (i >= 'a' && i <= 'z') || (i >= 'A' && i <= 'Z') || i == '_' || i >= 0x80;
    of[i] = letter ? Character::kNameStart : (i >= '0' && i <= '9') ? Character::kDigit : Character::kOther;
  }
  for (const char blank : {' ', '\t', '\r', '\n', '\f'}) of[static_cast<unsigned char>(blank)] = Character::kBlank;
  of['.'] = Character::kPoint;
  of['\''] = Character::kTextQuote;
  of['"'] = of['`'] = Character::kNameQuote;
  of['['] = Character::kBracket;
  of['-'] = Character::kMinus;
  of['/'] = Character::kSlash;
  of[';'] = Character::kSemicolon;
  of['?'] = Character::kQuestionMark;
  of[':'] = of['@'] = of['$'] = Character::kNamedMark;
  return of;
}
constexpr std::array<Character, 256> kCharacters = MakeCharacters();

constexpr std::array<bool, 256> MakeNameCharacters() {
  std::array<bool, 256> belongs{};
  for (std::size_t i = 0; i < belongs.size(); ++i) {
    belongs[i] = kCharacters[i] == Character::kNameStart || kCharacters[i] == Character::kDigit || i == '$';
  }
  return belongs;
}
constexpr std::array<bool, 256> kNameCharacters = MakeNameCharacters();

constexpr Character CharacterOf(char c) { return kCharacters[static_cast<unsigned char>(c)]; }
constexpr bool IsName(char c) { return kNameCharacters[static_cast<unsigned char>(c)]; }

constexpr std::string_view kIdentity = "@@identity";

/// One pass over a text.
class Scanner {
 public:
  Scanner(std::string_view text, ScannedText& out) : text_(text), out_(out) {}

  void Run() {
    while (at_ < text_.size()) {
      const char c = text_[at_];
      const Character character = CharacterOf(c);
      if (character == Character::kNameStart) {
        Word();
        if (ended_) return;
      } else if (character == Character::kBlank) {
        ++at_;
      } else {
        Other(c, character);
        if (ended_) return;
      }
    }
    Flush(text_.size());
  }

 private:
  [[noreturn]] void Refuse(const std::string& message) const { throw DatabaseError(message, std::string(text_)); }

  /// What is neither a word nor a blank.
  void Other(char c, Character character) {
    const bool behind_top = behind_top_;
    behind_top_ = false;
    switch (character) {
      case Character::kDigit:
        Number(behind_top);
        break;
      case Character::kPoint:
        Point(behind_top);
        break;
      case Character::kTextQuote:
        Text();
        break;
      case Character::kNameQuote:
        QuotedName(c, c);
        break;
      case Character::kBracket:
        QuotedName('[', ']');
        break;
      case Character::kMinus:
        Comment('-', "\n", behind_top);
        break;
      case Character::kSlash:
        Comment('*', "*/", behind_top);
        break;
      case Character::kSemicolon:
        Semicolon();
        break;
      case Character::kNamedMark:
        NamedMark(c);
        break;
      case Character::kQuestionMark:
        Refuse("a statement text holds no parameter marks; \"?\" is one");
      default:
        ++at_;
        break;
    }
  }

  void Flush(std::size_t end) { out_.shape.append(text_, kept_, end - kept_); }

  void Replace(std::size_t begin, Literal literal) {
    Flush(begin);
    out_.shape += '?';
    out_.literals.push_back(literal);
    kept_ = at_;
  }

  void Word() {
    const std::size_t begin = at_;
    while (++at_ < text_.size() && IsName(text_[at_])) {
    }
    const std::size_t length = at_ - begin;
    behind_top_ = false;
    if (length > 3) return;
    if (length == 1 && (text_[begin] == 'x' || text_[begin] == 'X') && at_ < text_.size() && text_[at_] == '\'') {
      PassQuoted('\'');
    } else if (length == 3 && (text_[begin] == 'T' || text_[begin] == 't')) {
      behind_top_ = EqualIgnoringAsciiCase(text_.substr(begin, length), "top");
    }
  }

  void Unterminated() { out_.unterminated = ended_ = true; }

  void PassDigits() {
    while (at_ < text_.size() && IsDigit(text_[at_])) ++at_;
  }

  void Point(bool behind_top) {
    if (at_ + 1 < text_.size() && IsDigit(text_[at_ + 1])) {
      Number(behind_top);
    } else {
      ++at_;
    }
  }

  void Number(bool stays) {
    const std::size_t begin = at_;
    auto kind = Literal::Kind::kWhole;
    PassDigits();
    if (at_ < text_.size() && text_[at_] == '.') {
      kind = Literal::Kind::kDecimal;
      ++at_;
      PassDigits();
    }
    if (at_ < text_.size() && (text_[at_] == 'e' || text_[at_] == 'E')) {
      std::size_t digits = at_ + 1;
      if (digits < text_.size() && (text_[digits] == '+' || text_[digits] == '-')) ++digits;
      if (digits < text_.size() && IsDigit(text_[digits])) {
        kind = Literal::Kind::kDecimal;
        at_ = digits;
        PassDigits();
      }
    }
    // "0x1F" and "12abc" are the engine's to read or to refuse.
    const bool plain = at_ == text_.size() || !(IsName(text_[at_]) || text_[at_] == '.');
    if (!plain) {
      while (at_ < text_.size() && (IsName(text_[at_]) || text_[at_] == '.')) ++at_;
    } else if (!stays && !IsLeastWholeNumber(begin)) {
      Replace(begin, {kind, text_.substr(begin, at_ - begin)});
    }
  }

  /// -9223372036854775808 is a whole number although its digits alone are too many for one.
  [[nodiscard]] bool IsLeastWholeNumber(std::size_t begin) const {
    return at_ - begin == 19 && text_.substr(begin, 19) == "9223372036854775808";
  }

  void Text() {
    const std::size_t begin = at_;
    auto kind = Literal::Kind::kText;
    for (std::size_t from = begin + 1;;) {
      const std::size_t quote = text_.find('\'', from);
      if (quote == text_.npos) {
        Unterminated();
        return;
      }
      if (quote + 1 == text_.size() || text_[quote + 1] != '\'') {
        at_ = quote + 1;
        Replace(begin, {kind, text_.substr(begin + 1, quote - begin - 1)});
        return;
      }
      kind = Literal::Kind::kTextWithQuotes;
      from = quote + 2;
    }
  }

  /// Over what stands between the quote at the current place and the next of its kind.
  void PassQuoted(char closing) {
    const std::size_t end = text_.find(closing, at_ + 1);
    if (end == text_.npos) {
      Unterminated();
    } else {
      at_ = end + 1;
    }
  }

  void QuotedName(char opening, char closing) {
    PassQuoted(closing);
    // Of a name with a doubled quote the second half follows as a name of its own.
    if (opening != closing) return;
    while (!ended_ && at_ < text_.size() && text_[at_] == closing) PassQuoted(closing);
  }

  void Comment(char second, std::string_view closing, bool behind_top) {
    if (at_ + 1 == text_.size() || text_[at_ + 1] != second) {
      ++at_;
      return;
    }
    const std::size_t end = text_.find(closing, at_ + 2);
    at_ = end == text_.npos ? text_.size() : end + closing.size();
    behind_top_ = behind_top;
  }

  void Semicolon() {
    if (!HoldsNoStatement(text_.substr(at_ + 1))) {
      Refuse("a statement text holds one statement; something follows the \";\"");
    }
    Flush(at_);
    ended_ = true;
  }

  void NamedMark(char c) {
    if (c == '@' && EqualIgnoringAsciiCase(text_.substr(at_, kIdentity.size()), kIdentity)) {
      const std::size_t end = at_ + kIdentity.size();
      if (end == text_.size() || !IsName(text_[end])) {
        at_ = end;
        return;
      }
    }
    std::size_t end = at_ + 1;
    while (end < text_.size() && IsName(text_[end])) ++end;
    if (end > at_ + 1) {
      Refuse("a statement text holds no parameter marks; \"" + std::string(text_.substr(at_, end - at_)) + "\" is one");
    }
    // "::" is an operator of some engines; its second half begins no mark.
    at_ += c == ':' && at_ + 1 < text_.size() && text_[at_ + 1] == ':' ? 2 : 1;
  }

  std::string_view text_;
  ScannedText& out_;
  std::size_t at_ = 0;
  std::size_t kept_ = 0;  // everything before is in the shape
  bool behind_top_ = false;
  bool ended_ = false;
};

}  // namespace

void AppendUnquoted(const Literal& literal, std::string& out) {
  std::string_view rest = literal.source;
  if (literal.kind == Literal::Kind::kTextWithQuotes) {
    for (std::size_t quote; (quote = rest.find('\'')) != rest.npos; rest.remove_prefix(quote + 2)) {
      out.append(rest, 0, quote + 1);
    }
  }
  out.append(rest);
}

void ScannedText::Scan(std::string_view to_scan) {
  text = to_scan;
  shape.clear();
  literals.clear();
  unterminated = false;
  Scanner(text, *this).Run();
}

bool HoldsNoStatement(std::string_view text) {
  while (!text.empty()) {
    std::size_t end = text.npos;
    if (CharacterOf(text.front()) == Character::kBlank) {
      text.remove_prefix(1);
      continue;
    }
    if (text.starts_with("--")) {
      end = text.find('\n');
    } else if (text.starts_with("/*")) {
      end = text.find("*/", 2);
      if (end != text.npos) ++end;
    } else {
      return false;
    }
    text.remove_prefix(end == text.npos ? text.size() : end + 1);
  }
  return true;
}

bool IsNameCharacter(char c) { return IsName(c); }

}  // namespace talm_flow::adapters
