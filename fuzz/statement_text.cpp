#include <algorithm>
#include <optional>
#include <vector>

#include "adapters/rewriter.h"
#include "adapters/shape_pattern.h"
#include "adapters/sql_text.h"
#include "adapters/sql_tokens.h"
#include "properties.h"
#include "property.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::fuzz {
namespace {

/// Every table has the key "rowid", or none has.
class SomeKeys : public adapters::TableKeys {
 public:
  explicit SomeKeys(bool any) : any_(any) {}
  [[nodiscard]] adapters::TableKey Find(const adapters::TableName&) override {
    if (!any_) return {};
    return {{"rowid"}, {"rowid", "ID"}};
  }

 private:
  bool any_;
};

/// A rewritten text with its literals back at their marks.
std::string WithLiterals(const adapters::Rewritten& rewritten, const std::vector<adapters::Literal>& literals) {
  std::string text;
  std::size_t copied = 0;
  for (std::size_t i = 0; i < literals.size(); ++i) {
    const adapters::Mark& mark = rewritten.marks[i];
    Require(mark.begin >= copied && rewritten.text.substr(mark.begin, mark.size) == "?",
            "a mark stands where it is told");
    text.append(rewritten.text, copied, mark.begin - copied);
    const std::string quote = IsText(literals[i]) ? "'" : "";
    text += quote + std::string(literals[i].source) + quote;
    copied = mark.begin + mark.size;
  }
  return text.append(rewritten.text, copied);
}

/// Whether a text says anything that is said differently to an engine.
bool IsForeign(std::string_view shape) {
  const std::string lowered = LowerCase(shape);
  return lowered.find("top") != lowered.npos || lowered.find("@@") != lowered.npos ||
         lowered.find_first_of("[`") != lowered.npos;
}

std::optional<adapters::ScannedText> Scanned(std::string_view text) {
  adapters::ScannedText scanned;
  try {
    scanned.Scan(text);
  } catch (const DatabaseError&) {
    return std::nullopt;  // a second statement, or a parameter mark
  }
  return scanned;
}

void CheckRewriting(const adapters::ScannedText& scanned) {
  const adapters::Dialect dialect = {.identity = "last_key()"};
  SomeKeys none(false);
  const auto plain = adapters::Rewrite(scanned.shape, dialect, none);
  Require(plain.marks.size() == scanned.literals.size(), "every literal has its mark, and every mark its literal");
  const std::string back = WithLiterals(plain, scanned.literals);
  if (!IsForeign(scanned.shape)) {
    // Only a last ";" with what is behind it is left away.
    Require(scanned.text.starts_with(back), "nothing is lost when a text is taken apart");
    Require(back.size() == scanned.text.size() || scanned.text[back.size()] == ';', "a text is taken apart to its end");
  }
  SomeKeys all(true);
  const auto ordered = adapters::Rewrite(scanned.shape, dialect, all);
  Require(ordered.marks.size() == scanned.literals.size(), "key order neither adds nor drops a mark");
  (void)WithLiterals(ordered, scanned.literals);
  const adapters::Dialect numbered = {.identity = "last_key()", .numbered_marks = true};
  Require(adapters::Rewrite(scanned.shape, numbered, none).marks.size() == scanned.literals.size(),
          "numbered marks are as many");
}

bool SameLiterals(const std::vector<adapters::Literal>& a, const std::vector<adapters::Literal>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto& one, const auto& other) {
    return one.kind == other.kind && one.source == other.source;
  });
}

/// A pattern made of one text recognises another only when that has the same shape and these literals.
void CheckRecognition(const adapters::ScannedText& known, std::string_view text) {
  std::vector<adapters::Literal> literals;
  if (!adapters::ShapePattern(known).Match(text, literals)) return;
  const auto scanned = Scanned(text);
  Require(scanned && !scanned->unterminated, "what is recognised is a statement");
  RequireEqual(scanned->shape, known.shape, "what is recognised has the known shape");
  Require(SameLiterals(scanned->literals, literals), "what is recognised has these literals");
}

}  // namespace

void CheckStatementText(std::string_view input) {
  const auto records = Records(input);
  const std::string_view first = records.front();
  const auto scanned = Scanned(first);
  for (const adapters::Token& token : adapters::Tokenize(first)) {
    Require(token.begin < token.end && token.end <= first.size(), "a token lies within its text");
  }
  if (!scanned || scanned->unterminated) return;
  CheckRewriting(*scanned);
  CheckRecognition(*scanned, first);
  for (const std::string_view other : records) CheckRecognition(*scanned, other);
}

}  // namespace talm_flow::fuzz
