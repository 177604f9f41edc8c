// FS_SetDefaultDBLK and the shared defaults it points requests at.
//
// The defaults are process-wide constants rather than per-request copies so
// that a request stays a plain record the caller may copy or drop at will;
// the pointers are const, so nobody can change what every request shares.
#include <cstring>

#include <qbfsys/create_dblk.h>

namespace {
constexpr std::uint16_t kDefaultYear = 1980;
constexpr std::uint16_t kEmptyWideNameBytes = sizeof(std::uint32_t);
constexpr std::uint16_t kDefaultStrmAux16 = 32;
constexpr std::uint32_t kDefaultSetCount = 1;

// A date marked not set; its fields read 1980-01-01 01:00:00.
constexpr _DATE_TIME make_default_date() {
  _DATE_TIME d{};
  d.date_valid = 0;
  d.year = kDefaultYear;
  d.month = 1;
  d.day = 1;
  d.hour = 1;
  return d;
}

_DATE_TIME const kDefaultDate = make_default_date();
std::uint32_t const kEmptyWideName = 0;

void fill_object_defaults(_GEN_DBLK_DATA& gen, std::uint8_t subtype) {
  gen.blk_subtype = subtype;
  gen.name = &kEmptyWideName;
  gen.name_size = kEmptyWideNameBytes;
  gen.cdate = gen.mdate = gen.bdate = gen.adate = &kDefaultDate;
  gen.ext_date1 = gen.ext_date2 = &kDefaultDate;
  gen.strm_aux16 = kDefaultStrmAux16;
}

void fill_volume_defaults(_VCB_DBLK_DATA& vcb) {
  vcb.media_sequence_state = VCB_SEQUENCE_UNKNOWN;
  vcb.set_count = kDefaultSetCount;
  vcb.backup_date = &kDefaultDate;
}
}  // namespace

_DATE_TIME const* FS_DefaultDate() { return &kDefaultDate; }

FS_STATUS FS_SetDefaultDBLK(FSYS_HAND_STRUCT* /*hand*/, char kind, char selector,
                            _CREATE_DBLK* request) {
  if (request == nullptr) return FS_ERR_BAD_PARAMETER;
  std::memset(&request->gen, 0, sizeof *request - offsetof(_CREATE_DBLK, gen));
  request->blk_type = static_cast<std::uint8_t>(kind);
  request->selector = static_cast<std::uint8_t>(selector);
  switch (request->blk_type) {
    case DBLK_KIND_DDB:
    case DBLK_KIND_FDB:
      fill_object_defaults(request->gen, request->selector);
      break;
    case DBLK_KIND_VCB:
      fill_volume_defaults(request->vcb);
      break;
    default:
      break;
  }
  return FS_SUCCESS;
}
