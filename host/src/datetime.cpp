// DateTime and DateTimeConvert: 100-nanosecond ticks since 1601-01-01 00:00
// (proleptic Gregorian calendar, no leap seconds) and the broken-down
// _DATE_TIME record.
#include <qbhost/datetime.h>

#include <ctime>

namespace {

constexpr std::uint64_t kTicksPerSecond = 10000000ull;
constexpr std::uint64_t kTicksPerDay = kTicksPerSecond * 86400ull;
constexpr unsigned kFirstYear = 1601;
constexpr unsigned kLastYear = 30827;
// Days from 0000-03-01 (the civil-date algorithm's epoch) to 1601-01-01.
constexpr std::int64_t kEpochShift = 584694;
// Ticks from 1601-01-01 to 1970-01-01.
constexpr std::uint64_t kUnixEpochTicks = 116444736000000000ull;

bool is_leap(unsigned year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

unsigned days_in_month(unsigned year, unsigned month) {
  static constexpr unsigned char kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return (month == 2 && is_leap(year)) ? 29 : kDays[month - 1];
}

// Days since 1601-01-01 of a valid civil date (years counted from March so
// that the leap day falls at the end of the year).
std::int64_t days_from_civil(unsigned year, unsigned month, unsigned day) {
  std::int64_t const y = static_cast<std::int64_t>(year) - (month <= 2 ? 1 : 0);
  std::int64_t const era = y / 400;
  std::int64_t const yoe = y - era * 400;
  std::int64_t const mp = (month + 9) % 12;
  std::int64_t const doy = (153 * mp + 2) / 5 + day - 1;
  std::int64_t const doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - kEpochShift;
}

void civil_from_days(std::int64_t days, unsigned& year, unsigned& month, unsigned& day) {
  std::int64_t const z = days + kEpochShift;
  std::int64_t const era = z / 146097;
  std::int64_t const doe = z - era * 146097;
  std::int64_t const yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  std::int64_t const doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  std::int64_t const mp = (5 * doy + 2) / 153;
  day = static_cast<unsigned>(doy - (153 * mp + 2) / 5 + 1);
  month = static_cast<unsigned>(mp < 10 ? mp + 3 : mp - 9);
  year = static_cast<unsigned>(yoe + era * 400 + (month <= 2 ? 1 : 0));
}

}  // namespace

DateTime::DateTime(_FILETIME const& ft)
    : ticks_((static_cast<std::uint64_t>(ft.dwHighDateTime) << 32) | ft.dwLowDateTime) {}

void DateTime::GetDateTime(_FILETIME& ft) const {
  ft.dwLowDateTime = static_cast<std::uint32_t>(ticks_ & 0xFFFFFFFFu);
  ft.dwHighDateTime = static_cast<std::uint32_t>(ticks_ >> 32);
}

bool DateTimeConvert(_DATE_TIME const* in, DateTime& out) {
  if (in == nullptr || in->date_valid == 0) return false;
  if (in->year < kFirstYear || in->year > kLastYear || in->month < 1 || in->month > 12 ||
      in->day < 1 || in->day > days_in_month(in->year, in->month) || in->hour > 23 ||
      in->minute > 59 || in->second > 59 || in->ticks >= kTicksPerSecond)
    return false;
  auto const days = static_cast<std::uint64_t>(days_from_civil(in->year, in->month, in->day));
  std::uint64_t const seconds = in->hour * 3600ull + in->minute * 60ull + in->second;
  out = DateTime(days * kTicksPerDay + seconds * kTicksPerSecond + in->ticks);
  return true;
}

bool DateTimeConvert(DateTime const& in, _DATE_TIME* out) {
  if (out == nullptr) return false;
  std::uint64_t const ticks = in.ticks();
  auto const days = static_cast<std::int64_t>(ticks / kTicksPerDay);
  std::uint64_t const rest = ticks % kTicksPerDay;
  unsigned year = 0, month = 0, day = 0;
  civil_from_days(days, year, month, day);
  if (year > kLastYear) return false;
  std::uint64_t const seconds = rest / kTicksPerSecond;
  out->date_valid = 1;
  out->year = static_cast<std::uint16_t>(year);
  out->month = static_cast<std::uint8_t>(month);
  out->day = static_cast<std::uint8_t>(day);
  out->hour = static_cast<std::uint8_t>(seconds / 3600);
  out->minute = static_cast<std::uint8_t>(seconds / 60 % 60);
  out->second = static_cast<std::uint8_t>(seconds % 60);
  // 1601-01-01 was a Monday.
  out->day_of_week = static_cast<std::uint8_t>((days + 1) % 7);
  out->reserved = 0;
  out->ticks = static_cast<std::uint32_t>(rest % kTicksPerSecond);
  return true;
}

void GetCurrentDateInUTC(_DATE_TIME* out) {
  if (out == nullptr) return;
  timespec now{};
  if (clock_gettime(CLOCK_REALTIME, &now) != 0 || now.tv_sec < 0) {
    out->date_valid = 0;
    return;
  }
  std::uint64_t const ticks = kUnixEpochTicks +
                              static_cast<std::uint64_t>(now.tv_sec) * kTicksPerSecond +
                              static_cast<std::uint64_t>(now.tv_nsec) / 100;
  if (!DateTimeConvert(DateTime(ticks), out)) out->date_valid = 0;
}
