#include "statement_maker.h"

#include <array>

namespace talm_flow::fuzz {
namespace {

constexpr std::size_t kDeepest = 3;

struct Both {
  std::string component;
  std::string engine;

  Both& operator+=(const Both& other) {
    component += other.component;
    engine += other.engine;
    return *this;
  }
  Both& operator+=(std::string_view same) {
    component += same;
    engine += same;
    return *this;
  }
};

enum class Use { kOutermost, kFeeding, kInside, kScalar };

class Maker {
 public:
  explicit Maker(Choices& choices) : choices_(choices) {}

  MadeStatement Make() {
    ordered_ = true;
    Both statement;
    switch (choices_.Of(8)) {
      case 0:
        statement = Insert();
        break;
      case 1:
        statement = Update();
        break;
      case 2:
        statement = Delete();
        break;
      case 3:
        statement += Word("select");
        statement += Gap();
        statement += Both{choices_.Once(2) ? "@@IDENTITY" : "@@identity", "last_insert_rowid()"};
        statement += " as X";
        break;
      case 4:
        statement = Compound();
        break;
      default:
        statement = Select(Use::kOutermost, 0);
        break;
    }
    if (choices_.Once(8)) statement += ";";
    if (choices_.Once(8)) statement += " -- Top 1 '";
    return {std::move(statement.component), std::move(statement.engine), ordered_};
  }

 private:
  /// A keyword in one of its spellings.
  std::string Word(std::string_view word) {
    std::string spelled(word);
    const std::size_t spelling = choices_.Of(3);
    for (std::size_t i = 0; i < spelled.size(); ++i) {
      const bool upper = spelling == 2 || (spelling == 1 && (i == 0 || spelled[i - 1] == ' '));
      if (upper && spelled[i] >= 'a' && spelled[i] <= 'z') spelled[i] = static_cast<char>(spelled[i] - 'a' + 'A');
    }
    return spelled;
  }

  std::string_view Gap() {
    constexpr std::array<std::string_view, 8> kGaps = {
        " ", " ", " ", "  ", "\t", "\r\n", " /* select Top 9 'x\" ? */ ", " -- from ' (\n"};
    return kGaps[choices_.Of(kGaps.size())];
  }

  std::string Literal() {
    switch (choices_.Of(12)) {
      case 0:
        return std::to_string(choices_.Of(10));
      case 1:
        return "-" + std::to_string(choices_.Of(256));
      case 2:
        return Fraction(choices_.Of(10));
      case 3:
        return "1e" + std::to_string(choices_.Of(30));
      case 4:
        return "." + std::to_string(choices_.Of(100));
      case 5:
        return "null";
      case 6:
        return "x'4142'";
      case 7: {
        constexpr std::array<std::string_view, 5> kEdges = {"9223372036854775807", "9223372036854775808",
                                                            "-9223372036854775808", "0x1F", "1e400"};
        return std::string(kEdges[choices_.Of(kEdges.size())]);
      }
      case 8: {
        constexpr std::array<std::string_view, 6> kTexts = {"'a'",          "'b''c'",       "''",
                                                            "'; Top 2 --'", "'? @x :y $1'", "'张'"};
        return std::string(kTexts[choices_.Of(kTexts.size())]);
      }
      default:
        return FreeText();
    }
  }

  std::string Fraction(std::size_t whole) { return std::to_string(whole) + "." + std::to_string(choices_.Of(100)); }

  /// Any bytes of the input as a text.
  std::string FreeText() {
    std::string literal = "'";
    for (const char c : choices_.Bytes(choices_.Of(6))) {
      if (c == '\0') continue;  // the engine takes it for the text's end
      literal += c;
      if (c == '\'') literal += c;
    }
    return literal + '\'';
  }

  std::string Column(bool of_t) {
    constexpr std::array<std::string_view, 4> kColumns = {"n", "s", "ID", "r"};
    return std::string(kColumns[choices_.Of(of_t ? 4 : 3)]);
  }

  Both Operand(std::size_t depth, const std::string& qualifier, bool of_t) {
    Both operand;
    switch (choices_.Of(depth < kDeepest ? 6 : 4)) {
      case 0:
        operand += Literal();
        break;
      case 4:
        operand += "(";
        operand += Select(Use::kScalar, depth + 1);
        operand += ")";
        break;
      case 5: {
        constexpr std::array<std::string_view, 4> kSigns = {"+", "||", "-", "*"};
        operand += "(";
        operand += Operand(depth + 1, qualifier, of_t);
        operand += kSigns[choices_.Of(kSigns.size())];
        operand += Operand(depth + 1, qualifier, of_t);
        operand += ")";
        break;
      }
      default:
        if (choices_.Once(2)) operand += qualifier + ".";
        operand += Column(of_t);
        break;
    }
    return operand;
  }

