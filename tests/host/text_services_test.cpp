/// Moments for date columns, texts for URLs, and the clock.

#include <gtest/gtest.h>

#include <ctime>
#include <string>

#include "talm_flow/host/reference_host.h"

namespace talm_flow::host {
namespace {

TEST(DateServiceTest, WritesEveryPartWithItsFullWidth) {
  ReferenceHost host;
  const DateService& dates = host.services().dates;
  EXPECT_EQ(dates.FormatDateTime(MakeDateTime(2026, 1, 31, 9, 5, 7)), "2026-01-31 09:05:07");
  EXPECT_EQ(dates.FormatDateTime(MakeDateTime(2026, 11, 3)), "2026-11-03 00:00:00");
  EXPECT_EQ(dates.FormatDateTime(MakeDateTime(100, 1, 1)), "0100-01-01 00:00:00");
  EXPECT_EQ(dates.FormatDateTime(MakeDateTime(9999, 12, 31, 23, 59, 59)), "9999-12-31 23:59:59");
}

TEST(DateServiceTest, WritesWhatIsReadAgainAsTheSameMoment) {
  ReferenceHost host;
  for (DateTime moment = MakeDateTime(1999, 12, 1); moment < MakeDateTime(2001, 3, 2); moment.seconds += 86'399 * 3) {
    EXPECT_EQ(ParseDate(host.services().dates.FormatDateTime(moment)), moment);
  }
}

TEST(UrlServiceTest, LeavesLettersDigitsAndFourMarks) {
  ReferenceHost host;
  const std::string kept = "ABCXYZabcxyz0189-_.~";
  EXPECT_EQ(host.services().urls.EncodeUrl(kept), kept);
  EXPECT_EQ(host.services().urls.EncodeUrl(""), "");
}

TEST(UrlServiceTest, EncodesEveryOtherByte) {
  ReferenceHost host;
  const UrlService& urls = host.services().urls;
  EXPECT_EQ(urls.EncodeUrl("a b&c=d/e?f#g%h+i"), "a%20b%26c%3Dd%2Fe%3Ff%23g%25h%2Bi");
  EXPECT_EQ(urls.EncodeUrl("'\"<>\r\n\t"), "%27%22%3C%3E%0D%0A%09");
  EXPECT_EQ(urls.EncodeUrl("中𝄞"), "%E4%B8%AD%F0%9D%84%9E");
  EXPECT_EQ(urls.EncodeUrl(std::string_view("\0\xFF", 2)), "%00%FF");
}

TEST(ClockTest, StandsStillWhereItWasPut) {
  ReferenceHost host({.fixed_clock = MakeDateTime(2026, 1, 31, 9, 5, 0)});
  EXPECT_EQ(host.services().clock.Now(), MakeDateTime(2026, 1, 31, 9, 5, 0));
  EXPECT_EQ(host.services().clock.Now(), MakeDateTime(2026, 1, 31, 9, 5, 0));
}

TEST(ClockTest, OtherwiseTellsTheLocalTime) {
  ReferenceHost host;
  const auto local_seconds = [] {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    (void)localtime_r(&now, &local);
    return static_cast<std::int64_t>(now) + local.tm_gmtoff;
  };
  const std::int64_t before = local_seconds();
  const DateTime now = host.services().clock.Now();
  const std::int64_t after = local_seconds();
  EXPECT_GE(now.seconds, before);
  EXPECT_LE(now.seconds, after);
}

}  // namespace
}  // namespace talm_flow::host
