#include <qbhost/datetime.h>

#include <gtest/gtest.h>

#include <ctime>

#include "test_records.h"

namespace {

using qbtest::make_date;

struct KnownDate {
  _DATE_TIME date;
  std::uint64_t ticks;
  int day_of_week;
};

class KnownDates : public ::testing::TestWithParam<KnownDate> {};

TEST_P(KnownDates, ConvertBothWays) {
  KnownDate const& k = GetParam();
  DateTime dt;
  ASSERT_TRUE(DateTimeConvert(&k.date, dt));
  EXPECT_EQ(k.ticks, dt.ticks());

  _DATE_TIME back{};
  ASSERT_TRUE(DateTimeConvert(DateTime(k.ticks), &back));
  EXPECT_EQ(qbtest::show(k.date), qbtest::show(back));
  EXPECT_EQ(k.day_of_week, back.day_of_week);
}

// Tick values are days * 864000000000 + ticks of the day, days counted from
// 1601-01-01 (the Unix epoch is day 134774).
INSTANTIATE_TEST_SUITE_P(
    Calendar, KnownDates,
    ::testing::Values(
        KnownDate{make_date(1601, 1, 1), 0, 1},                                   // Monday
        KnownDate{make_date(1970, 1, 1), 116444736000000000ull, 4},               // Thursday
        KnownDate{make_date(2000, 2, 29, 12, 0, 0), 125962992000000000ull, 2},    // leap day, Tuesday
        KnownDate{make_date(2021, 3, 4, 5, 6, 7, 1234567), 132593079671234567ull, 4},
        KnownDate{make_date(1900, 3, 1), 94405824000000000ull, 4},  // 1900 is no leap year
        KnownDate{make_date(30827, 12, 31, 23, 59, 59, 9999999), 9223149887999999999ull, 5}));

TEST(DateTime, FiletimeSplitsAndJoins) {
  _FILETIME ft{0x89ABCDEFu, 0x01234567u};
  DateTime dt(ft);
  EXPECT_EQ(0x0123456789ABCDEFull, dt.ticks());
  _FILETIME out{};
  dt.GetDateTime(out);
  EXPECT_EQ(ft.dwLowDateTime, out.dwLowDateTime);
  EXPECT_EQ(ft.dwHighDateTime, out.dwHighDateTime);
}

TEST(DateTime, InvalidFieldsAreRefusedAndLeaveOutputAlone) {
  _DATE_TIME const bad[] = {
      make_date(1600, 12, 31), make_date(30828, 1, 1), make_date(2021, 0, 1),  make_date(2021, 13, 1),
      make_date(2021, 1, 0),   make_date(2021, 4, 31), make_date(2021, 2, 29), make_date(1900, 2, 29),
      make_date(2021, 1, 1, 24), make_date(2021, 1, 1, 0, 60), make_date(2021, 1, 1, 0, 0, 60),
      make_date(2021, 1, 1, 0, 0, 0, 10000000),
  };
  for (auto const& d : bad) {
    DateTime dt(42);
    EXPECT_FALSE(DateTimeConvert(&d, dt)) << d.year << "-" << int(d.month) << "-" << int(d.day);
    EXPECT_EQ(42u, dt.ticks());
  }
  _DATE_TIME unset = make_date(2021, 1, 1);
  unset.date_valid = 0;
  DateTime dt(42);
  EXPECT_FALSE(DateTimeConvert(&unset, dt));
  EXPECT_FALSE(DateTimeConvert(nullptr, dt));
  EXPECT_EQ(42u, dt.ticks());
}

TEST(DateTime, OutputBeyondLastYearOrNullFails) {
  EXPECT_FALSE(DateTimeConvert(DateTime(0), static_cast<_DATE_TIME*>(nullptr)));
  _DATE_TIME out{};
  EXPECT_FALSE(DateTimeConvert(DateTime(~0ull), &out));
  EXPECT_FALSE(DateTimeConvert(DateTime(9223149888000000000ull), &out));  // 30828-01-01
}

TEST(DateTime, CurrentUtcAgreesWithTheClock) {
  std::time_t const before = std::time(nullptr);
  _DATE_TIME now{};
  GetCurrentDateInUTC(&now);
  std::time_t const after = std::time(nullptr);
  ASSERT_EQ(1, now.date_valid);
  DateTime dt;
  ASSERT_TRUE(DateTimeConvert(&now, dt));
  auto const seconds = static_cast<std::time_t>((dt.ticks() - 116444736000000000ull) / 10000000);
  EXPECT_GE(seconds, before);
  EXPECT_LE(seconds, after);
  std::tm tm{};
  gmtime_r(&seconds, &tm);
  EXPECT_EQ(tm.tm_wday, now.day_of_week);
  GetCurrentDateInUTC(nullptr);
}

}  // namespace
