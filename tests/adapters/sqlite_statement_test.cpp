#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "adapters/sqlite_database.h"
#include "support/rows.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::adapters {
namespace {

using test::RowsOf;
using testing::ElementsAre;
using testing::HasSubstr;

class SqliteStatementTest : public testing::Test {
 protected:
  SqliteStatementTest() : database_("", OpenMode::kCreate, SqliteDatabase::Synchronous::kFull) {
    Run("create table t (ID integer primary key autoincrement, a integer, b text, c real, d)");
  }

  void Run(const std::string& statement) { (void)database_.Execute(statement); }

  [[nodiscard]] DatabaseError ErrorOf(const std::string& statement) {
    try {
      (void)database_.Execute(statement);
    } catch (const DatabaseError& error) {
      return error;
    }
    return DatabaseError("none was raised");
  }

  SqliteDatabase database_;
};

std::string Quoted(const std::string& text) { return "'" + ReplaceAll(text, "'", "''") + "'"; }

// ---- Preparing ------------------------------------------------------------------------------------------------------

TEST_F(SqliteStatementTest, AShapeThatWasSeenIsNotPreparedAgain) {
  Run("insert into t (a,b) values (0,'')");
  (void)RowsOf(database_, "Select Top 1 b From t Where a=0 And b='x'");
  const std::size_t prepared = database_.prepare_count();
  for (int i = 1; i <= 1000; ++i) {
    const std::string number = std::to_string(i);
    Run("insert into t (a,b) values (" + number + ",'it''s " + number + "')");
    EXPECT_THAT(RowsOf(database_, "Select Top 1 b From t Where a=" + number + " And b='it''s " + number + "'"),
                ElementsAre("it's " + number));
  }
  EXPECT_EQ(database_.prepare_count(), prepared);
}

TEST_F(SqliteStatementTest, ATextWithInlineLiteralsIsPreparedOncePerText) {
  Run("insert into t (a) values (7)");
  EXPECT_THAT(RowsOf(database_, "select a, 'one' as n from t"), ElementsAre("7|one"));
  EXPECT_THAT(RowsOf(database_, "select a, 'two' as n from t"), ElementsAre("7|two"));
  const std::size_t prepared = database_.prepare_count();
  EXPECT_THAT(RowsOf(database_, "select a, 'one' as n from t"), ElementsAre("7|one"));
  EXPECT_THAT(RowsOf(database_, "select a, 'two' as n from t"), ElementsAre("7|two"));
  EXPECT_EQ(database_.prepare_count(), prepared);
}

TEST_F(SqliteStatementTest, OneShapeOpenTwiceIsPreparedTwice) {
  Run("insert into t (a) values (1)");
  const std::size_t prepared = database_.prepare_count();
  const auto first = database_.Open("select a from t where a=1");
  const auto second = database_.Open("select a from t where a=1");
  EXPECT_EQ(database_.prepare_count(), prepared + 2);
  first->Close();
  second->Close();
  const auto third = database_.Open("select a from t where a=1");
  const auto fourth = database_.Open("select a from t where a=1");
  EXPECT_EQ(database_.prepare_count(), prepared + 2);
}

TEST_F(SqliteStatementTest, TheShapeUsedLongestAgoIsForgottenFirst) {
  const auto query = [this](std::size_t i) {
    (void)RowsOf(database_, "select a as c" + std::to_string(i) + " from t");
  };
  for (std::size_t i = 0; i < SqliteDatabase::kShapes; ++i) query(i);
  query(0);
  query(SqliteDatabase::kShapes);  // takes the place of number 1
  const std::size_t prepared = database_.prepare_count();
  query(0);
  query(2);
  EXPECT_EQ(database_.prepare_count(), prepared);
  query(1);
  EXPECT_EQ(database_.prepare_count(), prepared + 1);
}

TEST_F(SqliteStatementTest, AChangedTableIsReadAsItIsNow) {
  Run("insert into t (a) values (1)");
  EXPECT_EQ(database_.Open("select * from t")->ColumnCount(), 5U);
  Run("alter table t add column e default 'new'");
  const auto rows = database_.Open("select * from t");
  ASSERT_EQ(rows->ColumnCount(), 6U);
  EXPECT_EQ(rows->Field("e"), Value("new"));
  rows->Close();
  Run("drop table t");
  Run("create view t as select 5 as z");
  EXPECT_THAT(RowsOf(database_, "select * from t"), ElementsAre("5"));
}

// ---- Literals -------------------------------------------------------------------------------------------------------

TEST_F(SqliteStatementTest, HostileTextsAreStoredAndReadBackAsTheyAre) {
  std::string all_bytes;
  for (int i = 1; i < 256; ++i) all_bytes += static_cast<char>(i);
  const std::vector<std::string> texts = {"",
                                          "'",
                                          "''",
                                          "'''",
                                          "\\'",
                                          "O'Brien",
                                          "'); drop table t; --",
                                          "a;b",
                                          "/* -- */",
                                          "? ?1 :a @b $c",
                                          "@@IDENTITY",
                                          "Select Top 1",
                                          "\"[`",
                                          "line\r\nbreak\ttab",
                                          std::string("\0", 1),
                                          std::string("a\0b'\0", 5),
                                          "系统，变量不是数字",
                                          "\xF0\x9F\x98\x80 \xF0\xA0\x80\x80",
                                          all_bytes,
                                          std::string(100000, 'x'),
                                          std::string(100000, '\''),
                                          "12",
                                          "1e5",
                                          "NULL"};
  for (const std::string& text : texts) {
    Run("delete from t");
    Run("insert into t (b) values (" + Quoted(text) + ")");
    const auto rows = database_.Open("select b from t where b=" + Quoted(text));
    ASSERT_FALSE(rows->AtEnd()) << text.substr(0, 50);
    EXPECT_TRUE(rows->Field("b") == Value(text)) << text.substr(0, 50);
    rows->Close();
    const auto inlined = database_.Open("select " + Quoted(text) + " as b");
    EXPECT_TRUE(inlined->Field("b") == Value(text)) << text.substr(0, 50);
  }
}

TEST_F(SqliteStatementTest, LiteralsKeepTheTypeThatTheyHaveInATextOfTheirOwn) {
  const std::vector<std::string> literals = {"5",
                                             "-5",
                                             "0",
                                             "007",
                                             "2147483648",
                                             "9223372036854775807",
                                             "-9223372036854775807",
                                             "-9223372036854775808",
                                             "9223372036854775808",
                                             "123456789012345678901234567890",
                                             "1.5",
                                             ".5",
                                             "5.",
                                             "5.0",
                                             "1e3",
                                             "-2.5E-3",
                                             "1e400",
                                             "'5'",
                                             "'5.0'",
                                             "' 5'",
                                             "'x'",
                                             "x'4142'",
                                             "0x1F",
                                             "null"};
  for (const std::string& literal : literals) {
    Run("delete from t");
    Run("insert into t (a,b,c,d) values (" + literal + "," + literal + "," + literal + "," + literal + ")");
    // A literal in a select list stays in the text, and affinity is applied to what it gives.
    Run("insert into t (a,b,c,d) select " + literal + "," + literal + "," + literal + "," + literal);
    for (const char* const column : {"a", "b", "c", "d"}) {
      const std::string name(column);
      const auto rows = RowsOf(database_, "select typeof(" + name + "), quote(" + name + ") from t");
      ASSERT_EQ(rows.size(), 2U);
      EXPECT_EQ(rows[0], rows[1]) << literal << " in " << name;
    }
  }
}

TEST_F(SqliteStatementTest, LiteralsCompareAsTheyDoInATextOfTheirOwn) {
  Run("insert into t (a,b,c,d) values (5,'5',5,5)");
  EXPECT_EQ(RowsOf(database_, "select ID from t where a='5'").size(), 1U);
  EXPECT_EQ(RowsOf(database_, "select ID from t where b=5").size(), 1U);
  EXPECT_EQ(RowsOf(database_, "select ID from t where c='5.0'").size(), 1U);
  EXPECT_EQ(RowsOf(database_, "select ID from t where d='5'").size(), 0U);
  EXPECT_EQ(RowsOf(database_, "select ID from t where a=5.5").size(), 0U);
  EXPECT_EQ(RowsOf(database_, "select ID from t where a between -6 and 5").size(), 1U);
  EXPECT_EQ(RowsOf(database_, "select ID from t where b like '5%'").size(), 1U);
}

TEST_F(SqliteStatementTest, PositionsInOrderByStayPositions) {
  Run("insert into t (a,b) values (2,'x')");
  Run("insert into t (a,b) values (1,'y')");
  EXPECT_THAT(RowsOf(database_, "select b,a from t order by 2"), ElementsAre("y|1", "x|2"));
  EXPECT_THAT(RowsOf(database_, "select b,count(*) from t group by 1"), ElementsAre("x|1", "y|1"));
}

TEST_F(SqliteStatementTest, AnExpressionKeepsItsNameAsAColumn) {
  EXPECT_EQ(database_.Open("select 5")->ColumnName(0), "5");
  EXPECT_EQ(database_.Open("select 'x'")->ColumnName(0), "'x'");
}

TEST_F(SqliteStatementTest, ALiteralWhereTheEngineTakesNoParameterStaysInTheText) {
  Run("insert into t (a) values (3)");
  EXPECT_THAT(RowsOf(database_, "select a from 't' where a=3"), ElementsAre("3"));
  EXPECT_THAT(RowsOf(database_, "select a from 't' where a=3"), ElementsAre("3"));
}

TEST_F(SqliteStatementTest, NumbersBehindTopLimitTheRows) {
  for (int i = 0; i < 5; ++i) Run("insert into t (a) values (" + std::to_string(i) + ")");
  EXPECT_EQ(RowsOf(database_, "Select Top 2 a from t").size(), 2U);
  EXPECT_EQ(RowsOf(database_, "Select Top 3 a from t").size(), 3U);
  EXPECT_EQ(RowsOf(database_, "Select Top 0 a from t").size(), 0U);
  EXPECT_EQ(RowsOf(database_, "Select top /* some */ 4 a from t").size(), 4U);
}

// ---- Refusals and errors --------------------------------------------------------------------------------------------

TEST_F(SqliteStatementTest, NothingOfARefusedTextIsRun) {
  Run("insert into t (a) values (1)");
  const std::string nul("\0", 1);
  const std::vector<std::string> refused = {"delete from t; delete from t",
                                            "delete from t;;",
                                            "delete from t where a=?",
                                            "delete from t where a=?1 or 1",
                                            "delete from t where a=:a or 1",
                                            "delete from t where a=@a or 1",
                                            "delete from t where a=$a or 1",
                                            "delete from t where b='x",
                                            "delete from t /* x' */ where 'y",
                                            "delete from t" + nul + " where a=2",
                                            "delete from t /*" + nul + "*/ where a=2",
                                            "delete from t as \"x" + nul + "\" where a=2",
                                            "delete from t -- " + nul + "\n where a=2",
                                            "create table u (x); drop table t",
                                            "",
                                            " ",
                                            ";",
                                            "-- nothing"};
  for (const std::string& text : refused) {
    try {
      (void)database_.Execute(text);
      ADD_FAILURE() << "accepted: " << text;
    } catch (const DatabaseError& error) {
      EXPECT_EQ(error.Statement(), text);
      EXPECT_STRNE(error.what(), "");
    }
    EXPECT_EQ(RowsOf(database_, "select a from t").size(), 1U) << text;
  }
}

TEST_F(SqliteStatementTest, ASecondStatementMayBeBlanksAndComments) {
  EXPECT_NO_THROW(Run("insert into t (a) values (1) ; -- done"));
  EXPECT_THAT(RowsOf(database_, "select a from t; /* all */ "), ElementsAre("1"));
}

TEST_F(SqliteStatementTest, ErrorsCarryTheEnginesMessageTheTextAndTheCode) {
  const DatabaseError missing = ErrorOf("select a from nowhere where b=1");
  EXPECT_STREQ(missing.what(), "no such table: nowhere");
  EXPECT_EQ(missing.Statement(), "select a from nowhere where b=1");
  EXPECT_EQ(missing.State(), "1");
  EXPECT_STREQ(missing.Kind(), "DatabaseError");

  EXPECT_STREQ(ErrorOf("Select Top 1 z from t where a=1").what(), "no such column: z");
  EXPECT_STREQ(ErrorOf("update t set a=1 where").what(), "incomplete input");
  EXPECT_STREQ(ErrorOf("delete from t where a=").what(), "incomplete input");
  EXPECT_STREQ(ErrorOf("delete from t where a=5 6").what(), "near \"6\": syntax error");
  EXPECT_STREQ(ErrorOf("delete from t where a='x' 'y'").what(), "near \"'y'\": syntax error");
  EXPECT_STREQ(ErrorOf("delete from t where b='x").what(), "unrecognized token: \"'x\"");
  EXPECT_STREQ(ErrorOf("delete from t where b=12ab").what(), "unrecognized token: \"12ab\"");
  EXPECT_STREQ(ErrorOf("delete from t where b=\"x\"").what(), "no such column: x");
}

TEST_F(SqliteStatementTest, ErrorsOfARunningStatementLeaveNothingHalfDone) {
  Run("create table u (a integer unique)");
  Run("insert into u values (2)");
  const DatabaseError error = ErrorOf("insert into u (a) values (1),(2)");
  EXPECT_STREQ(error.what(), "UNIQUE constraint failed: u.a");
  EXPECT_EQ(error.Statement(), "insert into u (a) values (1),(2)");
  EXPECT_EQ(error.State(), "2067");
  EXPECT_THAT(RowsOf(database_, "select a from u"), ElementsAre("2"));
  EXPECT_NO_THROW(Run("insert into u (a) values (3),(4)"));
}

TEST_F(SqliteStatementTest, AFailedTextCanBeRunOnceItsTableIsThere) {
  EXPECT_STREQ(ErrorOf("insert into u (a) values (1)").what(), "no such table: u");
  Run("create table u (a)");
  EXPECT_NO_THROW(Run("insert into u (a) values (1)"));
  const std::size_t prepared = database_.prepare_count();
  EXPECT_NO_THROW(Run("insert into u (a) values (2)"));
  EXPECT_EQ(database_.prepare_count(), prepared);
}

TEST_F(SqliteStatementTest, OpeningWhatIsNoQueryRunsNothing) {
  for (const char* const text : {"insert into t (a) values (1)", "delete from t", "create table u (a)"}) {
    try {
      (void)database_.Open(text);
      ADD_FAILURE() << "opened: " << text;
    } catch (const DatabaseError& error) {
      EXPECT_EQ(error.Statement(), text);
    }
  }
  EXPECT_TRUE(RowsOf(database_, "select a from t").empty());
  EXPECT_STREQ(ErrorOf("select a from u").what(), "no such table: u");
}

TEST_F(SqliteStatementTest, ExecuteGivesRowsForAQueryAndNothingElse) {
  EXPECT_EQ(database_.Execute("insert into t (a) values (1)"), nullptr);
  EXPECT_EQ(database_.Execute("create table u (a)"), nullptr);
  const auto none = database_.Execute("select a from u");
  ASSERT_NE(none, nullptr);
  EXPECT_TRUE(none->AtEnd());
  const auto pragma = database_.Execute("pragma synchronous");
  ASSERT_NE(pragma, nullptr);
  EXPECT_EQ(pragma->FieldAt(0), Value(2));
}

TEST_F(SqliteStatementTest, DoubleQuotesAreForNames) {
  Run("create table \"odd 'name\" (\"a b\" integer, [c d] integer, `e f` integer)");
  Run("insert into [odd 'name] (\"a b\",[c d],`e f`) values (1,2,3)");
  EXPECT_THAT(RowsOf(database_, "select \"a b\",[c d],`e f` from \"odd 'name\" where \"a b\"=1"), ElementsAre("1|2|3"));
}

// ---- Key order ------------------------------------------------------------------------------------------------------

TEST_F(SqliteStatementTest, UnorderedRowsComeInKeyOrderWhateverIndexFindsThem) {
  Run("create index by_a on t (a)");
  for (const char* const a : {"3", "1", "2", "1"}) Run("insert into t (a) values (" + std::string(a) + ")");
  EXPECT_THAT(RowsOf(database_, "select ID,a from t where a>0"), ElementsAre("1|3", "2|1", "3|2", "4|1"));
  EXPECT_THAT(RowsOf(database_, "Select Top 1 ID from t where a in (1,2)"), ElementsAre("2"));
  EXPECT_THAT(RowsOf(database_, "select ID from t where a in (select Top 2 a from t where a>0)"),
              ElementsAre("1", "2", "4"));
}

TEST_F(SqliteStatementTest, TiedRowsComeInKeyOrder) {
  Run("create index by_a on t (a, b desc)");
  for (const char* const b : {"x", "z", "y"}) Run("insert into t (a,b) values (1,'" + std::string(b) + "')");
  EXPECT_THAT(RowsOf(database_, "select b from t order by a"), ElementsAre("x", "z", "y"));
  EXPECT_THAT(RowsOf(database_, "select b from t where a=1 order by a desc"), ElementsAre("x", "z", "y"));
  EXPECT_THAT(RowsOf(database_, "Select Top 1 ID from t order by ID desc"), ElementsAre("3"));
}

TEST_F(SqliteStatementTest, EveryKindOfTableHasItsKey) {
  Run("create table plain (a)");
  Run("create table hidden (rowid text, a)");
  Run("create table all_hidden (rowid text, _rowid_ text, oid text, a, primary key (a))");
  Run("create table two (x, y, a, primary key (y, x)) without rowid");
  Run("create view v as select a from plain");
  for (const char* const table : {"plain", "hidden", "all_hidden"}) {
    Run("insert into " + std::string(table) + " (a) values (2)");
    Run("insert into " + std::string(table) + " (a) values (1)");
  }
  Run("insert into two (x,y,a) values (1,2,'second')");
  Run("insert into two (x,y,a) values (2,1,'first')");
  EXPECT_THAT(RowsOf(database_, "select a from plain"), ElementsAre("2", "1"));
  EXPECT_THAT(RowsOf(database_, "select a from hidden"), ElementsAre("2", "1"));
  EXPECT_THAT(RowsOf(database_, "select a from all_hidden"), ElementsAre("1", "2"));
  EXPECT_THAT(RowsOf(database_, "select a from two"), ElementsAre("first", "second"));
  EXPECT_EQ(RowsOf(database_, "Select Top 1 a from v").size(), 1U);
  EXPECT_EQ(RowsOf(database_, "Select Top 1 name from pragma_table_info('plain')").size(), 1U);
  EXPECT_FALSE(RowsOf(database_, "select name from sqlite_schema").empty());
}

}  // namespace
}  // namespace talm_flow::adapters
