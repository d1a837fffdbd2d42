#include "adapters/rewriter.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "adapters/reserved_words.h"
#include "adapters/schema_text.h"
#include "adapters/sql_tokens.h"
#include "talm_flow/text.h"

namespace talm_flow::adapters {
namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

constexpr std::array<std::string_view, 9> kAggregates = {"count", "sum",          "min",        "max",      "avg",
                                                         "total", "group_concat", "string_agg", "array_agg"};

enum class Clause { kList, kFrom, kWhere, kGroup, kHaving, kOrder, kLimit };

/// Behind these words, operators aside, a sign belongs to what follows it.
constexpr std::array<std::string_view, 21> kBeforeOperand = {
    "and", "as",     "between", "by", "case",      "else",   "having", "in",  "is",   "like", "limit",
    "not", "offset", "on",      "or", "returning", "select", "then",   "top", "when", "where"};

/// One "Select" of a statement. Places are indexes of tokens.
struct Select {
  std::size_t first = 0;
  std::size_t end = kNone;  // one behind its last token
  std::size_t top = kNone;
  std::size_t from = kNone;
  std::size_t from_end = kNone;
  std::size_t order = kNone;
  std::size_t limit = kNone;
  std::vector<std::size_t> order_terms;
  std::vector<std::string_view> result_names;
  Clause clause = Clause::kList;
  bool outermost = false;
  bool compound = false;
  bool folds_rows = false;  // distinct, grouped or aggregated: no row of it has a key
};

/// What stands between a pair of parentheses, or the whole text.
struct Level {
  std::size_t select = kNone;  // the select that is open on this level
  std::size_t owner = kNone;   // the nearest select around
  bool keeps_literals = false;
  bool compound = false;
  bool in_condition = false;
};

struct PlainTable {
  TableName name;
  std::size_t qualifier = 0;  // the token by which the statement calls it
};

struct Edit {
  std::size_t at;
  std::size_t removed;
  std::string inserted;
};

/// Finds the selects of a shape with their clauses.
class Outline {
 public:
  explicit Outline(std::string_view shape) : shape_(shape), tokens_(Tokenize(shape)) {
    kind_ = KindOf();
    levels_.push_back({});
    for (at_ = 0; at_ < tokens_.size(); ++at_) Visit();
    while (!levels_.empty()) CloseLevel();
  }

  [[nodiscard]] const std::vector<Token>& tokens() const { return tokens_; }
  [[nodiscard]] const std::vector<Select>& selects() const { return selects_; }
  [[nodiscard]] StatementKind kind() const { return kind_; }
  [[nodiscard]] bool keeps_literals() const { return keeps_literals_; }
  /// Of each mark, in order: whether it stands in a condition.
  [[nodiscard]] const std::vector<bool>& marks_in_conditions() const { return marks_in_conditions_; }
  [[nodiscard]] bool has_common_tables() const { return has_common_tables_; }

  [[nodiscard]] std::string_view Text(std::size_t token) const {
    return shape_.substr(tokens_[token].begin, tokens_[token].end - tokens_[token].begin);
  }
  [[nodiscard]] bool IsWord(std::size_t token, std::string_view word) const {
    return token < tokens_.size() && tokens_[token].kind == Token::Kind::kWord &&
           EqualIgnoringAsciiCase(Text(token), word);
  }
  [[nodiscard]] bool IsSign(std::size_t token, char sign) const {
    return token < tokens_.size() && tokens_[token].kind == Token::Kind::kOther && Text(token).front() == sign;
  }
  [[nodiscard]] bool IsName(std::size_t token) const {
    return token < tokens_.size() &&
           (tokens_[token].kind == Token::Kind::kWord || tokens_[token].kind == Token::Kind::kQuotedName);
  }

 private:
  [[nodiscard]] StatementKind KindOf() const {
    if (IsWord(0, "select")) return StatementKind::kSelect;
    for (const std::string_view word : {"insert", "update", "delete", "replace"}) {
      if (IsWord(0, word)) return StatementKind::kChange;
    }
    return StatementKind::kOther;
  }

