// Creation requests for descriptor blocks: _CREATE_DBLK with its per-kind
// payloads, the default filling FS_SetDefaultDBLK and the creation
// dispatcher FS_CreateGenDBLK.
//
// A restore describes each object it meets on the media with a request and
// lets the owning file system build the block:
//
//   DBLK blk;
//   _CREATE_DBLK req;
//   FS_SetDefaultDBLK(fsh, DBLK_KIND_FDB, 0, &req);
//   req.dblk = &blk;
//   req.gen.dblk = &blk;
//   req.gen.name = name; req.gen.name_size = name_bytes; ...
//   FS_CreateGenDBLK(fsh, DBLK_KIND_FDB, &req);
//
// Both records are plain and trivially destructible: they own nothing. The
// name, date, OS-info and extended-part pointers stay the caller's; the
// creators copy what they point at into the block (names into pooled name
// elements of the handle).
#pragma once
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include <qbfsys/dblk.h>
#include <qbfsys/fs_export.h>
#include <qbfsys/fs_status.h>
#include <qbfsys/fs_types.h>
#include <qbhost/datetime.h>

// Creation data of directory and file blocks (the generic creators and any
// module's CreateDBLK read it). A date counts as present when its pointer is
// non-null and the record's `date_valid` is non-zero.
struct _GEN_DBLK_DATA {
  std::uint8_t blk_subtype;           // sub-code, copied to the block's blk_subtype
  DBLK* dblk;                         // destination block
  std::uint8_t os_id;
  std::uint8_t qbds_id;
  std::uint8_t os_ver;
  std::uint64_t display_size;
  std::uint32_t indicator;            // non-zero sets DBLK_OBJ_INDICATOR
  std::uint32_t media_attrib;         // attribute word 1 as stored on the media (DBLK_ATTR1_*)
  std::uint32_t attrib2;              // attribute word 2
  std::uint32_t format_attrib;        // first format word
  std::uint32_t format_word2;         // second format word
  std::uint64_t format_position;
  std::uint16_t name_char_type;       // to the block's name_char_type (DBLK_NAME_NARROW: widen names)
  std::uint16_t strm_aux16;           // to the block's strm_aux16
  void* os_info;                      // to the block's os_info; not copied, not owned
  std::uint16_t os_info_size;
  std::uint32_t counter1;             // non-zero sets DBLK_OBJ_COUNTER1
  std::uint32_t counter2;             // non-zero sets DBLK_OBJ_COUNTER2
  void const* name;                   // the object's name; null or size 0: an empty name
  std::uint16_t name_size;            // bytes
  _DATE_TIME const* cdate;            // creation date
  _DATE_TIME const* mdate;            // modification date
  _DATE_TIME const* bdate;            // backup date
  _DATE_TIME const* adate;            // access date
  // The extended part (file sub-codes 51-54, 115, 116 and 65).
  void const* ea_name1;               // extended-attribute name 1
  std::uint16_t ea_name1_size;
  void const* ea_name2;               // extended-attribute name 2
  std::uint16_t ea_name2_size;
  unsigned char const* ea_value1;     // 16 bytes, or null for zeros
  unsigned char const* ea_value2;     // 16 bytes, or null for zeros
  std::uint32_t ea_count1;
  std::uint32_t ea_count2;
  _DATE_TIME const* ext_date1;        // fifth date
  _DATE_TIME const* ext_date2;        // sixth date
  GEN_NUMERIC_RECORD const* numeric;  // sub-code 65; null for zeros
  wchar_t const* ext_name;            // extended name, terminated; null for none
};

// Creation data of volume and backup-set blocks (kind 1).
struct _VCB_DBLK_DATA {
  std::uint32_t attrib1;
  std::uint32_t attrib2;
  std::uint16_t string_type;          // DBLK_NAME_NARROW or DBLK_NAME_WIDE
  void const* volume_name;
  std::uint16_t volume_name_size;
  void const* machine_name;
  std::uint16_t machine_name_size;
  void const* set_name;
  std::uint16_t set_name_size;
  void const* set_description;
  std::uint16_t set_description_size;
  std::uint32_t set_number;
  std::uint32_t media_id;
  std::uint16_t media_sequence;
  std::uint8_t media_sequence_state;  // VCB_SEQUENCE_UNKNOWN until the media says
  std::uint32_t set_count;            // backup sets the block describes; 1 by default
  _DATE_TIME const* backup_date;
};
constexpr std::uint8_t VCB_SEQUENCE_UNKNOWN = 255;

