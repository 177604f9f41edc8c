// DBLK: the descriptor block of one object (a volume or backup set, a
// directory, a file, a corrupt-file marker, an end-of-data marker, a cluster
// block or an unknown block).
//
// The record is plain, 4,184 bytes, allocated by whoever needs a block and
// exchanged by pointer with separately built modules and written to backup
// media, so every size and offset below is part of the interface and pinned
// with a static_assert. Reserved bytes are kept zero by every creator.
//
// Ownership: the block does not own its name elements; they belong to the
// file-system handle's name pools (qbfsys/dblk_names.h) and are released
// through the handle. `os_info` points at data owned by whoever built the
// block.
#pragma once
#include <cstddef>
#include <cstdint>

#include <qbhost/datetime.h>

struct FS_NAME_Q_ELEM;

// ---- block kinds (`blk_type`) --------------------------------------------
constexpr std::uint8_t DBLK_KIND_UDB = 0;    // unknown block
constexpr std::uint8_t DBLK_KIND_VCB = 1;    // volume control block; also the backup-set block
constexpr std::uint8_t DBLK_KIND_DDB = 8;    // directory block; also the cluster block
constexpr std::uint8_t DBLK_KIND_FDB = 9;    // file block
constexpr std::uint8_t DBLK_KIND_CFDB = 11;  // corrupt-file block
constexpr std::uint8_t DBLK_KIND_EODB = 17;  // end-of-data block

// ---- sub-codes (`blk_subtype`) ---------------------------------------------
constexpr std::uint32_t DBLK_SUBTYPE_CLST = 34;  // a kind-8 block that is a cluster block
// File sub-codes whose GEN blocks carry two extended-attribute names.
constexpr std::uint32_t DBLK_SUBTYPE_EA_51 = 51;
constexpr std::uint32_t DBLK_SUBTYPE_EA_52 = 52;
constexpr std::uint32_t DBLK_SUBTYPE_EA_53 = 53;
constexpr std::uint32_t DBLK_SUBTYPE_EA_54 = 54;
constexpr std::uint32_t DBLK_SUBTYPE_EA_115 = 115;
constexpr std::uint32_t DBLK_SUBTYPE_EA_116 = 116;
// File sub-code whose GEN block carries the numeric record.
constexpr std::uint32_t DBLK_SUBTYPE_NUMERIC = 65;

// ---- `name_char_type` -------------------------------------------------------
constexpr std::uint16_t DBLK_NAME_NARROW = 1;  // names handed over are narrow, widened at set-up
constexpr std::uint16_t DBLK_NAME_WIDE = 2;    // names are 4-byte characters

// ---- `obj_flags` bits -------------------------------------------------------
// The GEN creators set them from the creation data; the attribute-word-1
// accessor maps them back into attribute bits (the two kinds test different
// bits on purpose).
constexpr std::uint32_t DBLK_OBJ_DIR_ATTR_BIT19 = 0x00000002;   // directory: attribute bit 0x00080000
constexpr std::uint32_t DBLK_OBJ_FILE_ATTR_BIT28 = 0x00000004;  // file: attribute bit 0x10000000
constexpr std::uint32_t DBLK_OBJ_INDICATOR = 0x00000008;        // creation data's indicator was set
constexpr std::uint32_t DBLK_OBJ_COUNTER1 = 0x00000010;         // first counter was non-zero
constexpr std::uint32_t DBLK_OBJ_FILE_ATTR_BIT19 = 0x00000020;  // file: attribute bit 0x00080000
constexpr std::uint32_t DBLK_OBJ_FILE_ATTR_BIT20 = 0x00000040;  // file: attribute bit 0x00100000
constexpr std::uint32_t DBLK_OBJ_COUNTER2 = 0x00000800;         // second counter was non-zero
constexpr std::uint32_t DBLK_OBJ_ATTR_BIT25 = 0x08000000;       // attribute bit 0x02000000

// obj_flags bits that say an object was marked already (bit 27 and bits 28
// to 31): its exclusion reason is not looked up again.
constexpr std::uint32_t DBLK_OBJ_MARKED_MASK = 0xF8000000;
// agent_warning: set once the warning reason was looked up; the low 31 bits
// hold the reason.
constexpr std::uint32_t DBLK_WARNING_CACHED = 0x80000000;

// ---- attribute word 1 bits the layer reads or maps --------------------------
constexpr std::uint32_t DBLK_ATTR1_NAME_ENCRYPTED = 0x00020000;  // the name arrives as a name stream
constexpr std::uint32_t DBLK_ATTR1_BIT19 = 0x00080000;
constexpr std::uint32_t DBLK_ATTR1_BIT20 = 0x00100000;
constexpr std::uint32_t DBLK_ATTR1_BIT25 = 0x02000000;
constexpr std::uint32_t DBLK_ATTR1_BIT28 = 0x10000000;