  void Visit() {
    switch (tokens_[at_].kind) {
      case Token::Kind::kWord:
        if (at_ == 0 || !IsSign(at_ - 1, '.')) Word();
        break;
      case Token::Kind::kMark:
        keeps_literals_ = keeps_literals_ || KeepsLiterals();
        marks_in_conditions_.push_back(levels_.back().in_condition);
        break;
      case Token::Kind::kOther:
        Sign(Text(at_).front());
        break;
      default:
        break;
    }
  }

  /// A literal names its column where it is selected and means a position where rows are ordered or grouped by it.
  [[nodiscard]] bool KeepsLiterals() const {
    const Level& level = levels_.back();
    if (level.keeps_literals || returning_ || kind_ == StatementKind::kOther) return true;
    if (level.select == kNone) return false;
    const Clause clause = selects_[level.select].clause;
    return clause == Clause::kList || clause == Clause::kGroup || clause == Clause::kOrder;
  }

  void Sign(char sign) {
    Level& level = levels_.back();
    if (sign == '(') {
      levels_.push_back({.owner = level.owner, .keeps_literals = KeepsLiterals(), .in_condition = level.in_condition});
    } else if (sign == ')' && levels_.size() > 1) {
      CloseLevel();
    } else if (sign == ',' && level.select != kNone && selects_[level.select].clause == Clause::kOrder) {
      selects_[level.select].order_terms.push_back(at_ + 1);
    }
  }

  void CloseLevel() {
    EndSelect();
    levels_.pop_back();
  }

  void EndSelect() {
    Level& level = levels_.back();
    if (level.select == kNone) return;
    Enter(Clause::kLimit);
    selects_[level.select].end = at_;
    level.select = kNone;
    level.in_condition = false;
  }

  void Enter(Clause clause) {
    Select& select = selects_[levels_.back().select];
    if (select.clause == Clause::kFrom) select.from_end = at_;
    select.clause = clause;
  }

  void Word() {
    Level& level = levels_.back();
    NoteCondition();
    if (IsWord(at_, "select")) {
      BeginSelect();
    } else if (IsWord(at_, "with") && (at_ == 0 || IsSign(at_ - 1, '('))) {
      has_common_tables_ = true;
    } else if (levels_.size() == 1 && kind_ == StatementKind::kChange && IsWord(at_, "returning")) {
      EndSelect();
      returning_ = true;
    } else if (levels_.size() == 1 && IsWord(at_, "on") && IsWord(at_ + 1, "conflict")) {
      EndSelect();
    } else if (level.select != kNone) {
      ClauseWord(selects_[level.select]);
    }
    NoteAggregate();
  }

  void BeginSelect() {
    EndSelect();  // no statement has two on one level, but a text may
    Level& level = levels_.back();
    level.select = level.owner = selects_.size();
    Select& select = selects_.emplace_back();
    select.first = at_;
    select.outermost = levels_.size() == 1;
    select.compound = level.compound;
    std::size_t next = at_ + 1;
    if (IsWord(next, "distinct") || IsWord(next, "all")) {
      select.folds_rows = IsWord(next, "distinct");
      ++next;
    }
    if (IsWord(next, "top") && next + 1 < tokens_.size() && tokens_[next + 1].kind == Token::Kind::kNumber) {
      select.top = next;
    }
  }

