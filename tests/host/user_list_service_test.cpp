/// Person expressions turned into names.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "support/world.h"
#include "talm_flow/error.h"

namespace talm_flow::host {
namespace {

using ::testing::IsEmpty;

class UserListTest : public testing::Test {
 protected:
  void Member(std::string_view group, std::string_view name) {
    world_.Run("Insert Into UserGroup (GroupName,UserName) Values (" + test::Literal(group) + "," +
               test::Literal(name) + ")");
  }
  [[nodiscard]] std::string Names(std::string_view expression) {
    return world_.services().user_lists.UserNames(world_.connection(), expression);
  }

  test::World world_;
};

TEST_F(UserListTest, NamesAreSplitAtEverySeparator) {
  EXPECT_EQ(Names("a,b;c、d，e；f g\th\u3000i\rj\nk\r\nl"), "a,b,c,d,e,f,g,h,i,j,k,l");
}

TEST_F(UserListTest, EmptyItemsAreDropped) {
  EXPECT_EQ(Names(""), "");
  EXPECT_EQ(Names(" ,;、，；\u3000\t\r\n"), "");
  EXPECT_EQ(Names(",,a,, b ,"), "a,b");
}

TEST_F(UserListTest, RepeatsAreDroppedAndCaseCounts) { EXPECT_EQ(Names("a,b,a,B,b"), "a,b,B"); }

TEST_F(UserListTest, NamesOfAnyScriptStayWhole) {
  // Their bytes partly are those of the separators.
  EXPECT_EQ(Names("张三、李四，。〃；𝄞é"), "张三,李四,。〃,𝄞é");
  EXPECT_EQ(Names("a.b@example.com"), "a.b@example.com") << "an address is no group";
}

TEST_F(UserListTest, AGroupStandsForItsMembersInOrder) {
  Member("Sales", "zoe");
  Member("Sales", "adam");
  Member("Other", "eve");
  EXPECT_EQ(Names("@Sales"), "zoe,adam");
  EXPECT_EQ(Names("first,@Sales,last"), "first,zoe,adam,last");
}

TEST_F(UserListTest, AMemberNamedBeforeIsNotRepeated) {
  Member("Sales", "zoe");
  Member("Sales", "adam");
  EXPECT_EQ(Names("adam,@Sales,zoe,@Sales"), "adam,zoe");
}

TEST_F(UserListTest, AnUnknownGroupHasNoMembers) {
  Member("Sales", "zoe");
  EXPECT_EQ(Names("@Nobody"), "");
  EXPECT_EQ(Names("@sales"), "") << "names of groups are compared exactly";
  EXPECT_EQ(Names("@"), "");
  EXPECT_EQ(Names("a,@Nobody,b"), "a,b");
}

TEST_F(UserListTest, GroupsInGroupsAreIncludedWhereTheyStand) {
  Member("All", "boss");
  Member("All", "@Sales");
  Member("All", "clerk");
  Member("Sales", "zoe");
  Member("Sales", "@Abroad");
  Member("Sales", "adam");
  Member("Abroad", "yuki");
  EXPECT_EQ(Names("@All"), "boss,zoe,yuki,adam,clerk");
}

TEST_F(UserListTest, GroupsThatHoldEachOtherEnd) {
  Member("A", "ann");
  Member("A", "@B");
  Member("B", "bob");
  Member("B", "@A");
  Member("B", "@B");
  EXPECT_EQ(Names("@A"), "ann,bob");
  EXPECT_EQ(Names("@B,@A"), "bob,ann");
}

TEST_F(UserListTest, GroupsNestDeeplyWithoutHarm) {
  constexpr int kDepth = 2000;
  for (int i = 0; i < kDepth; ++i) Member("g" + std::to_string(i), "@g" + std::to_string(i + 1));
  Member("g" + std::to_string(kDepth), "last");
  EXPECT_EQ(Names("@g0"), "last");
}

TEST_F(UserListTest, AMemberMayBeAnExpression) {
  Member("A", " ann ; bob,@B ");
  Member("B", "cid");
  world_.Run("Insert Into UserGroup (GroupName,UserName) Values ('A',Null)");
  EXPECT_EQ(Names("@A"), "ann,bob,cid");
}

TEST_F(UserListTest, AGroupsNameIsQuoted) {
  Member("O'Neill's", "ann");
  EXPECT_EQ(Names("@O'Neill's"), "ann");
  EXPECT_EQ(Names("@x'or'1'='1"), "");
}

TEST_F(UserListTest, ItsQueriesDoNotAppearInATrace) {
  Member("A", "ann");
  EXPECT_EQ(Names("@A"), "ann");
  EXPECT_THAT(world_.trace(), IsEmpty());
}

TEST_F(UserListTest, WhatTheDatabaseRefusesGoesThrough) {
  world_.Run("Drop Table UserGroup");
  EXPECT_THROW((void)Names("@A"), DatabaseError);
  EXPECT_EQ(Names("a"), "a") << "names alone ask nothing of the database";
}

}  // namespace
}  // namespace talm_flow::host