constexpr std::size_t DBLK_SIZE = 4184;
constexpr std::size_t DBLK_KIND_AREA_OFFSET = 88;
constexpr std::size_t DBLK_KIND_AREA_SIZE = DBLK_SIZE - DBLK_KIND_AREA_OFFSET;
// Where a GEN block's meaningful part ends (GEN_GetActualSizeDBLK).
constexpr std::size_t GEN_DBLK_ACTUAL_SIZE = 336;

// ---- per-kind areas (all start at byte 88 of the block) ---------------------

// Volume / backup-set block: the two attribute words at 88 and 608; the rest
// belongs to the volume and set creators.
struct VCB_DBLK_AREA {
  std::uint32_t attrib1;              // 88
  unsigned char reserved[516];        // 92..607
  std::uint32_t attrib2;              // 608
};

// Corrupt-file block.
struct CFDB_DBLK_AREA {
  std::uint64_t value1;               // 88: first 64-bit value of the creation data
  std::uint32_t attrib1;              // 96
  std::uint32_t attrib2;              // 100
  std::uint64_t value2;               // 104: second 64-bit value of the creation data
};

// Directory and file blocks of any file system: only the object type is
// common; the rest is the owning file system's.
struct OBJ_DBLK_AREA {
  std::uint32_t obj_type;             // 88: OBJECT_TYPE
};

// The numeric record of a GEN file block with sub-code 65.
struct GEN_NUMERIC_RECORD {
  std::uint64_t value[17];
};

// The extended record of GEN file blocks, from byte 192 on: either the
// extended-attribute names with their values, counters and dates (sub-codes
// 51-54, 115, 116) or the numeric record (sub-code 65).
struct GEN_EA_RECORD {
  FS_NAME_Q_ELEM* ea_name1;           // 192: pooled name element, or null
  FS_NAME_Q_ELEM* ea_name2;           // 200
  unsigned char ea_value1[16];        // 208: zero when the creation data had none
  unsigned char ea_value2[16];        // 224
  std::uint32_t ea_count1;            // 240
  std::uint32_t ea_count2;            // 244
  _DATE_TIME ext_date1;               // 248
  _DATE_TIME ext_date2;               // 264
};
union GEN_EXT_RECORD {
  GEN_EA_RECORD ea;
  GEN_NUMERIC_RECORD numeric;
};

// Directory and file blocks built by the generic file system.
struct GEN_DBLK_AREA {
  std::uint32_t obj_type;             // 88: OBJECT_TYPE, 0 when built
  unsigned char reserved92[12];
  std::uint64_t display_size;         // 104
  std::uint32_t attrib1;              // 112: the media attribute word
  _DATE_TIME bdate;                   // 116: backup date
  _DATE_TIME cdate;                   // 132: creation date
  _DATE_TIME mdate;                   // 148: modification date
  _DATE_TIME adate;                   // 164: access date
  std::uint32_t reserved180;
  std::uint32_t attrib2;              // 184
  std::uint32_t ext_reserved;         // 188: first word of the extended record, kept zero
  GEN_EXT_RECORD ext;                 // 192..327
  FS_NAME_Q_ELEM* ext_name;           // 328: pooled element holding the extended name, or null
};

struct DBLK {
  std::uint8_t blk_type;              // 0: DBLK_KIND_*
  unsigned char reserved1[7];
  std::uint32_t blk_subtype;          // 8: sub-code
  std::uint32_t format_attrib;        // 12: first format word
  FS_NAME_Q_ELEM* os_name;            // 16: OS path or name; a directory or file block is complete once set
  void* os_info;                      // 24: OS-specific data, not owned
  unsigned char reserved32[8];
  std::uint32_t obj_flags;            // 40: DBLK_OBJ_*; exclusion reasons are merged in
  std::uint32_t agent_warning;        // 44: cached warning reason (DBLK_WARNING_CACHED), 0: not yet
  std::uint32_t format_word2;         // 48: second format word
  unsigned char reserved52[12];
  std::uint64_t format_position;      // 64
  std::uint16_t strm_buffered;        // 72: bytes of the current stream gathered so far
  std::uint16_t strm_aux16;           // 74
  std::uint16_t name_char_type;       // 76: DBLK_NAME_NARROW or DBLK_NAME_WIDE (0 reads as wide)
  std::uint16_t os_info_size;         // 78: bytes at os_info
  std::uint8_t qbds_id;               // 80: data-stream format id
  std::uint8_t os_id;                 // 81: operating-system (data) id
  std::uint8_t os_ver;                // 82: OS version, also the data-stream format version
  unsigned char reserved83[5];
  union {                             // 88: by kind
    VCB_DBLK_AREA vcb;
    CFDB_DBLK_AREA cfdb;
    OBJ_DBLK_AREA obj;
    GEN_DBLK_AREA gen;
    unsigned char bytes[DBLK_KIND_AREA_SIZE];
  } area;
};