  void ClauseWord(Select& select) {
    if (IsWord(at_, "from")) {
      const bool compares = IsWord(at_ - 1, "distinct") && at_ - 1 != select.first + 1;  // "is distinct from"
      if (select.clause == Clause::kList && !compares) {
        select.from = at_;
        select.clause = Clause::kFrom;
      }
    } else if (IsWord(at_, "where") || IsWord(at_, "window")) {
      if (select.clause != Clause::kList) Enter(Clause::kWhere);
    } else if (IsWord(at_, "group") && IsWord(at_ + 1, "by")) {
      Enter(Clause::kGroup);
      select.folds_rows = true;
    } else if (IsWord(at_, "having")) {
      Enter(Clause::kHaving);
      select.folds_rows = true;
    } else if (IsWord(at_, "order") && IsWord(at_ + 1, "by")) {
      Enter(Clause::kOrder);
      select.order = at_;
      select.order_terms.push_back(at_ + 2);
    } else if (IsWord(at_, "limit")) {
      Enter(Clause::kLimit);
      select.limit = at_;
    } else if (IsWord(at_, "union") || IsWord(at_, "intersect") || IsWord(at_, "except")) {
      select.compound = levels_.back().compound = true;
      EndSelect();
    } else if (select.clause == Clause::kList && IsWord(at_, "as") && IsName(at_ + 1)) {
      select.result_names.push_back(Text(at_ + 1));
    }
  }

  void NoteCondition() {
    bool& in_condition = levels_.back().in_condition;
    if (IsWord(at_, "where") || IsWord(at_, "having") || IsWord(at_, "on")) {
      in_condition = true;
    } else if (IsWord(at_, "select") || IsWord(at_, "group") || IsWord(at_, "order") || IsWord(at_, "limit") ||
               IsWord(at_, "returning") || IsWord(at_, "set") || IsWord(at_, "values")) {
      in_condition = false;
    }
  }

  void NoteAggregate() {
    const std::size_t owner = levels_.back().owner;
    if (owner == kNone || !IsSign(at_ + 1, '(')) return;
    const Clause clause = selects_[owner].clause;
    if (clause != Clause::kList && clause != Clause::kOrder) return;
    const bool aggregate = std::any_of(kAggregates.begin(), kAggregates.end(),
                                       [this](std::string_view name) { return IsWord(at_, name); });
    if (aggregate) selects_[owner].folds_rows = true;
  }

  std::string_view shape_;
  std::vector<Token> tokens_;
  std::vector<Select> selects_;
  std::vector<Level> levels_;
  std::size_t at_ = 0;
  StatementKind kind_ = StatementKind::kOther;
  std::vector<bool> marks_in_conditions_;
  bool keeps_literals_ = false;
  bool returning_ = false;
  bool has_common_tables_ = false;
};

/// Turns an outline into edits of the shape and applies them.
class Rewriter {
 public:
  Rewriter(std::string_view shape, const Dialect& dialect, TableKeys& keys)
      : shape_(shape), dialect_(dialect), keys_(keys), outline_(shape), places_(shape, outline_.tokens()) {}

  [[nodiscard]] Rewritten Run() {
    result_.kind = outline_.kind();
    result_.literals_inline = outline_.keeps_literals();
    for (const Select& select : outline_.selects()) RewriteSelect(select);
    if (!dialect_.native) {
      for (std::size_t token = 0; token < outline_.tokens().size(); ++token) RewriteToken(token);
    }
    Apply();
    return std::move(result_);
  }

 private:
  [[nodiscard]] const Token& At(std::size_t token) const { return outline_.tokens()[token]; }

  void Replace(std::size_t token, std::string text) {
    edits_.push_back({At(token).begin, At(token).end - At(token).begin, std::move(text)});
  }

  void RewriteToken(std::size_t token) {
    switch (At(token).kind) {
      case Token::Kind::kIdentity:
        if (At(token).end - At(token).begin > 2) Replace(token, std::string(dialect_.identity));
        break;
      case Token::Kind::kWord:
      case Token::Kind::kQuotedName:
        if (std::string name = InEnginesQuotes(token); name != outline_.Text(token)) Replace(token, std::move(name));
        break;
      case Token::Kind::kMark:
        negative_marks_.push_back(dialect_.types_from_context && TakesSign(token));
        if (dialect_.types_from_context && IsCombinedWithMark(token)) result_.literals_inline = true;
        break;
      default:
        break;
    }
  }

