// Local time <-> UTC on _DATE_TIME records.
#include <qbclass/date_conversion.h>

#include <cstdint>
#include <ctime>

namespace qbclass {
namespace {

// 100-nanosecond ticks between 1601-01-01 and 1970-01-01, and per second.
constexpr std::int64_t kUnixEpochTicks = 116444736000000000LL;
constexpr std::int64_t kTicksPerSecond = 10000000LL;

enum class direction { local_to_utc, utc_to_local };

// Moves the wall-clock second count `t` (a broken-down time read as if it
// were UTC) into the other clock. False when the C library cannot.
bool shift_seconds(direction dir, std::time_t t, std::time_t& out) {
  std::tm parts{};
  if (dir == direction::local_to_utc) {
    if (gmtime_r(&t, &parts) == nullptr) return false;
    parts.tm_isdst = -1;
  } else {
    if (localtime_r(&t, &parts) == nullptr) return false;
    parts.tm_isdst = 0;
  }
  // mktime() leaves tm_wday alone when it fails; -1 is also a valid result.
  parts.tm_wday = -1;
  std::time_t result = std::mktime(&parts);
  if (result == static_cast<std::time_t>(-1) && parts.tm_wday == -1) return false;
  if (dir == direction::utc_to_local) result -= timezone;
  out = result;
  return true;
}

bool convert(direction dir, _DATE_TIME const* in, _DATE_TIME* out) {
  if (out == nullptr) return false;
  if (in == nullptr) {
    out->date_valid = 0;
    return false;
  }
  if (in->date_valid == 0) {
    out->date_valid = 0;
    return true;
  }
  DateTime in_time;
  if (!DateTimeConvert(in, in_time)) {
    out->date_valid = 0;
    return false;
  }
  _FILETIME ft{};
  in_time.GetDateTime(ft);
  std::int64_t const ticks =
      static_cast<std::int64_t>((static_cast<std::uint64_t>(ft.dwHighDateTime) << 32) |
                                ft.dwLowDateTime);
  // Whole seconds since 1970 and the sub-second rest. Floor division keeps
  // the rest non-negative for dates before 1970, so that the second handed to
  // the C library is the record's own second.
  std::int64_t const since_epoch = ticks - kUnixEpochTicks;
  std::int64_t seconds = since_epoch / kTicksPerSecond;
  std::int64_t rest = since_epoch % kTicksPerSecond;
  if (rest < 0) {
    rest += kTicksPerSecond;
    --seconds;
  }

  tzset();
  std::time_t shifted = 0;
  std::int64_t out_ticks = 0;
  if (!shift_seconds(dir, static_cast<std::time_t>(seconds), shifted) ||
      __builtin_mul_overflow(static_cast<std::int64_t>(shifted), kTicksPerSecond, &out_ticks) ||
      __builtin_add_overflow(out_ticks, kUnixEpochTicks + rest, &out_ticks) || out_ticks < 0) {
    out->date_valid = 0;
    return false;
  }
  _FILETIME out_ft{};
  out_ft.dwLowDateTime = static_cast<std::uint32_t>(static_cast<std::uint64_t>(out_ticks));
  out_ft.dwHighDateTime = static_cast<std::uint32_t>(static_cast<std::uint64_t>(out_ticks) >> 32);
  if (!DateTimeConvert(DateTime(out_ft), out)) {
    out->date_valid = 0;
    return false;
  }
  return true;
}

// The host's conversions are not expected to throw; should one do so anyway,
// the record is reported as not converted rather than ending the process.
bool convert_guarded(direction dir, _DATE_TIME const* in, _DATE_TIME* out) noexcept {
  try {
    return convert(dir, in, out);
  } catch (...) {
    if (out != nullptr) out->date_valid = 0;
    return false;
  }
}

}  // namespace

bool ConvertLocalDate_TimeToUTCDate_Time(_DATE_TIME* local, _DATE_TIME* utc) noexcept {
  return convert_guarded(direction::local_to_utc, local, utc);
}

bool ConvertUTCDate_TimeToLocalDate_Time(_DATE_TIME* utc, _DATE_TIME* local) noexcept {
  return convert_guarded(direction::utc_to_local, utc, local);
}

}  // namespace qbclass
