#include <algorithm>
#include <cctype>
#include <optional>
#include <vector>

#include "expr/condition.h"
#include "properties.h"
#include "property.h"
#include "support/invocation.h"
#include "support/world.h"
#include "taken_back.h"
#include "talm_flow/command.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::fuzz {
namespace {

std::string WithoutBlanksAndLineEnds(std::string text) {
  std::erase_if(text, [](char c) { return c == ' ' || c == '\r' || c == '\n'; });
  return text;
}

void CheckTokens(std::string_view condition) {
  const auto tokens = expr::ExpressToArr(condition);
  std::string all;
  std::string lines;
  for (const std::string& token : tokens) {
    Require(!token.empty() && token.front() != ' ' && token.back() != ' ', "a token has no blanks around it");
    Require(token.find("\r\n") == token.npos, "a token stands on one line");
    RequireEqual(LowerCase(token), token, "a token is in lower case");
    all += token;
    if (!lines.empty()) lines += "\r\n";
    lines += token;
  }
  RequireEqual(WithoutBlanksAndLineEnds(all), WithoutBlanksAndLineEnds(LowerCase(condition)),
               "the tokens hold the condition's characters");
  Require(expr::ExpressToArr(lines) == tokens, "tokens on lines of their own are the same tokens");
}

/// Reads the condition of a lookup's statement as a database would: comparisons of the form's columns with literals,
/// joined by "and", "or" and parentheses, and nothing else.
class WhereReader {
 public:
  explicit WhereReader(std::string_view where) : rest_(where) {}

  [[nodiscard]] bool Accepts() {
    std::size_t open = 0;
    for (;;) {
      while (Take("(")) ++open;
      if (!Comparison()) return false;
      while (Take(")")) {
        if (open-- == 0) return false;
      }
      if (rest_.empty()) return open == 0;
      if (!Take(" and ") && !Take(" or ")) return false;
    }
  }

 private:
  bool Take(std::string_view piece) {
    if (!rest_.starts_with(piece)) return false;
    rest_.remove_prefix(piece.size());
    return true;
  }

  bool Comparison() {
    for (const std::string_view column : {"inputtime", "name", "Title", "Amount", "id"}) {
      if (!Take(column)) continue;
      for (const std::string_view sign : {">=", "<=", "<>", "=", ">", "<"}) {
        if (Take(sign)) return column == "id" ? Number() : Literal();
      }
      return false;
    }
    return false;
  }

  bool Number() {
    (void)Take("-");
    const std::size_t digits = std::min(rest_.find_first_not_of("0123456789"), rest_.size());
    rest_.remove_prefix(digits);
    return digits > 0;
  }

  bool Literal() {
    if (!Take("'")) return false;
    for (;;) {
      const std::size_t quote = rest_.find('\'');
      if (quote == rest_.npos) return false;
      rest_.remove_prefix(quote + 1);
      if (!Take("'")) return true;
    }
  }

  std::string_view rest_;
};

/// Form 12 with three records.
class Office {
 public:
  Office() {
    world_.database().CreateFormTable(12, {{"Title", "InputText"}, {"Amount", "InputNum"}});
    for (const char* const record : {"'张三','2026-01-02 03:04:05','a''b',1", "'李四','2026-01-03 00:00:00','',-2.5",
                                     "'kim','2026-02-01 00:00:00','x',1e3"}) {
      world_.Run("Insert Into TableData12 (name,inputtime,Title,Amount) Values (" + std::string(record) + ")");
    }
  }

  /// Runs a lookup in a transaction that is taken back. @returns the query that it ran, if it ran one.
  std::optional<std::string> Look(std::string_view condition, const std::vector<std::string_view>& variables) {
    const TakenBack taken_back(world_.database());
    Prepare(condition, variables);
    auto query = Run(&Command::C_77, "C_77", "Select Top 1 ID from TableData12");
    const auto fields = Run(&Command::C_79, "C_79", "Select Top 10000 name from TableData12");
    Require(query.has_value() == fields.has_value(), "both lookups take the same conditions");
    return query;
  }

 private:
  void Prepare(std::string_view condition, const std::vector<std::string_view>& variables) {
    for (const std::string_view variable : variables) {
      const std::size_t equals = std::min(variable.find('='), variable.size());
      world_.Run("Insert Into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) Values (901,901," +
                 test::Literal(variable.substr(0, equals)) + "," +
                 test::Literal(variable.substr(std::min(equals + 1, variable.size()))) + ")");
    }
    for (const std::string command : {"C_77", "C_79"}) {
      world_.Parameter(7, 1, command + "_1", "12");
      world_.Parameter(7, 1, command + "_2", condition);
      world_.Parameter(7, 1, command + "_3", command == "C_77" ? "found" : "\"name\"");
      world_.Parameter(7, 1, command + "_4", "texts");
    }
  }

  std::optional<std::string> Run(void (Command::*operation)(InvocationContext&), std::string_view command,
                                 std::string_view query) {
    world_.ForgetTrace();
    test::Invocation call;
    InvocationContext context = call.On(world_.connection());
    try {
      (Command(world_.services()).*operation)(context);
    } catch (const DatabaseError& error) {
      // An engine takes conditions up to a certain depth only.
      const std::string_view what = error.what();
      const bool deep = what.find("parser stack overflow") != what.npos || what.find("too large") != what.npos;
      Require(deep, std::string(command) + " makes a statement that runs: " + error.what() + ": " + error.Statement());
    } catch (const OverflowError&) {
    } catch (const SubscriptError&) {
    } catch (const NestingError&) {
    }
    for (const std::string& statement : world_.trace()) {
      if (statement.starts_with(query)) return statement;
    }
    return std::nullopt;
  }

  test::World world_;
};

void CheckLookup(std::string_view condition, const std::vector<std::string_view>& variables) {
  static Office office;
  const auto query = office.Look(condition, variables);
  if (!query) return;
  constexpr std::string_view kHead = "Select Top 1 ID from TableData12";
  constexpr std::string_view kTail = " Order By ID Desc";
  Require(query->ends_with(kTail), "a lookup's query ends as it should: " + *query);
  std::string_view where(*query);
  where = where.substr(kHead.size(), where.size() - kHead.size() - kTail.size());
  if (where.empty()) return Require(expr::ExpressToArr(condition).empty(), "only the empty condition asks for all");
  Require(where.starts_with(" Where ") && WhereReader(where.substr(7)).Accepts(),
          "a lookup compares columns with literals and does nothing else: " + *query);
}

}  // namespace

void CheckCondition(std::string_view input) {
  auto records = Records(input);
  const std::string_view condition = records.front();
  CheckTokens(condition);
  records.erase(records.begin());
  CheckLookup(condition, records);
}

}  // namespace talm_flow::fuzz