  /// A name as the engine is to read it.
  [[nodiscard]] std::string InEnginesQuotes(std::size_t token) const {
    const std::string spelled = Spelled(outline_.Text(token));
    const std::string_view name = spelled;
    if (At(token).kind == Token::Kind::kQuotedName && name == outline_.Text(token)) {
      const bool foreign = name.front() == '['   ? dialect_.quotes != NameQuotes::kAnsi
                           : name.front() == '`' ? dialect_.quotes == NameQuotes::kAnsiLowerCase
                                                 : dialect_.quotes == NameQuotes::kBackticks;
      return foreign ? QuotedName(dialect_, UnquotedName(name)) : std::string(name);
    }
    const bool quote = IsReserved(dialect_.reserved, name) && HoldsColumns(token) && places_.IsName(token);
    return quote ? QuotedName(dialect_, name) : std::string(name);
  }

  /// Statements that define something name columns in ways of their own: "primary key (a)".
  [[nodiscard]] bool HoldsColumns(std::size_t token) const {
    const auto& selects = outline_.selects();
    return outline_.kind() != StatementKind::kOther || outline_.IsWord(0, "with") || outline_.IsWord(0, "explain") ||
           (outline_.IsWord(0, "create") && !selects.empty() && selects.front().first < token);
  }

  /// A name in the case in which the engine knows it, if it is that of a table.
  [[nodiscard]] std::string Spelled(std::string_view name) const {
    if (!dialect_.tables_by_case) return std::string(name);
    const std::string plain = UnquotedName(name);
    std::string spelled = TableNameAsInSchema(plain);
    return spelled == plain ? std::string(name) : spelled;
  }

  /// Takes the sign away that belongs to the literal behind it.
  bool TakesSign(std::size_t mark) {
    if (mark == 0 || !outline_.IsSign(mark - 1, '-')) return false;
    if (mark > 1 && !StandsBeforeOperand(mark - 2)) return false;
    Replace(mark - 1, {});
    return true;
  }

  [[nodiscard]] bool StandsBeforeOperand(std::size_t token) const {
    if (At(token).kind == Token::Kind::kOther) return outline_.Text(token).front() != ')';
    return std::any_of(kBeforeOperand.begin(), kBeforeOperand.end(),
                       [&](std::string_view word) { return outline_.IsWord(token, word); });
  }

  /// "1=1", "5 > 10": nothing there tells the engine what the literals are.
  [[nodiscard]] bool IsCombinedWithMark(std::size_t mark) const {
    constexpr std::string_view kOperators = "=<>!+-*/%|";
    std::size_t other = mark;
    while (other > 0 && At(other - 1).kind == Token::Kind::kOther &&
           kOperators.find(outline_.Text(other - 1).front()) != kOperators.npos) {
      --other;
    }
    return other < mark && other > 0 && At(other - 1).kind == Token::Kind::kMark;
  }

  void RewriteSelect(const Select& select) {
    const auto table = FindPlainTable(select);
    if (select.outermost && outline_.kind() == StatementKind::kSelect && table && !select.compound) {
      result_.table = table->name;
    }
    if (select.outermost) {
      for (const std::string_view name : select.result_names) result_.result_names.push_back(UnquotedName(name));
    }
    if (dialect_.native) return;
    const bool wants_key_order = table && WantsKeyOrder(select);
    const bool wants_nulls = dialect_.nulls_last && select.order != kNone;
    TableKey key;
    if (table && (wants_key_order || wants_nulls)) key = keys_.Find(table->name);
    if (wants_nulls) PlaceNulls(select, key);
    if (wants_key_order) AddKeyOrder(select, *table, key);
    if (select.top != kNone) MoveTop(select);
  }

  [[nodiscard]] bool WantsKeyOrder(const Select& select) const {
    return (select.outermost || select.top != kNone) && outline_.kind() != StatementKind::kOther &&
           !outline_.has_common_tables() && !select.folds_rows && !select.compound;
  }

  /// One behind the last token that stands before a "Limit" of the select's own, or of the whole select.
  [[nodiscard]] std::size_t EndBeforeLimit(const Select& select) const {
    return select.limit != kNone ? select.limit : select.end;
  }

