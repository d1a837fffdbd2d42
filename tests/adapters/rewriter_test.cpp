#include "adapters/rewriter.h"

#include <gtest/gtest.h>

#include <string>

#include "talm_flow/text.h"

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
             "select * from (select a from V limit 2) union all select * from (select a from V limit 3) order by a"},
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
  for (const std::size_t mark : rewritten.marks) EXPECT_EQ(rewritten.text.at(mark), '?');
  EXPECT_LT(rewritten.marks[0], rewritten.marks[1]);
  EXPECT_LT(rewritten.marks[1], rewritten.marks[2]);
}

TEST(RewriterTest, MarksAreNumberedWhereTheEngineWantsIt) {
  KnownKeys keys;
  const Rewritten rewritten =
      Rewrite("Select Top 1 a from V where b=? and c=?", {.identity = "lastval()", .numbered_marks = true}, keys);
  EXPECT_EQ(rewritten.text, "Select a from V where b=$1 and c=$2 limit 1");
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

TEST(RewriterTest, UnbalancedParenthesesAreLeftToTheEngine) {
  EXPECT_EQ(RewriteShape("select a from V)) where (").text, "select a from V)) where (");
  EXPECT_EQ(RewriteShape("select Top 1 a from V where ((b").text, "select a from V where ((b limit 1");
}

}  // namespace
}  // namespace talm_flow::adapters