  Both Condition(std::size_t depth, const std::string& qualifier, bool of_t) {
    Both condition;
    switch (choices_.Of(depth < kDeepest ? 7 : 2)) {
      case 2:
        condition += Operand(depth, qualifier, of_t);
        condition += Gap();
        condition += Word("in") + " (";
        condition += Select(Use::kInside, depth + 1);
        condition += ")";
        break;
      case 3:
        condition += Column(of_t);
        condition += " " + Word("in") + " (";
        condition += Literal();
        condition += ",";
        condition += Literal();
        condition += ")";
        break;
      case 4:
        condition += Word("exists") + "(";
        condition += Select(Use::kInside, depth + 1);
        condition += ")";
        break;
      case 5:
      case 6:
        condition += "(";
        condition += Condition(depth + 1, qualifier, of_t);
        condition += Gap();
        condition += Word(choices_.Once(2) ? "and" : "or");
        condition += Gap();
        condition += Condition(depth + 1, qualifier, of_t);
        condition += ")";
        break;
      default: {
        constexpr std::array<std::string_view, 8> kSigns = {"=", "<>", "<", ">", ">=", "<=", " is not ", " like "};
        condition += Operand(depth, qualifier, of_t);
        condition += kSigns[choices_.Of(kSigns.size())];
        condition += Operand(depth, qualifier, of_t);
        break;
      }
    }
    return condition;
  }

  Both Where(std::size_t depth, const std::string& qualifier, bool of_t) {
    Both where;
    if (choices_.Once(4)) return where;
    where += Gap();
    where += Word("where");
    where += Gap();
    where += Condition(depth, qualifier, of_t);
    return where;
  }

  /// What a select lists, and whether it folds rows into others.
  struct List {
    Both text;
    bool folds = false;
  };

  List ListOf(Use use, std::size_t depth, const std::string& qualifier, bool of_t) {
    List list;
    if (use == Use::kInside || use == Use::kScalar) {
      list.text = Operand(depth, qualifier, of_t);
      return list;
    }
    if (use == Use::kFeeding) {
      list.text = Operand(depth, qualifier, of_t);
      list.text += ",";
      list.text += Operand(depth, qualifier, of_t);
      return list;
    }
    switch (choices_.Of(6)) {
      case 0:
        list.text += "*";
        break;
      case 1: {
        constexpr std::array<std::string_view, 4> kFolds = {"count(*)", "max(n)", "Min(s)", "1+sum(n)"};
        list.text += kFolds[choices_.Of(kFolds.size())];
        list.folds = true;
        break;
      }
      case 2:
        list.text = Operand(depth, qualifier, of_t);
        list.text += " " + Word("as") + " \"Top 2\"";
        break;
      default:
        for (std::size_t i = choices_.Of(3) + 1; i > 0; --i) {
          list.text += Operand(depth, qualifier, of_t);
          if (i > 1) list.text += ",";
        }
        break;
    }
    return list;
  }

  Both Order(const std::string& qualifier, bool of_t) {
    Both order;
    order += Gap();
    order += Word("order by");
    order += " ";
    for (std::size_t i = choices_.Of(2) + 1; i > 0; --i) {
      if (choices_.Once(3)) order += qualifier + ".";
      order += Column(of_t);
      if (choices_.Once(3)) order += " " + Word("desc");
      if (i > 1) order += " , ";
    }
    return order;
  }

