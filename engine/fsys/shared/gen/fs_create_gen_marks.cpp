// FS_CreateGenUDB, FS_CreateGenEODB and FS_CreateGenCFDB: the marker blocks.
#include <cstring>

#include <qbfsys/create_dblk.h>
#include <qbfsys/gen.h>

namespace {

constexpr FS_STATUS kBuilt = 1;

FS_STATUS create_mark(_CREATE_DBLK* request, std::uint8_t kind) {
  if (request == nullptr || request->dblk == nullptr) return FS_ERR_BAD_PARAMETER;
  DBLK* blk = request->dblk;
  blk->blk_type = kind;
  blk->format_attrib = request->mark.format_attrib;
  blk->format_word2 = request->mark.format_word2;
  blk->format_position = request->mark.format_position;
  return kBuilt;
}

}  // namespace

FS_STATUS FS_CreateGenUDB(FSYS_HAND_STRUCT*, _CREATE_DBLK* request) {
  return create_mark(request, DBLK_KIND_UDB);
}

FS_STATUS FS_CreateGenEODB(FSYS_HAND_STRUCT*, _CREATE_DBLK* request) {
  return create_mark(request, DBLK_KIND_EODB);
}

FS_STATUS FS_CreateGenCFDB(FSYS_HAND_STRUCT*, _CREATE_DBLK* request) {
  if (request == nullptr || request->dblk == nullptr) return FS_ERR_BAD_PARAMETER;
  DBLK* blk = request->dblk;
  _CFDB_DBLK_DATA const& d = request->cfdb;
  std::memset(blk, 0, sizeof *blk);
  blk->blk_type = DBLK_KIND_CFDB;
  blk->format_attrib = d.format_attrib;
  blk->format_word2 = d.format_word2;
  blk->format_position = d.format_position;
  blk->area.cfdb.attrib1 = d.attrib1;
  blk->area.cfdb.attrib2 = d.attrib2;
  blk->area.cfdb.value1 = d.value1;
  blk->area.cfdb.value2 = d.value2;
  return kBuilt;
}
