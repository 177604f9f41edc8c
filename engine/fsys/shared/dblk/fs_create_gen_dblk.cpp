// FS_CreateGenDBLK: dates of directory and file requests are normalised
// before the file system builds the block.
//
// The conversion is the media format's own arithmetic and must stay exactly
// as it is, or restored dates would drift from what other readers of the
// same media compute: seconds since 1970 are broken down with localtime_r,
// the daylight-saving indicator is cleared, mktime rebuilds them as standard
// time and the C library's `timezone` is subtracted; the sub-second part is
// kept to whole microseconds. The caller's date pointers are swapped for
// local copies only for the duration of the call.
#include <ctime>

#include <qbfsys/create_dblk.h>
#include <qbfsys/handles.h>

#include "fs_dispatch.h"

namespace {

constexpr std::int64_t kTicksPerSecond = 10000000;            // 100-ns ticks
constexpr std::int64_t kTicksPerMicrosecond = 10;
constexpr std::int64_t kUnixEpochTicks = 0x019DB1DED53E8000;  // 1970-01-01 in 1601 ticks
constexpr int kDateCount = 6;

bool is_present(_DATE_TIME const* date) { return date != nullptr && date->date_valid != 0; }

// Converts `in` into `out`; false when the host cannot read the date or the
// C library cannot place it.
bool local_to_utc(_DATE_TIME const& in, _DATE_TIME& out) {
  DateTime host;
  if (!DateTimeConvert(&in, host)) return false;
  std::int64_t const ticks = static_cast<std::int64_t>(host.ticks());
  std::time_t const seconds = static_cast<std::time_t>((ticks - kUnixEpochTicks) / kTicksPerSecond);

  std::tm broken{};
  if (localtime_r(&seconds, &broken) == nullptr) return false;
  broken.tm_isdst = 0;
  std::time_t const rebuilt = mktime(&broken);
  if (rebuilt == static_cast<std::time_t>(-1)) return false;
  std::int64_t const utc = static_cast<std::int64_t>(rebuilt) - timezone;

  std::int64_t const sub_second =
      (ticks - kUnixEpochTicks) % kTicksPerSecond / kTicksPerMicrosecond * kTicksPerMicrosecond;
  std::int64_t const result = utc * kTicksPerSecond + kUnixEpochTicks + sub_second;
  if (result < 0) return false;
  return DateTimeConvert(DateTime(static_cast<std::uint64_t>(result)), &out);
}

// The six date pointers of a directory or file request, in one place.
struct DateSlots {
  explicit DateSlots(_GEN_DBLK_DATA& gen)
      : slot{&gen.cdate, &gen.mdate, &gen.bdate, &gen.adate, &gen.ext_date1, &gen.ext_date2} {}
  _DATE_TIME const** slot[kDateCount];
};

}  // namespace

std::uint16_t FS_CreateGenDBLK(FSYS_HAND_STRUCT* hand, unsigned int kind, _CREATE_DBLK* request) {
  if (hand == nullptr || request == nullptr) return static_cast<std::uint16_t>(FS_ERR_BAD_PARAMETER);

  bool const object_kind = kind == DBLK_KIND_DDB || kind == DBLK_KIND_FDB;
  bool const convert = object_kind && hand->dle != nullptr && hand->dle->date_conversion_off == 0;

  DateSlots slots(request->gen);
  _DATE_TIME const* saved[kDateCount] = {};
  _DATE_TIME converted[kDateCount] = {};
  if (convert) {
    tzset();  // once for all six dates: the zone cannot change in between
    for (int i = 0; i < kDateCount; ++i) {
      saved[i] = *slots.slot[i];
      if (is_present(saved[i]) && local_to_utc(*saved[i], converted[i]))
        *slots.slot[i] = &converted[i];
    }
  }

  FS_STATUS const status = fsys::dispatch(hand, &FS_FshBase::CreateGenDBLK, &_FUNC_LIST::CreateDBLK,
                                          FS_ERR_UNIMPLEMENTED, kind, request);

  if (convert) {
    for (int i = 0; i < kDateCount; ++i) *slots.slot[i] = saved[i];
  }
  return static_cast<std::uint16_t>(status);
}
