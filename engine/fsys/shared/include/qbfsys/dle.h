// Drive list elements (DLEs) and the head of their tree.
//
// A GENERIC_DLE is one thing that can be backed up or restored: a machine, a
// volume, a database. DLEs form a tree under one HEAD_DLE: the top-level
// elements in the head's queue, each element with a queue of children. The
// records are plain: modules create them (DLE_Create), the tree links them,
// and the owning file system frees them through its remove-DLE operation.
//
// Type and file-system index. The low byte of `type` is the element's
// file-system type byte: the index of the file system that owns it, except
// that an element whose `flags2` carries both bits 0x60 belongs to index 23.
// Bit 15 of `type` (DLE_WEAK) marks a weak entry, which a name search only
// keeps as provisional. Type byte 7 is a machine element and 5 a remote
// machine, as far as attaching and the child check are concerned.
#pragma once
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <qbfsys/fs_export.h>
#include <qbfsys/fs_status.h>
#include <qbfsys/fs_types.h>
#include <qbhost/queue.h>

constexpr std::uint32_t DLE_WEAK = 0x8000;               // bit 15 of type and subtype
constexpr std::uint32_t DLE_FLAGS2_INDEX23 = 0x60;       // both bits: owned by index 23
constexpr std::uint32_t DLE_STATUS_UNAVAILABLE = 0x40000;
constexpr std::uint32_t DLE_STATUS_AVAILABLE_OVERRIDE = 0x2;  // with 0x40000: still attachable
constexpr std::uint32_t DLE_STATUS_MAYBE_REMOTE = 0x80;  // locality is checked at attach
constexpr std::uint32_t DLE_FEATURE1_UNSELECTED = 0x40000000;  // carries an unselect record
constexpr std::uint32_t DLE_FEATURE2_NO_ATTACH = 0x4000;  // not attached when expanded
constexpr std::uint8_t DLE_NAME_FLAG_ALTERNATE = 0x80;   // display the alternate name

// Type bytes (and subtypes) that the layer itself tests; every other value
// belongs to the file system that made the element.
constexpr std::uint32_t DLE_TYPE_BYTE_MASK = 0xFF;
constexpr std::uint32_t DLE_TYPE_REMOTE_MACHINE = 5;  // a machine reached over the network
constexpr std::uint32_t DLE_SUBTYPE_SHARE_HOST = 4;   // type 5: also found as "name\share"
constexpr std::uint32_t DLE_TYPE_LOCAL = 7;           // this machine and its file systems
// Database instances: the two types stand for each other in name searches.
constexpr std::uint32_t DLE_TYPE_INSTANCE = 21;
constexpr std::uint32_t DLE_TYPE_INSTANCE_ALT = 36;
// Instance subtypes whose names read "host\path(instance)": found by the
// part from '(' on.
constexpr std::uint32_t DLE_SUBTYPE_INSTANCE_PATHS[] = {6, 9, 12};
// `state` of a remote element that cannot be reached.
constexpr std::uint32_t DLE_STATE_UNREACHABLE = 2;
// Types that are never remote machines: attaching does not check them.
constexpr std::uint32_t DLE_TYPES_NEVER_REMOTE[] = {1, 2, 3, 4, 6, DLE_TYPE_LOCAL};

// An unselect record: why an element was deselected (the third member).
struct DLE_UNSELECT_RECORD {
  std::uint64_t reserved0;
  std::uint64_t reserved1;
  std::uint64_t reason;
};

// One exclusion pattern (component form, wide characters stored after the
// entry's fixed part, `size` bytes with the terminator).
struct DLE_SPEC_PATTERN {
  DLE_SPEC_PATTERN* next;
  std::uint32_t reason;
  std::int16_t size;
  std::int16_t reserved;
  wchar_t pattern[1];
};

// Exact exclusion paths (component form) with their reason codes.
using DLE_EXCLUDE_PATHS = std::map<std::wstring, std::uint32_t>;

// Agent-warning rules: exact paths and patterns with their reason codes.
struct DLE_AGENT_WARNINGS {
  std::map<std::wstring, std::uint32_t> paths;
  std::vector<std::pair<std::wstring, std::uint32_t>> patterns;
};

// An index over a rule set's patterns, built by the layer on first lookup.
struct DLE_RULE_INDEX;

