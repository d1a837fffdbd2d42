#include "adapters/shape_cache.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace talm_flow::adapters {
namespace {

class ShapeCacheTest : public testing::Test {
 protected:
  /// Finds a text as a connection does. @returns what is kept for it; 0 when nothing is.
  int Find(std::string_view text) {
    followed_ = true;
    if (const auto* const follower = cache_.Follow(text, literals_)) return **follower;
    followed_ = false;
    ScannedText scanned;
    scanned.Scan(text);
    const auto* const found = cache_.Find(scanned.shape);
    return found == nullptr ? 0 : **found;
  }

  void Insert(std::string_view text, int kept) {
    ScannedText scanned;
    scanned.Scan(text);
    cache_.Insert(scanned.shape, std::make_shared<int>(kept), ShapePattern(scanned));
  }

  ShapeCache<int> cache_{3};
  std::vector<Literal> literals_;
  bool followed_ = false;
};

TEST_F(ShapeCacheTest, FindsWhatWasInserted) {
  EXPECT_EQ(Find("a=1"), 0);
  Insert("a=1", 1);
  EXPECT_EQ(Find("a=2"), 1);
  EXPECT_EQ(cache_.size(), 1U);
}

TEST_F(ShapeCacheTest, FollowsASequenceThatCameBefore) {
  Insert("a=1", 1);
  Insert("b='x'", 2);
  EXPECT_EQ(Find("a=2"), 1);
  EXPECT_FALSE(followed_);
  EXPECT_EQ(Find("b='y'"), 2);
  EXPECT_TRUE(followed_);
  ASSERT_EQ(literals_.size(), 1U);
  EXPECT_EQ(literals_[0].source, "y");
  EXPECT_EQ(Find("a=3"), 1);
  EXPECT_TRUE(followed_);
}

TEST_F(ShapeCacheTest, FollowsEitherOfTwoWays) {
  Insert("a=1", 1);
  Insert("b=1", 2);
  Insert("c=1", 3);
  for (const char* const text : {"a=1", "b=1", "a=1", "c=1", "a=1"}) (void)Find(text);
  EXPECT_EQ(Find("b=1"), 2);
  EXPECT_TRUE(followed_);
  (void)Find("a=1");
  EXPECT_EQ(Find("c=1"), 3);
  EXPECT_TRUE(followed_);
}

TEST_F(ShapeCacheTest, TheLeastRecentlyUsedGoesFirst) {
  Insert("a=1", 1);
  Insert("b=1", 2);
  Insert("c=1", 3);
  EXPECT_EQ(Find("a=1"), 1);
  Insert("d=1", 4);
  EXPECT_EQ(Find("b=1"), 0);
  EXPECT_EQ(Find("a=1"), 1);
  EXPECT_EQ(Find("c=1"), 3);
  EXPECT_EQ(Find("d=1"), 4);
  EXPECT_EQ(cache_.size(), 3U);
}

TEST_F(ShapeCacheTest, WhatIsGoneIsNotFollowed) {
  Insert("a=1", 1);
  Insert("b=1", 2);
  cache_.Erase("b=?");
  EXPECT_EQ(Find("a=1"), 1);
  EXPECT_EQ(Find("b=1"), 0);
  Insert("b=1", 5);
  EXPECT_EQ(Find("a=1"), 1);
  EXPECT_EQ(Find("b=1"), 5);
  cache_.Clear();
  EXPECT_EQ(Find("a=1"), 0);
  EXPECT_EQ(cache_.size(), 0U);
}

TEST_F(ShapeCacheTest, AnEntryIsErasedByWhatIsKept) {
  Insert("a=1", 1);
  Insert("b=1", 2);
  const std::shared_ptr<int> kept = *cache_.Find("a=?");
  cache_.Erase(*kept);
  EXPECT_EQ(Find("a=1"), 0);
  EXPECT_EQ(Find("b=1"), 2);
  cache_.Erase(7);
  EXPECT_EQ(cache_.size(), 1U);
}

TEST_F(ShapeCacheTest, WhatIsInUseOutlivesItsEntry) {
  Insert("a=1", 1);
  const std::shared_ptr<int> used = *cache_.Find("a=?");
  cache_.Clear();
  EXPECT_EQ(*used, 1);
}

}  // namespace
}  // namespace talm_flow::adapters