// Creation data of corrupt-file blocks (kind 11).
struct _CFDB_DBLK_DATA {
  std::uint32_t format_attrib;
  std::uint32_t format_word2;
  std::uint64_t format_position;
  std::uint32_t attrib1;
  std::uint32_t attrib2;
  std::uint64_t value1;               // to the block's byte 88
  std::uint64_t value2;               // to the block's byte 104
};

// Creation data of the marker blocks (kinds 0 and 17).
struct _MARK_DBLK_DATA {
  std::uint32_t format_attrib;
  std::uint32_t format_word2;
  std::uint64_t format_position;
};

// The creation request. FS_SetDefaultDBLK keeps its first 16 bytes apart
// from the kind and the selector, so `dblk` may be set before or after the
// defaults.
struct _CREATE_DBLK {
  DBLK* dblk;                         // 0: destination block
  std::uint8_t blk_type;              // 8: requested kind (DBLK_KIND_*)
  std::uint8_t selector;              // 9: sub-code given to FS_SetDefaultDBLK
  unsigned char reserved[6];
  union {                             // 16: payload of the kind
    _GEN_DBLK_DATA gen;               // kinds 8 and 9
    _VCB_DBLK_DATA vcb;               // kind 1
    _CFDB_DBLK_DATA cfdb;             // kind 11
    _MARK_DBLK_DATA mark;             // kinds 0 and 17
  };
};

static_assert(offsetof(_CREATE_DBLK, blk_type) == 8, "kind at byte 8");
static_assert(offsetof(_CREATE_DBLK, selector) == 9, "selector at byte 9");
static_assert(offsetof(_CREATE_DBLK, gen) == 16, "payload after the first 16 bytes");
static_assert(sizeof(_CREATE_DBLK) >= 16 + 88, "the cleared area is at least 88 bytes");
static_assert(std::is_trivially_destructible<_CREATE_DBLK>::value, "a request owns nothing");
static_assert(std::is_trivially_destructible<_GEN_DBLK_DATA>::value, "creation data owns nothing");

// The shared default date: 1980-01-01 01:00:00 marked not set (date_valid 0).
FS_EXPORT _DATE_TIME const* FS_DefaultDate();

// Clears the request beyond its first 16 bytes, stores `kind` and `selector`
// and fills the defaults of the kind:
// - directory (8) and file (9): an empty wide name (a shared four-byte zero
//   value of size 4), every date pointer at FS_DefaultDate(), strm_aux16 32,
//   the sub-code `selector`; everything else zero. A file block thus starts
//   as an empty-named object of size 0 without dates, like a directory.
// - volume (1): every count, size and pointer zero, media_sequence_state
//   VCB_SEQUENCE_UNKNOWN, set_count 1, backup_date FS_DefaultDate().
// - any other kind: cleared only.
// The handle is not used and may be null. Returns FS_SUCCESS, or
// FS_ERR_BAD_PARAMETER for a null request.
FS_EXPORT FS_STATUS FS_SetDefaultDBLK(FSYS_HAND_STRUCT* hand, char kind, char selector,
                                      _CREATE_DBLK* request);

// Asks the handle's file system to build a block of `kind` from `request`
// (the adapter's CreateGenDBLK when the handle has one, else table slot 54)
// and returns the low 16 bits of its status.
//
// For kinds 8 and 9, when the handle is attached to a DLE whose
// `date_conversion_off` is 0, each present date of request->gen is first
// converted from the media's local form to UTC: the file system sees
// pointers to converted copies, and the caller's six pointers are put back
// before this returns (the caller never sees the copies). A date the host
// cannot read (a field out of range) is passed on as it stands.
//
// Statuses: the file system's, low 16 bits; 0xFE49 (FS_ERR_BAD_PARAMETER)
// for a null handle or request; 0xFE48 (FS_ERR_UNIMPLEMENTED) when the file
// system offers no creation operation.
FS_EXPORT std::uint16_t FS_CreateGenDBLK(FSYS_HAND_STRUCT* hand, unsigned int kind,
                                         _CREATE_DBLK* request);