  void InsertBehind(std::size_t token, std::string text) { edits_.push_back({At(token).end, 0, std::move(text)}); }

  void MoveTop(const Select& select) {
    const std::size_t number = select.top + 1;
    const std::size_t begin = At(select.top).begin;
    const std::size_t end = number + 1 < outline_.tokens().size() ? At(number + 1).begin : At(number).end;
    edits_.push_back({begin, end - begin, {}});
    std::string limit = " limit " + std::string(outline_.Text(number));
    // A part of a compound select can be limited only inside a select of its own.
    if (!select.compound && (select.outermost || !dialect_.derived_limits)) {
      InsertBehind(select.end - 1, std::move(limit));
      return;
    }
    edits_.push_back({At(select.first).begin, 0, "select * from ("});
    const bool order_is_of_all = select.compound && select.order != kNone;
    const std::size_t end_of_part = order_is_of_all   ? select.order
                                    : select.compound ? EndBeforeLimit(select)
                                                      : select.end;
    InsertBehind(end_of_part - 1, std::move(limit) + ") as limited");
  }

  void AddKeyOrder(const Select& select, const PlainTable& table, const TableKey& key) {
    if (key.order.empty() || IsOrderedBy(select, key)) return;
    std::string terms;
    for (const std::string& column : key.order) {
      terms += terms.empty() ? "" : ", ";
      terms.append(InEnginesQuotes(table.qualifier)).append(".").append(column);
    }
    InsertBehind(EndBeforeLimit(select) - 1, (select.order == kNone ? " order by " : ", ") + terms);
  }

  /// Every term that can be Null says where its Null goes.
  void PlaceNulls(const Select& select, const TableKey& key) {
    for (std::size_t i = 0; i < select.order_terms.size(); ++i) {
      const std::size_t end = TermEnd(select, i);
      if (end <= select.order_terms[i] || IsKeyTerm(select, i, key)) continue;
      if (end >= 2 && outline_.IsWord(end - 2, "nulls")) continue;
      InsertBehind(end - 1, outline_.IsWord(end - 1, "desc") ? " nulls last" : " nulls first");
    }
  }

  [[nodiscard]] std::size_t TermEnd(const Select& select, std::size_t term) const {
    return term + 1 < select.order_terms.size() ? select.order_terms[term + 1] - 1 : EndBeforeLimit(select);
  }

  [[nodiscard]] bool IsOrderedBy(const Select& select, const TableKey& key) const {
    for (std::size_t i = 0; i < select.order_terms.size(); ++i) {
      if (IsKeyTerm(select, i, key)) return true;
    }
    return false;
  }

  [[nodiscard]] bool IsKeyTerm(const Select& select, std::size_t term, const TableKey& key) const {
    const std::size_t end = TermEnd(select, term);
    std::size_t name = select.order_terms[term];
    const bool qualified = outline_.IsSign(name + 1, '.');
    while (outline_.IsSign(name + 1, '.')) name += 2;
    const bool plain =
        name + 1 == end || (name + 2 == end && (outline_.IsWord(name + 1, "asc") || outline_.IsWord(name + 1, "desc")));
    if (!plain || !outline_.IsName(name)) return false;
    const std::string column = UnquotedName(outline_.Text(name));
    if (!qualified && Names(select.result_names, column)) return false;
    return Names(key.names, column);
  }

  template <typename List>
  [[nodiscard]] static bool Names(const List& names, std::string_view sought) {
    return std::any_of(names.begin(), names.end(),
                       [sought](std::string_view name) { return EqualIgnoringAsciiCase(UnquotedName(name), sought); });
  }

