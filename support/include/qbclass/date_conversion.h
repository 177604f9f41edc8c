// Conversion of the host's _DATE_TIME records between local time and UTC,
// through the C library's time-zone rules (TZ, tzset).
//
// Local to UTC lets the C library decide whether daylight saving applies
// (tm_isdst -1). UTC to local takes standard-time arithmetic plus the zone's
// standard offset (tm_isdst 0, minus `timezone`), which reproduces the local
// wall clock for every instant. A local time that the clock skips or repeats
// at a daylight-saving change therefore does not survive a round trip.
//
// The sub-second part of the record is carried over unchanged. A record with
// date_valid 0 converts to a record with date_valid 0.
//
// Both return true on success; false for a null pointer, a record the host
// cannot convert, or a result outside the range of _DATE_TIME, in which case
// the output (when there is one) gets date_valid 0.
#pragma once
#include <qbfsys/fs_export.h>
#include <qbhost/datetime.h>

namespace qbclass {

FS_EXPORT bool ConvertLocalDate_TimeToUTCDate_Time(_DATE_TIME* local, _DATE_TIME* utc) noexcept;
FS_EXPORT bool ConvertUTCDate_TimeToLocalDate_Time(_DATE_TIME* utc, _DATE_TIME* local) noexcept;

}  // namespace qbclass
