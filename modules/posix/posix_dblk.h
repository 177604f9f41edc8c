// Descriptor blocks of the posix module: filling one from a stat result,
// and reading back the name and OS info of a block (one the module made,
// or one a restore built with FS_CreateGenDBLK).
#pragma once
#include <sys/stat.h>

#include <string>

#include <qbfsys/dblk.h>
#include <qbfsys/fs_status.h>
#include <qbfsys/fs_types.h>

#include "posix_handle_state.h"

namespace qbposix {

// The object type of a stat mode.
OBJECT_TYPE posix_object_type(std::uint32_t mode);

// Fills `blk` (a directory block for a directory, else a file block) with
// the object `name` whose stat result is `st`. `storage` receives the OS
// info record the block points at; it must outlive the caller's use of the
// block. A name element this module put into `blk` before is released
// first. Returns 0, or the status of the block's creation.
FS_STATUS posix_fill_dblk(FSYS_HAND_STRUCT* fsh, PosixHandleState& state, DBLK* blk,
                          std::string const& name, struct stat const& st, POSIX_OS_INFO& storage);

// Gives back the block's name elements when this module put them there.
void posix_release_name(FSYS_HAND_STRUCT* fsh, PosixHandleState& state, DBLK* blk);

// The block's name as bytes; false when it has none, holds a character no
// decoded name can (posix_name_codec.h), or is not one name ('/', "." or
// "..").
bool posix_blk_name(DBLK const* blk, std::string& bytes);

// The block's OS info record; false when it has none this module can use.
bool posix_blk_info(DBLK const* blk, POSIX_OS_INFO& info);

// The stat record a restore makes the object from. A block of this module
// (its OS id and a record of a version it knows) gives its own record. A
// file or directory block of another module, or one whose record this module
// cannot read, gives a record made of the generic fields every block has: a
// directory (kind 8) or a regular file (kind 9), permissions 0755 or 0644,
// the restoring process's owner and group, and the block's modification and
// access dates (UTC, to the 100-nanosecond tick; a date not set reads as the
// time of the restore). False for a block under this module's id without a
// record it can read (damaged or forged: refused rather than filled in with
// defaults), for other kinds, and, unless `plain_directory_too`, for a
// directory block without any OS info: creating one makes a plain directory
// that never replaces what holds its name (a directory made only to hold
// what lies below it); opening one (another module that keeps no OS info for
// directories) gives it the generic record, so its dates are set.
bool posix_restore_info(DBLK const* blk, POSIX_OS_INFO& info, bool plain_directory_too = false);

}  // namespace qbposix