  /// The table, when "From" names one and nothing else.
  [[nodiscard]] std::optional<PlainTable> FindPlainTable(const Select& select) const {
    if (select.from == kNone) return std::nullopt;
    std::size_t at = select.from + 1;
    if (at >= select.from_end || !outline_.IsName(at)) return std::nullopt;
    PlainTable found;
    if (at + 2 < select.from_end && outline_.IsSign(at + 1, '.') && outline_.IsName(at + 2)) {
      found.name.schema = UnquotedName(outline_.Text(at));
      at += 2;
    }
    found.name.name = UnquotedName(Spelled(outline_.Text(at)));
    found.qualifier = at++;
    if (at < select.from_end && outline_.IsWord(at, "as")) ++at;
    const bool hint = outline_.IsWord(at, "indexed") || outline_.IsWord(at, "not");
    if (at < select.from_end && outline_.IsName(at) && !hint) found.qualifier = at++;
    if (at < select.from_end && outline_.IsWord(at, "not") && outline_.IsWord(at + 1, "indexed")) at += 2;
    if (at < select.from_end && outline_.IsWord(at, "indexed") && outline_.IsWord(at + 1, "by")) at += 3;
    if (at != select.from_end) return std::nullopt;
    return found;
  }

  void Apply() {
    std::stable_sort(edits_.begin(), edits_.end(), [](const Edit& a, const Edit& b) { return a.at < b.at; });
    for (const Token& token : outline_.tokens()) {
      if (token.kind == Token::Kind::kMark) marks_.push_back(token.begin);
    }
    for (const Edit& edit : edits_) {
      CopyTo(edit.at);
      result_.text += edit.inserted;
      copied_ = std::max(copied_, edit.at + edit.removed);
    }
    CopyTo(shape_.size());
  }

  void CopyTo(std::size_t end) {
    for (; next_mark_ < marks_.size() && marks_[next_mark_] < end; ++next_mark_) {
      result_.text.append(shape_, copied_, marks_[next_mark_] - copied_);
      const std::string mark = dialect_.numbered_marks ? "$" + std::to_string(next_mark_ + 1) : "?";
      result_.marks.push_back({.begin = result_.text.size(),
                               .size = mark.size(),
                               .negative = next_mark_ < negative_marks_.size() && negative_marks_[next_mark_],
                               .in_condition = outline_.marks_in_conditions()[next_mark_]});
      result_.text += mark;
      copied_ = marks_[next_mark_] + 1;
    }
    if (end <= copied_) return;
    result_.text.append(shape_, copied_, end - copied_);
    copied_ = end;
  }

  std::string_view shape_;
  const Dialect& dialect_;
  TableKeys& keys_;
  Outline outline_;
  NamePlaces places_;
  Rewritten result_;
  std::vector<Edit> edits_;
  std::vector<std::size_t> marks_;
  std::vector<bool> negative_marks_;
  std::size_t next_mark_ = 0;
  std::size_t copied_ = 0;
};

}  // namespace

Rewritten Rewrite(std::string_view shape, const Dialect& dialect, TableKeys& keys) {
  return Rewriter(shape, dialect, keys).Run();
}

std::string WithLiterals(const Rewritten& rewritten, const std::vector<Literal>& literals, const Dialect& dialect) {
  std::string text;
  std::string content;
  std::size_t copied = 0;
  for (std::size_t i = 0; i < literals.size(); ++i) {
    const Mark& mark = rewritten.marks[i];
    text.append(rewritten.text, copied, mark.begin - copied);
    if (mark.negative) text += '-';
    if (IsText(literals[i])) {
      content.clear();
      AppendUnquoted(literals[i], content);
      text += QuotedText(dialect, content);
    } else {
      text += literals[i].source;
    }
    copied = mark.begin + mark.size;
  }
  return text.append(rewritten.text, copied);
}

std::string UnquotedName(std::string_view name) {
  if (name.size() < 2 || (name.front() != '"' && name.front() != '`' && name.front() != '[')) {
    return std::string(name);
  }
  const char quote = name.front();
  name = name.substr(1, name.size() - 2);
  if (quote == '[') return std::string(name);
  const std::string one(1, quote);
  return ReplaceAll(name, one + one, one);
}

}  // namespace talm_flow::adapters