  Both Select(Use use, std::size_t depth) {
    const bool of_t = choices_.Once(2);
    std::string source = of_t ? "t" : "u";
    std::string qualifier = source;
    switch (choices_.Of(5)) {
      case 1:
        source += choices_.Once(2) ? " as A" : " A";
        qualifier = "A";
        break;
      case 2:
        source = "main." + source;
        break;
      case 3:
        source = qualifier = choices_.Once(2) ? "\"" + source + "\"" : "[" + source + "]";
        break;
      default:
        break;
    }
    const bool distinct = use == Use::kOutermost && choices_.Once(6);
    const bool joined = use == Use::kOutermost && choices_.Once(8);
    if (joined) source += choices_.Once(2) ? " , v" : " join v on v.k=" + qualifier + ".n";
    const List list = ListOf(use, depth, qualifier, of_t);
    // Rows that are no table's have no key by which a limit could choose among them.
    const bool keyed = !distinct && !joined && !list.folds;
    const bool top = keyed && (use == Use::kScalar || choices_.Once(3));
    const bool order = keyed && choices_.Once(2);
    const std::string count = use == Use::kScalar ? "1" : std::to_string(choices_.Of(6));

    Both select;
    select += Word("select");
    select += Gap();
    if (distinct) select += Word("distinct") + " ";
    if (top) {
      select.component += Word("top");
      select.component += Gap();
      select.component += count + " ";
    }
    select += list.text;
    select += Gap();
    select += Word("from") + " " + source;
    select += Where(depth, qualifier, of_t);
    if (order) select += Order(qualifier, of_t);
    if (keyed && (top || use == Use::kOutermost || use == Use::kFeeding)) {
      select.engine += (order ? ", " : " order by ") + qualifier + ".rowid";
    }
    if (top) select.engine += " limit " + count;
    if (use == Use::kOutermost && !keyed) ordered_ = false;
    return select;
  }

  Both Compound() {
    ordered_ = false;
    Both compound = Part();
    for (std::size_t i = choices_.Of(2) + 1; i > 0; --i) {
      compound += Gap();
      compound += Word(choices_.Once(2) ? "union all" : "union");
      compound += Gap();
      compound += Part();
    }
    if (choices_.Once(2)) compound += " " + Word("order by") + " 1";
    return compound;
  }

  /// A part of a compound select. A limit chooses among its rows by their order in the table.
  Both Part() {
    Both part;
    const bool of_t = choices_.Once(2);
    const bool top = choices_.Once(3);
    const std::string count = std::to_string(choices_.Of(4));
    const std::string table = of_t ? "t" : "u";
    if (top) part.engine += "select * from (";
    part += Word("select");
    part += " ";
    if (top) part.component += Word("top") + " " + count + " ";
    part += Column(of_t);
    part += " " + Word("from") + " " + table;
    part += Where(2, table, of_t);
    if (top) part.engine += " limit " + count + ")";
    return part;
  }

  Both Insert() {
    Both insert;
    insert += Word("insert into") + " u (n,s) ";
    if (choices_.Once(2)) {
      insert += Select(Use::kFeeding, 1);
    } else {
      insert += Word("values") + " (";
      insert += Literal();
      insert += ",";
      insert += Literal();
      insert += ")";
    }
    return insert;
  }

  Both Update() {
    Both update;
    update += Word("update") + " t ";
    update += Word("set") + " n=";
    update += Literal();
    update += ",s=";
    update += Operand(2, "t", true);
    update += Where(1, "t", true);
    return update;
  }

  Both Delete() {
    Both statement;
    statement += Word("delete") + " ";
    statement += Word("from") + " u";
    statement += Where(1, "u", false);
    return statement;
  }

  Choices& choices_;
  bool ordered_ = true;
};

}  // namespace

const std::vector<std::string>& StatementsOfTables() {
  static const std::vector<std::string> statements = {
      "create table t (ID integer primary key autoincrement, n integer, s text, r real)",
      "create table u (ID integer primary key autoincrement, n integer, s text)",
      "create table v (k integer, w text)",
      "create index t_by_n on t (n desc, s)",
      "create index u_by_s on u (s desc)",
      "insert into t (n,s,r) values (3,'c',1.5)",
      "insert into t (n,s,r) values (1,'a',2)",
      "insert into t (n,s,r) values (2,'b',null)",
      "insert into t (n,s,r) values (1,'a''b',-0.25)",
      "insert into t (n,s,r) values (null,null,1e20)",
      "insert into t (n,s,r) values (3,'张',3)",
      "insert into u (n,s) values (2,'z')",
      "insert into u (n,s) values (1,'a')",
      "insert into u (n,s) values (3,'B')",
      "insert into u (n,s) values (1,'a')",
      "insert into u (n,s) values (null,'')",
      "insert into v (k,w) values (1,'one')",
      "insert into v (k,w) values (3,'three')",
      "insert into v (k,w) values (1,'again')",
  };
  return statements;
}

MadeStatement MakeStatement(Choices& choices) { return Maker(choices).Make(); }

}  // namespace talm_flow::fuzz
