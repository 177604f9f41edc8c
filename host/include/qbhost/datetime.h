// The host's date and time records.
//
// _FILETIME and DateTime count 100-nanosecond ticks since 1601-01-01 00:00.
// _DATE_TIME is the broken-down form; `date_valid` 0 means "no date".
#pragma once
#include <cstddef>
#include <cstdint>
#include <qbhost/export.h>

struct _FILETIME {
  std::uint32_t dwLowDateTime;
  std::uint32_t dwHighDateTime;
};

struct _DATE_TIME {
  std::uint16_t date_valid;   // 0: no date is set
  std::uint16_t year;         // 1601..30827
  std::uint8_t month;         // 1..12
  std::uint8_t day;           // 1..31
  std::uint8_t hour;          // 0..23
  std::uint8_t minute;        // 0..59
  std::uint8_t second;        // 0..59
  std::uint8_t day_of_week;   // 0 Sunday .. 6 Saturday, set on output
  std::uint16_t reserved;
  std::uint32_t ticks;        // 100-nanosecond units within the second
};
static_assert(sizeof(_DATE_TIME) == 16, "_DATE_TIME is part of the backup format");
static_assert(offsetof(_DATE_TIME, date_valid) == 0, "the set flag is the first field");

class QBHOST_API DateTime {
 public:
  DateTime() = default;
  explicit DateTime(_FILETIME const& ft);
  explicit DateTime(std::uint64_t ticks) : ticks_(ticks) {}
  void GetDateTime(_FILETIME& ft) const;
  std::uint64_t ticks() const { return ticks_; }

 private:
  std::uint64_t ticks_ = 0;
};

// Broken-down to ticks. False (and `out` unchanged) when the record holds no
// date or a field is out of range.
QBHOST_API bool DateTimeConvert(_DATE_TIME const* in, DateTime& out);
// Ticks to broken-down; false for a null output or a year beyond 30827.
QBHOST_API bool DateTimeConvert(DateTime const& in, _DATE_TIME* out);
// The current time, in UTC.
QBHOST_API void GetCurrentDateInUTC(_DATE_TIME* out);
