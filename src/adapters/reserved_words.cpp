#include "adapters/reserved_words.h"

#include "adapters/dialect.h"
#include "talm_flow/text.h"

namespace talm_flow::adapters {
namespace {

/// Behind these, and behind a sign, an operand begins.
constexpr std::array<std::string_view, 16> kBeforeName = {"all",    "and",  "between", "by",   "distinct", "else",
                                                          "having", "like", "not",     "on",   "or",       "select",
                                                          "set",    "then", "when",    "where"};

/// These follow an operand.
constexpr std::array<std::string_view, 18> kBehindName = {"and",  "as",    "asc",   "between", "desc",  "else",
                                                          "end",  "from",  "group", "having",  "in",    "is",
                                                          "like", "limit", "not",   "or",      "order", "then"};

/// Where an operand may begin, these are one or the begin of one.
constexpr std::array<std::string_view, 31> kValues = {
    "all",          "any",          "both",           "case",         "current_catalog",
    "current_date", "current_role", "current_schema", "current_time", "current_timestamp",
    "current_user", "default",      "distinct",       "distinctrow",  "exists",
    "false",        "from",         "leading",        "localtime",    "localtimestamp",
    "maxvalue",     "not",          "null",           "select",       "session_user",
    "some",         "trailing",     "true",           "utc_date",     "utc_time",
    "utc_timestamp"};

bool Contains(std::span<const std::string_view> words, std::string_view sought) {
  return std::any_of(words.begin(), words.end(),
                     [sought](std::string_view word) { return EqualIgnoringAsciiCase(word, sought); });
}

}  // namespace

bool IsReserved(std::span<const std::string_view> reserved, std::string_view word) {
  const std::string lower = AsciiLowerCase(word);
  return std::binary_search(reserved.begin(), reserved.end(), std::string_view(lower));
}

NamePlaces::NamePlaces(std::string_view shape, const std::vector<Token>& tokens)
    : shape_(shape), tokens_(tokens), columns_(tokens.size()) {
  NoteInsertedColumns();
  NoteAssignedColumns();
}

bool NamePlaces::IsName(std::size_t token) const {
  if (columns_[token] || IsSign(token + 1, '.') || (token > 0 && IsSign(token - 1, '.'))) return true;
  if (token == 0 || Contains(kValues, Text(token))) return false;
  const bool last = token + 1 == tokens_.size();
  // "cast(a as char)" names a type.
  if (IsWord(token - 1, "as")) return last || IsSign(token + 1, ',') || IsWord(token + 1, "from");
  return OperandBegins(token) && (last || OperandEnds(token));
}

std::string_view NamePlaces::Text(std::size_t token) const {
  return shape_.substr(tokens_[token].begin, tokens_[token].end - tokens_[token].begin);
}

bool NamePlaces::IsWord(std::size_t token, std::string_view word) const {
  return token < tokens_.size() && tokens_[token].kind == Token::Kind::kWord &&
         EqualIgnoringAsciiCase(Text(token), word);
}

bool NamePlaces::IsSign(std::size_t token, char sign) const {
  return token < tokens_.size() && tokens_[token].kind == Token::Kind::kOther && Text(token).front() == sign;
}

bool NamePlaces::IsOneOf(std::size_t token, std::string_view signs, std::span<const std::string_view> words) const {
  switch (tokens_[token].kind) {
    case Token::Kind::kOther:
      return signs.find(Text(token).front()) != signs.npos;
    case Token::Kind::kWord:
      return Contains(words, Text(token));
    default:
      return false;
  }
}

bool NamePlaces::OperandBegins(std::size_t token) const {
  const std::size_t before = token - 1;
  if (tokens_[before].kind == Token::Kind::kNumber) return before > 0 && IsWord(before - 1, "top");
  return IsOneOf(before, "(,=<>!+-*/%|", kBeforeName);
}

bool NamePlaces::OperandEnds(std::size_t token) const {
  // A sign that may stand before an operand too ("select -1") decides nothing.
  return IsOneOf(token + 1, ",)=<>!/%|;", kBehindName);
}

void NamePlaces::NoteInsertedColumns() {
  if (!IsWord(0, "insert") && !IsWord(0, "replace")) return;
  std::size_t at = 0;
  while (at < tokens_.size() && !IsSign(at, '(')) ++at;
  if (at < 2 || (!IsWord(at - 2, "into") && !IsSign(at - 2, '.'))) return;
  for (++at; at < tokens_.size() && !IsSign(at, ')'); ++at) columns_[at] = true;
}

void NamePlaces::NoteAssignedColumns() {
  if (!IsWord(0, "update")) return;
  int depth = 0;
  bool assigns = false;
  for (std::size_t at = 1; at + 1 < tokens_.size(); ++at) {
    if (IsSign(at, '(')) ++depth;
    if (IsSign(at, ')')) --depth;
    if (depth != 0) continue;
    if (assigns && (IsWord(at, "where") || IsWord(at, "from"))) return;
    if (assigns && IsSign(at + 1, '=') && (IsSign(at - 1, ',') || IsWord(at - 1, "set"))) columns_[at] = true;
    assigns = assigns || IsWord(at, "set");
  }
}

}  // namespace talm_flow::adapters