// Data a file system hangs on its DLEs; `destroy` frees it with the DLE.
struct DLE_FSYS_DATA {
  void (*destroy)(DLE_FSYS_DATA* self);
};

struct GENERIC_DLE {
  // Fields the navigation and search rely on, in this order.
  _Q_ELEM q;                        // sibling links; a DLE pointer is its queue element
  _Q_HEADER child_q;                // children: first, last, count
  std::uint32_t type;               // low byte: file-system type byte; bit 15: weak
  std::uint32_t subtype;            // bit 15 likewise a flag
  wchar_t* device_name;             // owned
  std::uint32_t device_name_size;   // bytes, terminator included
  wchar_t name_delimiter;           // separates the parts of the device name
  std::int32_t hidden;              // non-zero: left out of ordinary walks
  wchar_t* secondary_name;          // owned, may be null
  wchar_t* simple_name;             // owned, may be null: the element's short name

  // Tree, state and attach.
  HEAD_DLE* head;                   // the tree the element belongs to
  GENERIC_DLE* parent;              // null for a top-level element
  std::uint32_t status_flags;       // DLE_STATUS_*
  std::uint32_t flags2;             // second flag word
  std::uint16_t attach_count;       // handles attached to the element
  std::uint16_t attach_reserved;
  std::uint32_t state;              // DLE_STATE_UNREACHABLE or the file system's own
  std::uint32_t top_level_flag;     // non-zero: kept in the head's second queue
  std::uint8_t name_flags;          // DLE_NAME_FLAG_ALTERNATE
  std::uint8_t dataId;
  std::uint8_t qbdsId;
  std::uint8_t qbdsVer;
  std::uint32_t feature1;           // first feature word
  std::uint32_t feature2;           // second feature word
  std::uint32_t date_conversion_off; // non-zero: FS_CreateGenDBLK keeps media dates as they are
  std::uint32_t alt_name_owned;     // non-zero: alt_name is freed with the element
  wchar_t* alt_name;                // alternate (display) name
  DLE_UNSELECT_RECORD* unselect;    // owned, may be null

  // Rules about the objects below the element, best changed through
  // DLE_AddSpecObj, DLE_AddAgentWarningObj and their removal calls. A module
  // may also link, unlink or replace pattern entries itself: each lookup
  // checks the pattern lists (entries, order, reasons, sizes) against what
  // its index was built from and builds the index again when they differ.
  // Editing a pattern's characters in place is not noticed; replace the
  // entry instead. Changes must not race with lookups.
  DLE_SPEC_PATTERN* exclude_patterns;   // owned list
  DLE_EXCLUDE_PATHS* exclude_paths;     // owned, may be null
  DLE_AGENT_WARNINGS* agent_warnings;   // owned, may be null

  DLE_FSYS_DATA* fsys_data;         // owned by the file system, freed with the element

  // The layer's indexes over the patterns above, built on first lookup.
  // Kept last so that the fields modules read keep their places.
  DLE_RULE_INDEX* exclude_index;        // owned, may be null
  DLE_RULE_INDEX* warning_index;        // owned, may be null
};

static_assert(offsetof(GENERIC_DLE, q) == 0, "a DLE pointer is its queue element");
static_assert(offsetof(GENERIC_DLE, child_q) == sizeof(_Q_ELEM), "children follow the links");

struct HEAD_DLE {
  _Q_HEADER dle_q;                  // top-level elements
  GENERIC_DLE* further;             // one further element released with the tree
  GENERIC_DLE* default_dle;         // returned by DLE_FindByName for a null name
  _Q_HEADER pdi_q;                  // elements searched by DLE_FindPdiByName
  GENERIC_DLE* current;             // the element being worked on, if any
  std::uint32_t update_status;      // set to 0 by each drive-finding round
  std::uint32_t reserved0;
  unsigned char reserved[520 - 80];
};
static_assert(sizeof(HEAD_DLE) == 520, "the head is one 520-byte block");
static_assert(offsetof(HEAD_DLE, dle_q) == 0, "a head is also its top-level queue");

