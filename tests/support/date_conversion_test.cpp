// Local time <-> UTC conversion of _DATE_TIME records in fixed time zones.
#include <qbclass/date_conversion.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <ostream>
#include <string>

#include "test_records.h"

namespace {

using qbtest::make_date;
using qbtest::show;

void use_zone(char const* zone) {
  ::setenv("TZ", zone, 1);
  ::tzset();
}

struct zone_case {
  char const* name;
  char const* zone;
  _DATE_TIME local;
  _DATE_TIME utc;
};
std::ostream& operator<<(std::ostream& os, zone_case const& c) { return os << c.name; }

class date_conversion : public ::testing::TestWithParam<zone_case> {};

TEST_P(date_conversion, BothDirectionsKeepTheSubSecondPart) {
  zone_case c = GetParam();
  use_zone(c.zone);
  _DATE_TIME out{};
  ASSERT_TRUE(qbclass::ConvertLocalDate_TimeToUTCDate_Time(&c.local, &out));
  EXPECT_EQ(show(out), show(c.utc));
  _DATE_TIME back{};
  ASSERT_TRUE(qbclass::ConvertUTCDate_TimeToLocalDate_Time(&c.utc, &back));
  EXPECT_EQ(show(back), show(c.local));
}

INSTANTIATE_TEST_SUITE_P(
    zones, date_conversion,
    ::testing::Values(
        zone_case{"berlin_summer", "Europe/Berlin", make_date(2023, 7, 15, 14, 30, 15, 1234567),
                  make_date(2023, 7, 15, 12, 30, 15, 1234567)},
        zone_case{"berlin_winter", "Europe/Berlin", make_date(2023, 1, 10, 8, 0, 0, 9999999),
                  make_date(2023, 1, 10, 7, 0, 0, 9999999)},
        zone_case{"berlin_before_1970", "Europe/Berlin", make_date(1965, 6, 1, 0, 30, 0, 5),
                  make_date(1965, 5, 31, 23, 30, 0, 5)},
        zone_case{"new_york_summer", "America/New_York", make_date(2023, 7, 15, 14, 30, 15, 1),
                  make_date(2023, 7, 15, 18, 30, 15, 1)},
        zone_case{"new_york_just_after_spring_forward", "America/New_York", make_date(2023, 3, 12, 3, 30, 0, 42),
                  make_date(2023, 3, 12, 7, 30, 0, 42)},
        zone_case{"new_york_winter_day_change", "America/New_York",
                  make_date(2023, 12, 31, 23, 30, 0, 4500000),
                  make_date(2024, 1, 1, 4, 30, 0, 4500000)}),
    [](::testing::TestParamInfo<zone_case> const& info) { return std::string(info.param.name); });

TEST(date_conversion_dst, LocalTimeSkippedBySpringForwardDoesNotRoundTrip) {
  use_zone("Europe/Berlin");
  // 02:30 does not exist on 2023-03-26 in Berlin: clocks go from 02:00 to 03:00.
  _DATE_TIME local = make_date(2023, 3, 26, 2, 30, 0, 777);
  _DATE_TIME utc{}, back{};
  ASSERT_TRUE(qbclass::ConvertLocalDate_TimeToUTCDate_Time(&local, &utc));
  ASSERT_TRUE(qbclass::ConvertUTCDate_TimeToLocalDate_Time(&utc, &back));
  EXPECT_NE(show(back), show(local));
  // The round trip lands one hour off, on the same day, with the rest kept.
  EXPECT_EQ(back.day, 26);
  EXPECT_TRUE(back.hour == 1 || back.hour == 3) << show(back);
  EXPECT_EQ(back.minute, 30);
  EXPECT_EQ(back.ticks, 777u);
}

TEST(date_conversion_range, ResultBefore1601IsRefused) {
  use_zone("America/New_York");
  _DATE_TIME earliest = make_date(1601, 1, 1, 0, 0, 0, 0);
  _DATE_TIME to_utc{}, to_local{};
  EXPECT_TRUE(qbclass::ConvertLocalDate_TimeToUTCDate_Time(&earliest, &to_utc));  // moves east
  EXPECT_FALSE(qbclass::ConvertUTCDate_TimeToLocalDate_Time(&earliest, &to_local));
  EXPECT_EQ(to_local.date_valid, 0);
}

using converter = bool (*)(_DATE_TIME*, _DATE_TIME*);
class date_conversion_input : public ::testing::TestWithParam<converter> {
 protected:
  void SetUp() override { use_zone("Europe/Berlin"); }
};

TEST_P(date_conversion_input, UnsetDateStaysUnset) {
  _DATE_TIME in = make_date(2023, 7, 15, 14, 30, 15, 1);
  in.date_valid = 0;
  _DATE_TIME out = make_date(2000, 1, 1, 0, 0, 0, 0);
  EXPECT_TRUE(GetParam()(&in, &out));
  EXPECT_EQ(out.date_valid, 0);
}

TEST_P(date_conversion_input, BadRecordsAreRefused) {
  _DATE_TIME out = make_date(2000, 1, 1, 0, 0, 0, 0);
  _DATE_TIME bad_month = make_date(2023, 13, 1, 0, 0, 0, 0);
  EXPECT_FALSE(GetParam()(&bad_month, &out));
  EXPECT_EQ(out.date_valid, 0);
  out.date_valid = 1;
  EXPECT_FALSE(GetParam()(nullptr, &out));
  EXPECT_EQ(out.date_valid, 0);
  _DATE_TIME good = make_date(2023, 7, 15, 14, 30, 15, 1);
  EXPECT_FALSE(GetParam()(&good, nullptr));
}

INSTANTIATE_TEST_SUITE_P(directions, date_conversion_input,
                         ::testing::Values(&qbclass::ConvertLocalDate_TimeToUTCDate_Time,
                                           &qbclass::ConvertUTCDate_TimeToLocalDate_Time),
                         [](::testing::TestParamInfo<converter> const& info) {
                           return std::string(info.index == 0 ? "local_to_utc" : "utc_to_local");
                         });

}  // namespace
