// GEN_CreateFDB, GEN_CreateDDB and GEN_CreateDBLK: directory and file blocks
// built from the media's description.
//
// A name that cannot be set up fails the creation but the other parts are
// still built, and the block stays consistent: every element it got is
// recorded in it, so GEN_ReleaseBlk gives everything back. The status is the
// first failure among the OS name, the extended-attribute names and the
// extended name, in that order. An extended name above the largest name
// element (32,767 bytes) is refused with FS_ERR_NAME_TOO_LONG rather than cut
// to 16 bits.
#include <cstring>
#include <cwchar>

#include <qbfsys/create_dblk.h>
#include <qbfsys/dblk_names.h>
#include <qbfsys/gen.h>
#include <qbfsys/name_pool.h>

namespace {

constexpr std::size_t kEaValueBytes = 16;
constexpr std::uint32_t kWideChar = sizeof(wchar_t);
constexpr std::uint32_t kEmptyWideName = kWideChar;  // a terminator alone

std::uint32_t object_flags(_GEN_DBLK_DATA const& d, bool file) {
  std::uint32_t flags = 0;
  if (d.indicator != 0) flags |= DBLK_OBJ_INDICATOR;
  if (d.counter1 != 0) flags |= DBLK_OBJ_COUNTER1;
  if (d.counter2 != 0) flags |= DBLK_OBJ_COUNTER2;
  if (file) {
    if (d.media_attrib & DBLK_ATTR1_BIT28) flags |= DBLK_OBJ_FILE_ATTR_BIT28;
    if (d.media_attrib & DBLK_ATTR1_BIT19) flags |= DBLK_OBJ_FILE_ATTR_BIT19;
    if (d.media_attrib & DBLK_ATTR1_BIT20) flags |= DBLK_OBJ_FILE_ATTR_BIT20;
  } else if (d.media_attrib & DBLK_ATTR1_BIT19) {
    flags |= DBLK_OBJ_DIR_ATTR_BIT19;
  }
  return flags;
}

void copy_date(_DATE_TIME const* from, _DATE_TIME& to) { to = from != nullptr ? *from : _DATE_TIME{}; }

void copy_value(unsigned char const* from, unsigned char (&to)[kEaValueBytes]) {
  if (from != nullptr) std::memcpy(to, from, kEaValueBytes);
  else std::memset(to, 0, kEaValueBytes);
}

FS_STATUS set_ea_part(FSYS_HAND_STRUCT* hand, DBLK* blk, _GEN_DBLK_DATA const& d) {
  GEN_EA_RECORD& ea = blk->area.gen.ext.ea;
  copy_value(d.ea_value1, ea.ea_value1);
  copy_value(d.ea_value2, ea.ea_value2);
  ea.ea_count1 = d.ea_count1;
  ea.ea_count2 = d.ea_count2;
  copy_date(d.ext_date1, ea.ext_date1);
  copy_date(d.ext_date2, ea.ext_date2);
  auto* name1 = static_cast<unsigned char*>(const_cast<void*>(d.ea_name1));
  auto* name2 = static_cast<unsigned char*>(const_cast<void*>(d.ea_name2));
  FS_STATUS status =
      FS_SetupExtendedAttribNameInGenDBLK(hand, blk, name1, d.ea_name1_size, GEN_EA_NAME_1, 0);
  if (status == FS_SUCCESS)
    status = FS_SetupExtendedAttribNameInGenDBLK(hand, blk, name2, d.ea_name2_size, GEN_EA_NAME_2, 0);
  return status;
}

// The extended name in an element of its own; none for an empty one.
FS_STATUS set_ext_name(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t const* text) {
  if (text == nullptr) return FS_SUCCESS;
  std::size_t const length = std::wcslen(text);
  std::size_t const bytes = (length + 1) * kWideChar;
  if (bytes <= kEmptyWideName) return FS_SUCCESS;
  if (bytes > FS_MAX_NAME_BYTES) return FS_ERR_NAME_TOO_LONG;
  FS_NAME_Q_ELEM* element = FS_AllocPathOrName(hand, static_cast<std::uint16_t>(bytes));
  if (element == nullptr) return FS_ERR_NO_MEMORY;
  std::memcpy(element->buffer, text, bytes);
  element->size = static_cast<std::uint16_t>(bytes);
  blk->area.gen.ext_name = element;
  return FS_SUCCESS;
}

FS_STATUS create(FSYS_HAND_STRUCT* hand, _GEN_DBLK_DATA* data, std::uint8_t kind) {
  if (hand == nullptr || data == nullptr || data->dblk == nullptr) return FS_ERR_BAD_PARAMETER;
  _GEN_DBLK_DATA const& d = *data;
  DBLK* blk = d.dblk;
  bool const file = kind == DBLK_KIND_FDB;
  std::memset(blk, 0, sizeof *blk);
  blk->blk_type = kind;
  blk->blk_subtype = d.blk_subtype;
  blk->format_attrib = d.format_attrib;
  blk->format_word2 = d.format_word2;
  blk->format_position = d.format_position;
  blk->os_id = d.os_id;
  blk->qbds_id = d.qbds_id;
  blk->os_ver = d.os_ver;
  blk->name_char_type = d.name_char_type;
  blk->strm_aux16 = d.strm_aux16;
  blk->os_info = d.os_info;
  blk->os_info_size = d.os_info_size;
  blk->strm_buffered = 0;
  blk->obj_flags = object_flags(d, file);

  GEN_DBLK_AREA& gen = blk->area.gen;
  gen.attrib1 = d.media_attrib;
  gen.attrib2 = d.attrib2;
  gen.display_size = d.display_size;
  copy_date(d.bdate, gen.bdate);
  copy_date(d.cdate, gen.cdate);
  copy_date(d.mdate, gen.mdate);
  copy_date(d.adate, gen.adate);

  // Every part is built even when the OS name could not be set up, so the
  // block carries all that the media described; the first failure among the
  // names (OS name, extended-attribute names, extended name) is returned.
  FS_STATUS status = FS_SUCCESS;
  auto keep_first = [&status](FS_STATUS next) {
    if (status == FS_SUCCESS) status = next;
  };
  if ((d.media_attrib & DBLK_ATTR1_NAME_ENCRYPTED) == 0) {
    auto* name = static_cast<unsigned char*>(const_cast<void*>(d.name));
    keep_first(FS_SetupOSPathOrNameInDBLK(hand, blk, name, d.name_size, 0));
  }
  if (file && dblk_is_ea_subtype(d.blk_subtype)) keep_first(set_ea_part(hand, blk, d));
  if (file && d.blk_subtype == DBLK_SUBTYPE_NUMERIC && d.numeric != nullptr)
    gen.ext.numeric = *d.numeric;
  keep_first(set_ext_name(hand, blk, d.ext_name));
  return status;
}

}  // namespace

FS_STATUS GEN_CreateFDB(FSYS_HAND_STRUCT* hand, _GEN_DBLK_DATA* data) {
  return create(hand, data, DBLK_KIND_FDB);
}

FS_STATUS GEN_CreateDDB(FSYS_HAND_STRUCT* hand, _GEN_DBLK_DATA* data) {
  return create(hand, data, DBLK_KIND_DDB);
}

FS_STATUS GEN_CreateDBLK(FSYS_HAND_STRUCT* hand, unsigned int kind, _CREATE_DBLK* request) {
  constexpr FS_STATUS kNotBuilt = 1;
  if (request == nullptr) return FS_ERR_BAD_PARAMETER;
  if (kind != DBLK_KIND_DDB && kind != DBLK_KIND_FDB) return kNotBuilt;
  if (request->gen.dblk == nullptr) request->gen.dblk = request->dblk;
  return kind == DBLK_KIND_DDB ? GEN_CreateDDB(hand, &request->gen) : GEN_CreateFDB(hand, &request->gen);
}