// ---- navigation and search ------------------------------------------------
// Walks. `includeHidden` false skips elements whose `hidden` is non-zero.
// Each sets the cursor to the element found, or null at the end of the list
// with FS_STATUS_NO_MORE_DLE; FS_ERR_BAD_PARAMETER for a null out/cursor.
// The elements stay the tree's.
// The first top-level element of the tree (null head: the end).
FS_EXPORT FS_STATUS DLE_GetFirst(HEAD_DLE* head, GENERIC_DLE** out, bool includeHidden);
// The sibling after `*cursor` (a null cursor: the end).
FS_EXPORT FS_STATUS DLE_GetNext(GENERIC_DLE** cursor, bool includeHidden);
// The sibling before `*cursor` (a null cursor: the end).
FS_EXPORT FS_STATUS DLE_GetPrev(GENERIC_DLE** cursor, bool includeHidden);
// The first child of `parent` (a null parent: the end).
FS_EXPORT FS_STATUS DLE_GetFirstChild(GENERIC_DLE* parent, GENERIC_DLE** out, bool includeHidden);
// The element's short name: its simple name when set, else the part of its
// device name after the last delimiter (the whole name without one); null
// for a null element or no name. The text is the element's own.
FS_EXPORT wchar_t* DLE_GetSimpleName(GENERIC_DLE* dle);
// Inserts into the head's top-level list in sibling order. Because a head
// begins with its queue, the child queue of a DLE may be passed as the head.
FS_EXPORT void DLE_QueueInsert(HEAD_DLE* head, GENERIC_DLE* dle);
// Finds the element named `name` of type `type` (-1: any type; types 21
// and 36 match each other), depth first below `parent` or in the whole tree,
// children before their element. A match without the weak bit (DLE_WEAK)
// ends the search; a weak match is kept until a later one replaces it. A
// null name gives the head's default element. Returns FS_SUCCESS with
// `*out` set, or FS_ERR_NOT_SUPPORTED when nothing matches (or there is no
// default element).
FS_EXPORT FS_STATUS DLE_FindByName(HEAD_DLE* head, wchar_t const* name, short type,
                                   GENERIC_DLE** out, GENERIC_DLE* parent);
// Finds an element of the head's PDI list by name (and, in the second form,
// by a second name too). FS_SUCCESS with `*out` set, or
// FS_ERR_NOT_SUPPORTED for no match, a null head or a null name.
FS_EXPORT FS_STATUS DLE_FindPdiByName(HEAD_DLE* head, wchar_t const* name, short ignored,
                                      GENERIC_DLE** out);
// The same, also requiring the secondary name to equal `secondName` when
// that is given; statuses as above.
FS_EXPORT FS_STATUS DLE_FindPdiByName(HEAD_DLE* head, wchar_t const* name,
                                      wchar_t const* secondName, short ignored, GENERIC_DLE** out);

// ---- list maintenance -----------------------------------------------------
// Creates the tree head and fills it by asking the file systems to find
// their drives (DLE_UpdateList). The caller owns `*out` and frees it with
// FS_DeinitDleList, also on failure when `*out` is set. Statuses:
// FS_SUCCESS; FS_ERR_INIT_FAILED when no drive was found;
// FS_ERR_BAD_PARAMETER for a null `out`; FS_ERR_NO_MEMORY.
FS_EXPORT FS_STATUS FS_InitDleList(HEAD_DLE** out, QB_CFG* cfg);
// Removes every element through its file system's remove operation and
// frees the head. Nothing for a null head.
FS_EXPORT void FS_DeinitDleList(HEAD_DLE* head);
// Asks every file system, in the find_order passes, to find its drives; a
// failing file system is reported and does not stop the others. Returns
// FS_SUCCESS.
FS_EXPORT FS_STATUS DLE_UpdateList(HEAD_DLE* head, QB_CFG* cfg);
// Asks file system `fsIndex` alone to find its drives. Returns its status;
// FS_ERR_UNIMPLEMENTED when it cannot; FS_ERR_BAD_PARAMETER (printed) for a
// null head or configuration or an index above 50.
FS_EXPORT FS_STATUS DLE_UpdateSingleDriveType(HEAD_DLE* head, QB_CFG* cfg, unsigned char fsIndex);
// Asks file system `fsIndex` to add the children of `dle` (its object, else
// its table slot); what that returns is not passed on. Returns FS_SUCCESS;
// FS_ERR_NOT_SUPPORTED for an index above 50 or a file system that cannot;
// FS_ERR_BAD_PARAMETER (printed) for a null DLE or configuration.
FS_EXPORT FS_STATUS DLE_AddChildren(GENERIC_DLE* dle, unsigned short fsIndex, QB_CFG* cfg);
// Marks unavailable the children of a machine element (type 7) that may be
// remote: children of index 23, non-machine children other than remote
// type-5 ones, and type-5 children that cannot be reached (state 2) unless
// `flags` has FS_ATTACH_ALLOW_REMOTE. The result is, in this order: the
// element's index-23 bits (DLE_FLAGS2_INDEX23 masked) when both are set, or
// the element is no machine or has no children; 1 when the element is
// local; else the walk's end status FS_STATUS_NO_MORE_DLE. 0 for null.
FS_EXPORT std::uint32_t CheckChildren(GENERIC_DLE* dle, unsigned short flags);
// Removes `dle` and its subtree, children first, each through its own file
// system's remove operation (which unlinks and frees it). Unless `force`,
// an element whose subtree reported 1 (an element that stays) is kept.
// Returns 1 when something stayed, else 0.
FS_EXPORT FS_STATUS DLE_RemoveRecurse(GENERIC_DLE* dle, int force);
// DLE_RemoveRecurse without force. Returns 0.
FS_EXPORT FS_STATUS DLE_Remove(HEAD_DLE* head, GENERIC_DLE* dle);

