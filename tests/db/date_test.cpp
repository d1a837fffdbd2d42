/// Moments in texts, moments as texts, and moments moved.

#include <gtest/gtest.h>

#include <string>

#include "talm_flow/conversion.h"
#include "talm_flow/error.h"

namespace talm_flow {
namespace {

struct DateCase {
  const char* text;
  const char* general;
};

class DateTextTest : public testing::TestWithParam<DateCase> {};

TEST_P(DateTextTest, IsReadAsItsMoment) {
  const auto moment = ParseDate(GetParam().text);
  ASSERT_TRUE(moment.has_value()) << GetParam().text;
  EXPECT_EQ(GeneralDateText(*moment), GetParam().general) << GetParam().text;
  EXPECT_TRUE(IsDate(GetParam().text));
}

TEST_P(DateTextTest, IsNoNumericText) { EXPECT_FALSE(IsNumeric(GetParam().text)); }

INSTANTIATE_TEST_SUITE_P(Days, DateTextTest,
                         testing::Values(DateCase{"2026-1-31", "2026/1/31"}, DateCase{"2026/01/31", "2026/1/31"},
                                         DateCase{"2026.1.31", "2026/1/31"}, DateCase{"2026年1月31日", "2026/1/31"},
                                         DateCase{"2024-02-29", "2024/2/29"}, DateCase{"2000-2-29", "2000/2/29"},
                                         DateCase{"0100-1-1", "0100/1/1"}, DateCase{"9999.12.31", "9999/12/31"}));
INSTANTIATE_TEST_SUITE_P(DaysAndTimes, DateTextTest,
                         testing::Values(DateCase{"2026-1-31 9:05", "2026/1/31 9:05:00"},
                                         DateCase{"2026-01-31 09:05:07", "2026/1/31 9:05:07"},
                                         DateCase{"2026/1/31T23:59:59", "2026/1/31 23:59:59"},
                                         DateCase{"2026.1.31 \t 0:00:01", "2026/1/31 0:00:01"},
                                         DateCase{"2026年01月31日 9:05", "2026/1/31 9:05:00"},
                                         DateCase{"2026年1月31日T9:05", "2026/1/31 9:05:00"},
                                         DateCase{"2026-1-31 00:00", "2026/1/31"},
                                         DateCase{"9999-12-31 23:59:59", "9999/12/31 23:59:59"}));
INSTANTIATE_TEST_SUITE_P(TimesAlone, DateTextTest,
                         testing::Values(DateCase{"9:05", "1899/12/30 9:05:00"},
                                         DateCase{"09:05:07", "1899/12/30 9:05:07"}, DateCase{"0:00", "1899/12/30"},
                                         DateCase{"23:59:59", "1899/12/30 23:59:59"}));
INSTANTIATE_TEST_SUITE_P(BlanksAtTheEnds, DateTextTest,
                         testing::Values(DateCase{" 2026-1-31 ", "2026/1/31"},
                                         DateCase{"\t9:05 \t", "1899/12/30 9:05:00"}));

class NoDateTextTest : public testing::TestWithParam<const char*> {};

TEST_P(NoDateTextTest, IsNoMoment) {
  EXPECT_EQ(ParseDate(GetParam()), std::nullopt);
  EXPECT_FALSE(IsDate(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(NotInTheCalendar, NoDateTextTest,
                         testing::Values("2023-02-29", "1900-2-29", "2026-4-31", "2026-13-1", "2026-0-1", "2026-1-0",
                                         "2026-1-32", "0099-12-31", "0000-1-1"));
INSTANTIATE_TEST_SUITE_P(NotOnTheClock, NoDateTextTest,
                         testing::Values("24:00", "9:60", "9:05:60", "2026-1-31 24:00", "2026-1-31 9:60"));
INSTANTIATE_TEST_SUITE_P(OtherSpellings, NoDateTextTest,
                         testing::Values("", " ", "today", "26-1-31", "12026-1-31", "2026-1", "2026-1-", "2026-001-1",
                                         "2026-1-031", "2026-1/31", "2026.1-31", "2026/1.31", "2026 1 31", "-2026-1-31",
                                         "2026年1月31", "2026年1-31", "31/1/2026", "2026-1-31-", "2026-1-31x",
                                         "2026-1-31\n"));
INSTANTIATE_TEST_SUITE_P(OtherTimes, NoDateTextTest,
                         testing::Values("9", ":05", "9:", "9:5", "9:05:7", "009:05", "9:050", "9:05:070", "9:05 PM",
                                         "9:05:07.5", "2026-1-31T", "2026-1-31t9:05", "2026-1-31 T9:05",
                                         "2026-1-31T 9:05", "2026-1-319:05", "2026-1-31TT9:05", "2026-1-31T9:05Z",
                                         "2026年1月31日9:05"));
INSTANTIATE_TEST_SUITE_P(Numbers, NoDateTextTest, testing::Values("20260131", "2026.1", "46053", "1,2", "2026", "1e5"));

TEST(MomentTest, IsTakenApartAsItWasPutTogether) {
  const DateParts parts = PartsOf(MakeDateTime(2026, 1, 31, 9, 5, 7));
  EXPECT_EQ(parts.year, 2026);
  EXPECT_EQ(parts.month, 1);
  EXPECT_EQ(parts.day, 31);
  EXPECT_EQ(parts.hour, 9);
  EXPECT_EQ(parts.minute, 5);
  EXPECT_EQ(parts.second, 7);
  EXPECT_EQ(parts.weekday, 6) << "a Saturday";
}

TEST(MomentTest, CountsSecondsSince1970) {
  EXPECT_EQ(MakeDateTime(1970, 1, 1).seconds, 0);
  EXPECT_EQ(MakeDateTime(1969, 12, 31, 23, 59, 59).seconds, -1);
  EXPECT_EQ(MakeDateTime(2000, 3, 1).seconds, 951868800);
}

TEST(MomentTest, GoesBackBehindTheBeginningOfTheCount) {
  const DateParts parts = PartsOf(MakeDateTime(100, 1, 1, 0, 0, 1));
  EXPECT_EQ(parts.year, 100);
  EXPECT_EQ(parts.month, 1);
  EXPECT_EQ(parts.day, 1);
  EXPECT_EQ(parts.hour, 0);
  EXPECT_EQ(parts.second, 1);
}

TEST(MomentTest, CountsWeekdaysFromMondayToSunday) {
  for (int day = 1; day <= 7; ++day) {
    EXPECT_EQ(PartsOf(MakeDateTime(2026, 6, day)).weekday, day) << "the first of June 2026 is a Monday";
    EXPECT_EQ(PartsOf(MakeDateTime(1899, 12, 24 + day)).weekday, day);
  }
}

TEST(MomentTest, OrdersByTime) {
  EXPECT_LT(*ParseDate("2026-1-31 9:05"), *ParseDate("2026年1月31日 9:05:01"));
  EXPECT_EQ(*ParseDate("2026.1.31"), *ParseDate("2026-01-31 0:00:00"));
}

TEST(DateTextFormTest, LeavesTheTimeOutAtMidnightOnly) {
  EXPECT_EQ(GeneralDateText(MakeDateTime(2026, 1, 31, 9, 5, 0)), "2026/1/31 9:05:00");
  EXPECT_EQ(GeneralDateText(MakeDateTime(2026, 11, 3)), "2026/11/3");
  EXPECT_EQ(GeneralDateText(MakeDateTime(2026, 11, 3, 0, 0, 1)), "2026/11/3 0:00:01");
  EXPECT_EQ(ShortDateText(MakeDateTime(2026, 1, 31, 9, 5, 0)), "2026/1/31");
  EXPECT_EQ(ShortDateText(MakeDateTime(100, 1, 1)), "0100/1/1");
}

TEST(DateTextFormTest, IsReadAgainAsTheSameMomentOnEveryDayOfManyYears) {
  for (DateTime moment = MakeDateTime(1896, 1, 1, 23, 59, 1); moment < MakeDateTime(2105, 1, 1);
       moment.seconds += 86400) {
    ASSERT_EQ(ParseDate(GeneralDateText(moment)), moment) << GeneralDateText(moment);
  }
}

TEST(AddHoursTest, MovesAMomentBothWays) {
  const DateTime moment = MakeDateTime(2026, 1, 31, 9, 5, 0);
  EXPECT_EQ(AddHours(moment, 24), MakeDateTime(2026, 2, 1, 9, 5, 0));
  EXPECT_EQ(AddHours(moment, -10), MakeDateTime(2026, 1, 30, 23, 5, 0));
  EXPECT_EQ(AddHours(moment, 0), moment);
}

TEST(AddHoursTest, TakesTheCountToTheNearestWholeNumberTiesToEven) {
  const DateTime moment = MakeDateTime(2026, 1, 31, 9, 0, 0);
  EXPECT_EQ(AddHours(moment, 0.5), moment);
  EXPECT_EQ(AddHours(moment, 1.5), MakeDateTime(2026, 1, 31, 11, 0, 0));
  EXPECT_EQ(AddHours(moment, 2.5), MakeDateTime(2026, 1, 31, 11, 0, 0));
  EXPECT_EQ(AddHours(moment, -1.4), MakeDateTime(2026, 1, 31, 8, 0, 0));
}

TEST(AddHoursTest, StaysWithinTheCalendar) {
  EXPECT_EQ(AddHours(MakeDateTime(9999, 12, 31, 22, 59, 59), 1), MakeDateTime(9999, 12, 31, 23, 59, 59));
  EXPECT_THROW((void)AddHours(MakeDateTime(9999, 12, 31, 23, 0, 0), 1), OverflowError);
  EXPECT_EQ(AddHours(MakeDateTime(100, 1, 1, 1, 0, 0), -1), MakeDateTime(100, 1, 1));
  EXPECT_THROW((void)AddHours(MakeDateTime(100, 1, 1, 0, 59, 59), -1), OverflowError);
}

TEST(AddHoursTest, RefusesACountOutside32Bits) {
  const DateTime moment = MakeDateTime(2026, 1, 31);
  EXPECT_THROW((void)AddHours(moment, 2147483648.0), OverflowError);
  EXPECT_THROW((void)AddHours(moment, 2147483647.0), OverflowError) << "the count fits, the year does not";
  EXPECT_THROW((void)AddHours(moment, -1e300), OverflowError);
}

}  // namespace
}  // namespace talm_flow
