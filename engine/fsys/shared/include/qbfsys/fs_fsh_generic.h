// FS_FshGeneric: FS_FshLegacy plus a description of a block as a property
// tree, for module authors and support tools.
//
// GetDblkExtendedProperties adds to `tree`, in this order:
//   "kind" (uint32, blk_type), "kind_name" (str: "UDB", "VCB", "DDB",
//   "FDB", "CFDB", "EODB", "CLST" or "unknown"), "subtype" (uint32),
//   "obj_flags" (uint32), "attrib1" and "attrib2" (uint32, through the block
//   accessors, so the owning file system answers for directory and file
//   blocks), "os_id", "os_ver", "qbds_id" (uint32), "delimiter" (str, the
//   path delimiter of the OS id), "name_char_type" (uint32), "os_info_size"
//   (uint32), "format_attrib", "format_word2" (uint32), "format_position"
//   (uint64); "name" (str) when the block has an OS name element (4-byte
//   characters, up to its terminator); and for directory and file blocks
//   whose table has a size slot, "display_size" (uint64, the low 32 bits the
//   file system reports) and the dates it reports as "cdate", "mdate",
//   "bdate", "adate" (str, "YYYY-MM-DD hh:mm:ss.fffffff") when set.
// Returns 0; FS_ERR_BAD_PARAMETER for a null handle or block, or when the
// tree refuses a property (a name already there, a null tree);
// FS_ERR_NO_MEMORY when memory runs out. Properties added before a refusal
// stay in the tree.
#pragma once
#include <qbfsys/fs_fsh_legacy.h>

// The adapter GEN_OpenSys installs: FS_FshLegacy's forwarding, plus the
// block description above.
class FS_EXPORT FS_FshGeneric : public FS_FshLegacy {
 public:
  FS_FshGeneric() = default;
  FS_STATUS GetDblkExtendedProperties(FSYS_HAND_STRUCT* hand, DBLK* blk,
                                      fs_property_tree& tree) override;
  ~FS_FshGeneric() override;
};