// Locality. FS_IsLocalMachine answers true for every name. FS_IsLocalDLE
// answers non-zero unless the element's status flags carry
// DLE_STATUS_MAYBE_REMOTE: such a machine element is treated as another
// machine's, whose unusable children CheckChildren marks unavailable.
FS_EXPORT bool FS_IsLocalMachine(wcstring const& name);
// 1 unless the element carries DLE_STATUS_MAYBE_REMOTE (then 0); 0 for null.
FS_EXPORT std::uint32_t FS_IsLocalDLE(GENERIC_DLE* dle);

// ---- creating and freeing elements (for modules) --------------------------
// Allocates a zeroed DLE named `deviceName` (copied), with the given type,
// subtype and name delimiter, and links it in sibling order under `parent`
// or, with no parent, at the top level of `head`. The element's head is
// `head` (or the parent's). Returns 0, FS_ERR_BAD_PARAMETER for a null or
// empty name or neither head nor parent, FS_ERR_NO_MEMORY.
FS_EXPORT FS_STATUS DLE_Create(HEAD_DLE* head, GENERIC_DLE* parent, wchar_t const* deviceName,
                               std::uint32_t type, std::uint32_t subtype, wchar_t delimiter,
                               GENERIC_DLE** out);
enum DLE_NAME_KIND { DLE_NAME_DEVICE, DLE_NAME_SECONDARY, DLE_NAME_SIMPLE, DLE_NAME_ALTERNATE };
// Replaces one of the element's owned names (device, secondary, simple or
// alternate) with a copy of `text` (null clears it); the element owns the
// copy. Returns FS_SUCCESS; FS_ERR_BAD_PARAMETER for a null element or a
// null device name; FS_ERR_NO_MEMORY.
FS_EXPORT FS_STATUS DLE_SetName(GENERIC_DLE* dle, DLE_NAME_KIND kind, wchar_t const* text);
// Frees the element's owned fields and the record. The element must already
// be unlinked; its children are not touched.
FS_EXPORT void DLE_Free(GENERIC_DLE* dle);
// The owning file-system index: 23 for both bits 0x60 of flags2, else the
// type byte.
inline unsigned DLE_FsysIndex(GENERIC_DLE const* dle) {
  return (dle->flags2 & DLE_FLAGS2_INDEX23) == DLE_FLAGS2_INDEX23 ? 23u : (dle->type & DLE_TYPE_BYTE_MASK);
}
// The name shown to people: the alternate name when the name flags say so
// and it is set, else the device name (may be null).
inline wchar_t const* DLE_DisplayName(GENERIC_DLE const* dle) {
  if ((dle->name_flags & DLE_NAME_FLAG_ALTERNATE) && dle->alt_name) return dle->alt_name;
  return dle->device_name;
}

// Prints the tree of `head` under `title` through the host's debug print, as
// the layer's own diagnostics print it: a line of stars, the title, one line
// per element (hidden ones included, each subtree indented by 4 more spaces,
// at most 154) and "End of List". A null head prints the frame alone. For
// hosts that show the tree to a person.
FS_EXPORT void DLE_PrintTree(HEAD_DLE const* head, wchar_t const* title);
