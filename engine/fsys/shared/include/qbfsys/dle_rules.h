// Exclusion and agent-warning rules of a DLE, and the reasons they give the
// objects a job meets.
//
// A file system adds rules to the DLEs it finds; each rule is an exact path
// or a wildcard pattern (FS_CompareFileSpec, case-insensitive) with a 32-bit
// reason code whose meaning is the file system's. Rules are written
// relative to the DLE's root with the DLE's own delimiter between
// components ("var/cache/*.tmp" on a DLE whose delimiter is '/'); a leading
// delimiter is ignored. Patterns match the whole path: a single '*' stays
// within one component, "**" crosses components ("*.tmp" matches at the
// root only, "**.tmp" anywhere). A few lines serve a module:
//
//   DLE_AddSpecObj(dle, L"proc", DLE_RULE_PATH, MY_REASON_PSEUDO);
//   DLE_AddSpecObj(dle, L"**.tmp", DLE_RULE_PATTERN, MY_REASON_TEMPORARY);
//   DLE_AddAgentWarningObj(dle, L"var/lib/db/*", DLE_RULE_PATTERN, MY_REASON_LIVE_DB);
//
// An exact path wins over every pattern; among patterns the first added
// wins. The DLE owns its rules: they are freed with it (GEN_RemoveDLE,
// DLE_Free) or by the removal calls below.
#pragma once
#include <cstdint>

#include <qbfsys/dblk.h>
#include <qbfsys/dle.h>
#include <qbfsys/fs_export.h>
#include <qbfsys/fs_status.h>
#include <qbfsys/fs_types.h>

enum DLE_RULE_KIND : int {
  DLE_RULE_PATH = 0,     // an exact path
  DLE_RULE_PATTERN = 1,  // a wildcard pattern
};

// The longest rule, in bytes with its terminator (4-byte characters).
constexpr std::uint32_t DLE_MAX_RULE_BYTES = 32767;

// Adds an exclusion rule. An exact path added twice keeps the later reason.
// Statuses: FS_SUCCESS; FS_ERR_BAD_PARAMETER for a null DLE or rule, an
// empty rule, or an unknown kind; FS_ERR_NAME_TOO_LONG above
// DLE_MAX_RULE_BYTES; FS_ERR_NO_MEMORY.
FS_EXPORT FS_STATUS DLE_AddSpecObj(GENERIC_DLE* dle, wchar_t const* rule, DLE_RULE_KIND kind,
                                   std::uint32_t reason);
// Removes every exclusion rule of the DLE.
FS_EXPORT void DLE_RemoveSpecObjs(GENERIC_DLE* dle);
// Adds an agent-warning rule; statuses as DLE_AddSpecObj.
FS_EXPORT FS_STATUS DLE_AddAgentWarningObj(GENERIC_DLE* dle, wchar_t const* rule,
                                           DLE_RULE_KIND kind, std::uint32_t reason);
// Removes every agent-warning rule of the DLE.
FS_EXPORT void DLE_RemoveAgentWarningObjs(GENERIC_DLE* dle);

// The reason for the object at `path` (component form: components ended by
// NUL instead of the delimiter, `pathBytes` bytes with the final
// terminator; the DLE's delimiter is also taken as a separator): the exact
// path's reason, else the first matching pattern's, else 0. 0 for a null DLE
// or path or a path of 4 bytes or less. A path of 5 to 7 bytes holds no whole
// character and is looked up as the empty path (a rule for "" answers it).
FS_EXPORT std::uint32_t DLE_GetExcludeReason(GENERIC_DLE* dle, wchar_t const* path,
                                             short pathBytes);
// The same over the DLE's agent-warning rules (0 when it has none).
FS_EXPORT std::uint32_t DLE_GetWarningReason(GENERIC_DLE* dle, wchar_t const* path,
                                             short pathBytes);

// Merges the exclusion reason of the object `blk` describes into its
// obj_flags. The object's path is the handle's current path (GetCurrentPath)
// and its OS name (SizeofOSName, GetOSName), asked through the handle's
// adapter or table. Nothing happens for a null handle or block, an unbound
// handle, a DLE without exclusion rules, a block already marked
// (DBLK_OBJ_MARKED_MASK), a kind other than 8 and 9, a file name above
// 1,019 bytes or a directory name above 1,039 bytes, or when the file
// system cannot give the path.
FS_EXPORT void FS_GetSpecialAttribs(FSYS_HAND_STRUCT* hand, DBLK* blk);

// The agent-warning reason of the object, cached in blk->agent_warning and
// stored in `*flag` when given. Returns 0 when a reason was found now, or
// when the cached word is set (then whatever it holds, 0 included);
// FS_ERR_NOT_SUPPORTED when none was found on the first look (the cache then
// says "looked, nothing"), for a null handle or block, an unbound handle, a
// DLE without warning rules (`*flag` is then 0), or when the object's path
// cannot be built (`*flag` is then left as it was: no answer was found). A
// caller tells a fresh negative answer from a cached one by this difference.
// A block of a kind other than 8 or 9 stops before the file system is asked.
FS_EXPORT FS_STATUS FS_GetAgentWarningFlag(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned int* flag);
