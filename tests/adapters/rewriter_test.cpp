#include "adapters/rewriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/reserved_words.h"
#include "talm_flow/error.h"

namespace talm_flow::adapters {
namespace {

/// "V" is a view, "two" has a key of two columns, every other table has the key "ID" with a row number.
class KnownKeys : public TableKeys {
 public:
  TableKey Find(const TableName& table) override {
    if (table.name == "V") return {};
    if (table.name == "two") return {.order = {"\"x\"", "\"y\""}, .names = {}};
    return {.order = {"rowid"}, .names = {"rowid", "ID"}};
  }
};

constexpr Dialect kDialect = {.identity = "last_key()"};

Rewritten RewriteShape(std::string_view shape) {
  KnownKeys keys;
  return Rewrite(shape, kDialect, keys);
}

struct Pair {
  const char* shape;
  const char* text;
};

class RewriteTest : public testing::TestWithParam<Pair> {};

TEST_P(RewriteTest, SpeaksTheEnginesDialect) { EXPECT_EQ(RewriteShape(GetParam().shape).text, GetParam().text); }

INSTANTIATE_TEST_SUITE_P(
    Limits, RewriteTest,
    testing::Values(
        Pair{"Select Top 1 a from V", "Select a from V limit 1"},
        Pair{"select top 10000 * from V where b=? order by c", "select * from V where b=? order by c limit 10000"},
        Pair{"Select Top 1 a from V -- the end", "Select a from V limit 1 -- the end"},
        Pair{"Select Distinct Top 5 a from t", "Select Distinct a from t limit 5"},
        Pair{"Select All Top 5 a from V", "Select All a from V limit 5"},
        Pair{"Select Top a from V", "Select Top a from V"},
        Pair{"Select Top.a from V as Top", "Select Top.a from V as Top"},
        Pair{"select Top 1 ID from V where c in (select Top 100000 e From V where r=?)",
             "select ID from V where c in (select e From V where r=? limit 100000) limit 1"},
        Pair{"select Top 1 a from (select Top 2 a from (select Top 3 a from V))",
             "select a from (select a from (select a from V limit 3) limit 2) limit 1"},
        Pair{"delete from t where a in (select Top 3 a from V)", "delete from t where a in (select a from V limit 3)"},
        Pair{"select Top 2 a from V union all select Top 3 a from V order by a",
             "select * from (select a from V limit 2) as limited union all "
             "select * from (select a from V limit 3) as limited order by a"},
        Pair{"create view w as select Top 2 a from t", "create view w as select a from t limit 2"},
        Pair{"Select Top 1", "Select  limit 1"},
        Pair{"select (Select Top 1 ) from V", "select (Select  limit 1) from V"}));

INSTANTIATE_TEST_SUITE_P(Identity, RewriteTest,
                         testing::Values(Pair{"SELECT @@IDENTITY AS ExecuteID", "SELECT last_key() AS ExecuteID"},
                                         Pair{"update t set a=@@identity where b=?",
                                              "update t set a=last_key() where b=?"}));

INSTANTIATE_TEST_SUITE_P(
    KeyOrder, RewriteTest,
    testing::Values(Pair{"select a from t", "select a from t order by t.rowid"},
                    Pair{"select a from t where b=?", "select a from t where b=? order by t.rowid"},
                    Pair{"Select Top 3 a from t", "Select a from t order by t.rowid limit 3"},
                    Pair{"select a from t as u", "select a from t as u order by u.rowid"},
                    Pair{"select a from t u where u.b=?", "select a from t u where u.b=? order by u.rowid"},
                    Pair{"select a from main.t", "select a from main.t order by t.rowid"},
                    Pair{"select a from \"t 1\"", "select a from \"t 1\" order by \"t 1\".rowid"},
                    Pair{"select a from [t 1]", "select a from [t 1] order by [t 1].rowid"},
                    Pair{"select a from two", "select a from two order by two.\"x\", two.\"y\""},
                    Pair{"select a from t limit ?", "select a from t order by t.rowid limit ?"},
                    Pair{"select a from t indexed by i where b=?",
                         "select a from t indexed by i where b=? order by t.rowid"},
                    Pair{"select a from t not indexed", "select a from t not indexed order by t.rowid"},
                    Pair{"select a is distinct from b from t", "select a is distinct from b from t order by t.rowid"},
                    Pair{"insert into u (a) select a from t", "insert into u (a) select a from t order by t.rowid"},
                    Pair{"insert into u (a) select a from t where a on conflict do nothing",
                         "insert into u (a) select a from t where a order by t.rowid on conflict do nothing"},
                    Pair{"select a from t where b in (select Top 2 c from u)",
                         "select a from t where b in (select c from u order by u.rowid limit 2) order by t.rowid"},
                    Pair{"select a from t where b in (select c from u)",
                         "select a from t where b in (select c from u) order by t.rowid"},
                    Pair{"delete from t where b in (select Top 2 c from u order by c)",
                         "delete from t where b in (select c from u order by c, u.rowid limit 2)"}));

INSTANTIATE_TEST_SUITE_P(
    TieBreak, RewriteTest,
    testing::Values(Pair{"select a from t order by a", "select a from t order by a, t.rowid"},
                    Pair{"select a from t order by a desc", "select a from t order by a desc, t.rowid"},
                    Pair{"select a from t order by a, b limit ?", "select a from t order by a, b, t.rowid limit ?"},
                    Pair{"select a from t order by lower(a, b)", "select a from t order by lower(a, b), t.rowid"},
                    Pair{"select ID from t order by id", "select ID from t order by id"},
                    Pair{"select ID from t order by a, ID desc", "select ID from t order by a, ID desc"},
                    Pair{"select ID from t order by t.ID asc", "select ID from t order by t.ID asc"},
                    Pair{"select ID from t order by \"ID\"", "select ID from t order by \"ID\""},
                    Pair{"select a from t order by rowid", "select a from t order by rowid"},
                    Pair{"select a from t order by -ID", "select a from t order by -ID, t.rowid"},
                    Pair{"select a as ID from t order by ID", "select a as ID from t order by ID, t.rowid"},
                    Pair{"select a as ID from t order by t.ID", "select a as ID from t order by t.ID"},
                    Pair{"Select Top 1 ID from t Order By ID Desc", "Select ID from t Order By ID Desc limit 1"}));

INSTANTIATE_TEST_SUITE_P(
    NoKeyOrder, RewriteTest,
    testing::Values(Pair{"select count(*) from t", "select count(*) from t"},
                    Pair{"select 1+max(a) from t", "select 1+max(a) from t"},
                    Pair{"select distinct a from t", "select distinct a from t"},
                    Pair{"select distinct a from t order by a", "select distinct a from t order by a"},
                    Pair{"select a from t group by a", "select a from t group by a"},
                    Pair{"select a from t group by a having b order by a",
                         "select a from t group by a having b order by a"},
                    Pair{"select a from t union select a from u", "select a from t union select a from u"},
                    Pair{"select a from t, u", "select a from t, u"},
                    Pair{"select a from t join u on t.a=u.a", "select a from t join u on t.a=u.a"},
                    Pair{"select a from t left join u using (a)", "select a from t left join u using (a)"},
                    Pair{"select a from (select a from t)", "select a from (select a from t)"},
                    Pair{"select a from f(b)", "select a from f(b)"}, Pair{"select a from V", "select a from V"},
                    Pair{"select last()", "select last()"},
                    Pair{"with c as (select a from t) select a from c", "with c as (select a from t) select a from c"},
                    Pair{"update t set a=(select b from u)", "update t set a=(select b from u)"},
                    Pair{"explain select a from t", "explain select a from t"},
                    Pair{"create table w as select a from t", "create table w as select a from t"}));

struct Kept {
  const char* shape;
  bool literals_inline;
};

class LiteralPlaceTest : public testing::TestWithParam<Kept> {};

TEST_P(LiteralPlaceTest, DecidesWhetherLiteralsTravelAsParameters) {
  EXPECT_EQ(RewriteShape(GetParam().shape).literals_inline, GetParam().literals_inline);
}

INSTANTIATE_TEST_SUITE_P(
    Places, LiteralPlaceTest,
    testing::Values(Kept{"select a from t where b=?", false}, Kept{"select a from t where b in (?,f(?))", false},
                    Kept{"insert into t (a) values (?)", false}, Kept{"update t set a=a+? where b=?", false},
                    Kept{"delete from t where b=?", false}, Kept{"select a from t limit ? offset ?", false},
                    Kept{"select a from t where b in (select c from u where d=?)", false},
                    Kept{"select a from t join u on t.a=? where b", false}, Kept{"select ?", true},
                    Kept{"select a, ? as n from t", true}, Kept{"select f(a,?) from t", true},
                    Kept{"select a from t where b=(select ? from u)", true},
                    Kept{"select (select c from u where d=?) from t", true}, Kept{"select a from t order by ?", true},
                    Kept{"select a from t order by f(a,?)", true}, Kept{"select a from t group by ?", true},
                    Kept{"select count(*) from t group by a having count(*)>?", false},
                    Kept{"select a from t order by b limit ?", false}, Kept{"select a from t union select ?", true},
                    Kept{"insert into t select ?", true}, Kept{"insert into t (a) values (?) returning ?", true},
                    Kept{"pragma cache_size=?", true}, Kept{"create table t (a default ?)", true},
                    Kept{"values (?)", true}, Kept{"with c as (select a from t) select a from c where a=?", true}));

TEST(RewriterTest, MarksAreFoundAgainInTheRewrittenText) {
  const Rewritten rewritten =
      RewriteShape("Select Top 1 a from t where b=? and c in (select Top 2 d from u where e=? order by f) and g=?");
  ASSERT_EQ(rewritten.marks.size(), 3U);
  for (const Mark& mark : rewritten.marks) EXPECT_EQ(rewritten.text.substr(mark.begin, mark.size), "?");
  EXPECT_LT(rewritten.marks[0].begin, rewritten.marks[1].begin);
  EXPECT_LT(rewritten.marks[1].begin, rewritten.marks[2].begin);
}

// ---- Other dialects -------------------------------------------------------------------------------------------------

Rewritten RewriteFor(const Dialect& dialect, std::string_view shape) {
  KnownKeys keys;
  return Rewrite(shape, dialect, keys);
}

class PostgresqlRewriteTest : public testing::TestWithParam<Pair> {};

TEST_P(PostgresqlRewriteTest, SpeaksTheEnginesDialect) {
  EXPECT_EQ(RewriteFor(PostgresqlDialect(), GetParam().shape).text, GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, PostgresqlRewriteTest,
    testing::Values(
        Pair{"Select Top 1 a from V where b=? and c=?", "Select a from V where b=$1 and c=$2 limit 1"},
        Pair{"SELECT @@IDENTITY AS ExecuteID", "SELECT lastval() AS ExecuteID"},
        Pair{"select a from [t 1] where [B]=?", "select a from \"t 1\" where \"b\"=$1 order by \"t 1\".rowid"},
        Pair{"select a from `T`", "select a from \"t\" order by \"t\".rowid"},
        Pair{"select a from \"T\"", "select a from \"T\" order by \"T\".rowid"},
        Pair{"update t set Interval=? where Condition=?", "update t set Interval=$1 where Condition=$2"},
        Pair{"insert into t (a) values (-?)", "insert into t (a) values ($1)"},
        Pair{"update t set a=-?, b=b-?, c=(d)-? where e>-?", "update t set a=$1, b=b-$2, c=(d)-$3 where e>$4"},
        Pair{"delete from t where a between -? and -?", "delete from t where a between $1 and $2"}));

INSTANTIATE_TEST_SUITE_P(
    NullOrder, PostgresqlRewriteTest,
    testing::Values(
        Pair{"select a from t order by a", "select a from t order by a nulls first, t.rowid"},
        Pair{"select a from t order by a desc, b asc",
             "select a from t order by a desc nulls last, b asc nulls first, t.rowid"},
        Pair{"select Top 1 ID from t order by ID desc", "select ID from t order by ID desc limit 1"},
        Pair{"select Top 2 a as ID from t order by ID",
             "select a as ID from t order by ID nulls first, t.rowid limit 2"},
        Pair{"select a from t order by a nulls last", "select a from t order by a nulls last, t.rowid"},
        Pair{"select a from t, u order by lower(a) desc limit ?",
             "select a from t, u order by lower(a) desc nulls last limit $1"},
        Pair{"select a from V union select Top 2 b from V order by a",
             "select a from V union select * from (select b from V limit 2) as limited order by a nulls first"},
        Pair{"delete from t where a in (select Top 2 b from t order by b)",
             "delete from t where a in (select b from t order by b nulls first, t.rowid limit 2)"}));

TEST(DialectTest, ASignBecomesAPartOfTheParameterWhoseTypeDependsOnItsPlace) {
  const Rewritten rewritten = RewriteFor(PostgresqlDialect(), "update t set a=-? where b=? and c-?>d");
  ASSERT_EQ(rewritten.marks.size(), 3U);
  EXPECT_TRUE(rewritten.marks[0].negative);
  EXPECT_FALSE(rewritten.marks[0].in_condition);
  EXPECT_FALSE(rewritten.marks[1].negative);
  EXPECT_TRUE(rewritten.marks[1].in_condition);
  EXPECT_FALSE(rewritten.marks[2].negative);
}

TEST(DialectTest, LiteralsComparedWithEachOtherStayWhereTheirPlaceDecidesTheirType) {
  EXPECT_TRUE(RewriteFor(PostgresqlDialect(), "select a from t where ?=?").literals_inline);
  EXPECT_TRUE(RewriteFor(PostgresqlDialect(), "select a from t where a=? and ? >= ?").literals_inline);
  EXPECT_FALSE(RewriteFor(PostgresqlDialect(), "select a from t where a=? and b=?").literals_inline);
  EXPECT_FALSE(RewriteFor(SqliteDialect(), "select a from t where ?=?").literals_inline);
}

TEST(DialectTest, LiteralsGoBackIntoTheTextAsTheEngineReadsThem) {
  const auto inlined = [](const Dialect& dialect, std::string_view shape, std::vector<Literal> literals) {
    return WithLiterals(RewriteFor(dialect, shape), literals, dialect);
  };
  const Literal number{Literal::Kind::kWhole, "5"};
  const Literal quoted{Literal::Kind::kTextWithQuotes, "it''s"};
  const Literal with_nul{Literal::Kind::kText, std::string_view("a\0b", 3)};
  EXPECT_EQ(inlined(PostgresqlDialect(), "select -?, ?", {number, quoted}), "select -5, 'it''s'");
  EXPECT_EQ(inlined(TsqlDialect(), "select ?, ?", {number, quoted}), "select 5, N'it''s'");
  EXPECT_EQ(inlined(SqliteDialect(), "select ?", {with_nul}), "select cast(x'610062' as text)");
  EXPECT_EQ(inlined(MariadbDialect(), "select ?", {with_nul}), "select cast(x'610062' as char)");
  EXPECT_EQ(inlined(TsqlDialect(), "select ?", {with_nul}), "select (N'a'+nchar(0)+N'b')");
  EXPECT_THROW((void)inlined(PostgresqlDialect(), "select ?", {with_nul}), DatabaseError);
}

class MariadbRewriteTest : public testing::TestWithParam<Pair> {};

TEST_P(MariadbRewriteTest, SpeaksTheEnginesDialect) {
  EXPECT_EQ(RewriteFor(MariadbDialect(), GetParam().shape).text, GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, MariadbRewriteTest,
    testing::Values(
        Pair{"SELECT @@IDENTITY AS ExecuteID", "SELECT last_insert_id() AS ExecuteID"},
        Pair{"Select Top 1 Interval,Times From t Where INTERVAL=? Order By a Desc",
             "Select `Interval`,Times From t Where `INTERVAL`=? Order By a Desc, t.rowid limit 1"},
        Pair{"select a from [t 1] where \"b c\"=?", "select a from `t 1` where `b c`=? order by `t 1`.rowid"},
        Pair{"update t set a=a+interval ? day", "update t set a=a+interval ? day"},
        Pair{"delete from t where a in (select Top 100000 b From t where c=?)",
             "delete from t where a in (select * from (select b From t where c=? order by t.rowid limit 100000) "
             "as limited)"},
        Pair{"update t set a=-?", "update t set a=-?"}));

// Views and compound selects have no key order: what is compared is the quoting.
INSTANTIATE_TEST_SUITE_P(
    ReservedNames, MariadbRewriteTest,
    testing::Values(
        Pair{"insert into t (Key,[Range],Null,rows) values (?,null,default,?)",
             "insert into t (`Key`,`Range`,`Null`,`rows`) values (?,null,default,?)"},
        Pair{"update t set Key=?, Current_Date=current_date, b=f(x,Rows=?) where Condition is null",
             "update t set `Key`=?, `Current_Date`=current_date, b=f(x,`Rows`=?) where `Condition` is null"},
        Pair{"Select Top 1 Key From V where Lines in (select Top 2 Usage From V)",
             "Select `Key` From V where `Lines` in (select * from (select `Usage` From V limit 2) as limited) limit 1"},
        Pair{"select V.Order, Key as Char from V where not Long=? and a=-Float or sql between Real and Exit",
             "select V.`Order`, `Key` as `Char` from V where not `Long`=? and a=-`Float` or `sql` between `Real` and "
             "`Exit`"},
        Pair{"select distinct Key from V group by Key, Desc order by Rows desc, Desc desc limit ?",
             "select distinct `Key` from V group by `Key`, `Desc` order by `Rows` desc, `Desc` desc limit ?"},
        Pair{"delete from t where (Call>? or Div<=Mod) and lower(Show)=?",
             "delete from t where (`Call`>? or `Div`<=`Mod`) and lower(`Show`)=?"},
        Pair{"select case when Key=? then Lock else Loop end from V",
             "select case when `Key`=? then `Lock` else `Loop` end from V"},
        Pair{"create view w as select Interval from V", "create view w as select `Interval` from V"},
        Pair{"with c as (select Key from V) select Key from c",
             "with c as (select `Key` from V) select `Key` from c"}));

class MariadbKeywordTest : public testing::TestWithParam<const char*> {};

TEST_P(MariadbKeywordTest, StaysAsItIs) { EXPECT_EQ(RewriteFor(MariadbDialect(), GetParam()).text, GetParam()); }

INSTANTIATE_TEST_SUITE_P(
    Shapes, MariadbKeywordTest,
    testing::Values(
        "select a from V where b is not null and c not in (?) or not exists (select a from V)",
        "select all a from V where b > all (select a from V) and c = any (select a from V)",
        "select distinct -a, count(distinct a), count(*) from V left join u using (a) where b=null",
        "select cast(a as char), cast(b as decimal(5,2)), left(a,2), if(b,c,d), mod(a,b), a mod b, a div b from V",
        "select case a when b then null else true end, current_date, utc_date() from V",
        "select a, row_number() over (partition by a order by b rows between 1 preceding and current row) from V",
        "insert into t values (default,null,?) on duplicate key update a=values(a)",
        "update t set a=default, b=null, c=current_timestamp, d=a+interval ? day where e between f and ?",
        "select a from V union all select b from V order by a asc, b desc",
        "select trim(both from a), trim(leading b from a) from V where a like b and binary c=d",
        "select a from V where a=(select max(b) from V) for update", "delete from t where a regexp b xor c rlike d",
        "create table w (Order int, primary key (a), unique key k (b), check (c))", "alter table t add index i (a)",
        "grant select, insert, update on t to u", "show keys from t"));

INSTANTIATE_TEST_SUITE_P(
    ReservedNames, PostgresqlRewriteTest,
    testing::Values(
        Pair{"insert into t (User,Desc,End,Current_User) values (?,null,default,current_user)",
             "insert into t (\"user\",\"desc\",\"end\",\"current_user\") values ($1,null,default,current_user)"},
        Pair{"update t set User=?, Session_User=session_user where Analyze=?",
             "update t set \"user\"=$1, \"session_user\"=session_user where \"analyze\"=$2"},
        Pair{"Select Top 1 User From V where Do=? and V.Column>Freeze",
             "Select \"user\" From V where \"do\"=$1 and V.\"column\">\"freeze\" limit 1"},
        Pair{"select User from V order by User desc, Verbose",
             "select \"user\" from V order by \"user\" desc nulls last, \"verbose\" nulls first"},
        Pair{"select a from V where b is distinct from c and d is not null and e similar to f collate \"C\"",
             "select a from V where b is distinct from c and d is not null and e similar to f collate \"C\""},
        Pair{"select count(*) filter (where a), cast(null as text), current_date from V full join u on true",
             "select count(*) filter (where a), cast(null as text), current_date from V full join u on true"},
        Pair{"insert into t (a) values (?) on conflict do nothing",
             "insert into t (a) values ($1) on conflict do nothing"}));

TEST(ReservedWordsTest, AreFoundInAnyCase) {
  EXPECT_TRUE(IsReserved(kMariadbReserved, "Interval"));
  EXPECT_TRUE(IsReserved(kPostgresqlReserved, "USER"));
  EXPECT_FALSE(IsReserved(kPostgresqlReserved, "Interval"));
  EXPECT_FALSE(IsReserved(kMariadbReserved, "Times"));
  EXPECT_TRUE(std::is_sorted(kMariadbReserved.begin(), kMariadbReserved.end()));
  EXPECT_TRUE(std::is_sorted(kPostgresqlReserved.begin(), kPostgresqlReserved.end()));
}

TEST(DialectTest, TextsOfTheirOwnDialectGoThroughUntouched) {
  for (const std::string_view shape :
       {"Select Top 1 [a] from t where b=? order by c", "SELECT @@IDENTITY AS ExecuteID",
        "delete from t where a in (select Top 3 b from u)", "update t set a=-?, Interval=?"}) {
    EXPECT_EQ(RewriteFor(TsqlDialect(), shape).text, shape);
  }
  EXPECT_EQ(RewriteFor(TsqlDialect(), "Select top 1 * From TableFile").table.name, "TableFile");
  EXPECT_EQ(RewriteFor(TsqlDialect(), "select a from t where b=?").marks.size(), 1U);
}

TEST(DialectTest, NamesAreQuotedInTheEnginesWay) {
  EXPECT_EQ(QuotedName(SqliteDialect(), "a \"b\""), "\"a \"\"b\"\"\"");
  EXPECT_EQ(QuotedName(PostgresqlDialect(), "DataAppÄ"), "\"dataappÄ\"");
  EXPECT_EQ(QuotedName(MariadbDialect(), "a`b"), "`a``b`");
  EXPECT_EQ(QuotedName(TsqlDialect(), "a]b"), "[a]]b]");
}

TEST(DialectTest, DialectsAreKnownByName) {
  for (const char* const name : {"sqlite", "postgresql", "mariadb", "tsql"}) EXPECT_EQ(DialectNamed(name).name, name);
  EXPECT_THROW((void)DialectNamed("sql"), ArgumentError);
}

TEST(RewriterTest, TheTableOfAPlainQueryIsKnown) {
  EXPECT_EQ(RewriteShape("Select top 1 * From TableFile").table.name, "TableFile");
  EXPECT_EQ(RewriteShape("select a from main.[my table] where b=?").table.name, "my table");
  EXPECT_EQ(RewriteShape("select a from main.[my table] where b=?").table.schema, "main");
  EXPECT_EQ(RewriteShape("select a from t, u").table.name, "");
  EXPECT_EQ(RewriteShape("select a from t union select a from u").table.name, "");
  EXPECT_EQ(RewriteShape("delete from t").table.name, "");
}

TEST(RewriterTest, TenThousandNestedSelectsAreRewrittenWithoutRecursion) {
  constexpr int kDepth = 10000;
  std::string shape = "a";
  std::string text = "a";
  for (int i = 0; i < kDepth; ++i) {
    shape = "(select Top 1 b from V where c=" + shape + ")";
    text = "(select b from V where c=" + text + " limit 1)";
  }
  EXPECT_EQ(RewriteShape("delete from t where d=" + shape).text, "delete from t where d=" + text);
}

TEST(RewriterTest, ASelectBeginsWhereTheOneBeforeItHasNoEnd) {
  EXPECT_EQ(RewriteShape("select a from t select Top 3 b from u").text,
            "select a from t order by t.rowid select b from u order by u.rowid limit 3");
  EXPECT_EQ(RewriteShape("select a from t select").text, "select a from t order by t.rowid select");
}

TEST(RewriterTest, UnbalancedParenthesesAreLeftToTheEngine) {
  EXPECT_EQ(RewriteShape("select a from V)) where (").text, "select a from V)) where (");
  EXPECT_EQ(RewriteShape("select Top 1 a from V where ((b").text, "select a from V where ((b limit 1");
}

}  // namespace
}  // namespace talm_flow::adapters
