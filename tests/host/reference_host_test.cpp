/// The reference host as a whole.

#include "talm_flow/host/reference_host.h"

#include <gtest/gtest.h>

#include "support/world.h"

namespace talm_flow::host {
namespace {

TEST(ReferenceHostTest, HandsOutTheSameServicesEveryTime) {
  ReferenceHost host;
  const Services first = host.services();
  const Services second = host.services();
  EXPECT_EQ(&first.common, &second.common);
  EXPECT_EQ(&first.records, &second.records);
  EXPECT_EQ(&first.tables, &second.tables);
  EXPECT_EQ(&first.user_lists, &second.user_lists);
  EXPECT_EQ(&first.forms, &second.forms);
  EXPECT_EQ(&first.dates, &second.dates);
  EXPECT_EQ(&first.urls, &second.urls);
  EXPECT_EQ(&first.clock, &second.clock);
  EXPECT_EQ(&first.files, &second.files);
}

TEST(ReferenceHostTest, ServesSeveralDatabasesAndKeepsThemApart) {
  test::World one;
  test::World other;
  one.Run("Insert Into TableName (TableID,Sort) Values (12,1)");
  other.Run("Insert Into TableName (TableID,Sort) Values (12,3)");
  ReferenceHost host;
  EXPECT_EQ(host.services().tables.AcceptTable(one.connection(), 12), 1);
  EXPECT_EQ(host.services().tables.AcceptTable(other.connection(), 12), 3);
  one.Run("Update TableName Set Sort=2 Where TableID=12");
  EXPECT_EQ(host.services().tables.AcceptTable(one.connection(), 12), 2) << "nothing is kept between calls";
}

}  // namespace
}  // namespace talm_flow::host