static_assert(sizeof(DBLK) == DBLK_SIZE, "DBLK is 4,184 bytes");
static_assert(offsetof(DBLK, blk_type) == 0, "blk_type");
static_assert(offsetof(DBLK, blk_subtype) == 8, "blk_subtype");
static_assert(offsetof(DBLK, format_attrib) == 12, "format_attrib");
static_assert(offsetof(DBLK, os_name) == 16, "os_name");
static_assert(offsetof(DBLK, os_info) == 24, "os_info");
static_assert(offsetof(DBLK, obj_flags) == 40, "obj_flags");
static_assert(offsetof(DBLK, agent_warning) == 44, "agent_warning");
static_assert(offsetof(DBLK, format_word2) == 48, "format_word2");
static_assert(offsetof(DBLK, format_position) == 64, "format_position");
static_assert(offsetof(DBLK, strm_buffered) == 72, "strm_buffered");
static_assert(offsetof(DBLK, strm_aux16) == 74, "strm_aux16");
static_assert(offsetof(DBLK, name_char_type) == 76, "name_char_type");
static_assert(offsetof(DBLK, os_info_size) == 78, "os_info_size");
static_assert(offsetof(DBLK, qbds_id) == 80, "qbds_id");
static_assert(offsetof(DBLK, os_id) == 81, "os_id");
static_assert(offsetof(DBLK, os_ver) == 82, "os_ver");
static_assert(offsetof(DBLK, area) == DBLK_KIND_AREA_OFFSET, "per-kind area");

// True for directory and file blocks: the kinds whose fields belong to a
// file system.
inline bool dblk_is_object(DBLK const* blk) {
  return blk->blk_type == DBLK_KIND_DDB || blk->blk_type == DBLK_KIND_FDB;
}
// True for the file sub-codes whose GEN blocks carry extended-attribute
// names (the extended record's GEN_EA_RECORD view).
constexpr bool dblk_is_ea_subtype(std::uint32_t subtype) {
  return subtype == DBLK_SUBTYPE_EA_51 || subtype == DBLK_SUBTYPE_EA_52 ||
         subtype == DBLK_SUBTYPE_EA_53 || subtype == DBLK_SUBTYPE_EA_54 ||
         subtype == DBLK_SUBTYPE_EA_115 || subtype == DBLK_SUBTYPE_EA_116;
}
// True for a GEN file block whose extended record holds attribute names.
inline bool dblk_has_ea_names(DBLK const* blk) {
  return blk->blk_type == DBLK_KIND_FDB && dblk_is_ea_subtype(blk->blk_subtype);
}

#define QB_DBLK_AT(field, offset) \
  static_assert(offsetof(DBLK, area) + offsetof(decltype(DBLK::area), field) == (offset), #field)
QB_DBLK_AT(vcb.attrib1, 88);
QB_DBLK_AT(vcb.attrib2, 608);
QB_DBLK_AT(cfdb.value1, 88);
QB_DBLK_AT(cfdb.attrib1, 96);
QB_DBLK_AT(cfdb.attrib2, 100);
QB_DBLK_AT(cfdb.value2, 104);
QB_DBLK_AT(obj.obj_type, 88);
QB_DBLK_AT(gen.obj_type, 88);
QB_DBLK_AT(gen.display_size, 104);
QB_DBLK_AT(gen.attrib1, 112);
QB_DBLK_AT(gen.bdate, 116);
QB_DBLK_AT(gen.cdate, 132);
QB_DBLK_AT(gen.mdate, 148);
QB_DBLK_AT(gen.adate, 164);
QB_DBLK_AT(gen.attrib2, 184);
QB_DBLK_AT(gen.ext_reserved, 188);
QB_DBLK_AT(gen.ext, 192);
QB_DBLK_AT(gen.ext.ea.ea_name1, 192);
QB_DBLK_AT(gen.ext.ea.ea_name2, 200);
QB_DBLK_AT(gen.ext.ea.ea_value1, 208);
QB_DBLK_AT(gen.ext.ea.ea_value2, 224);
QB_DBLK_AT(gen.ext.ea.ea_count1, 240);
QB_DBLK_AT(gen.ext.ea.ea_count2, 244);
QB_DBLK_AT(gen.ext.ea.ext_date1, 248);
QB_DBLK_AT(gen.ext.ea.ext_date2, 264);
QB_DBLK_AT(gen.ext_name, 328);
#undef QB_DBLK_AT
static_assert(sizeof(GEN_EXT_RECORD) == 136, "the extended record ends at byte 327");
static_assert(sizeof(GEN_DBLK_AREA) + DBLK_KIND_AREA_OFFSET == GEN_DBLK_ACTUAL_SIZE,
              "a GEN block's meaningful part ends at byte 336");
