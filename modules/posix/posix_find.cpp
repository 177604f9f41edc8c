// Listing the current directory: FindFirstObj, FindNextObj, FindObjClose,
// GetCurrentDDB and ReleaseBlk.
//
// Each level keeps its own listing, so a caller may enter a directory found
// by a listing, list it, come back up and go on with the listing above.
// An entry that vanishes or cannot be examined between listing and
// examining is printed with its path and reason and passed over: there is
// no object left to describe, and the walk goes on.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include <qbfsys/fs_filespec.h>
#include <qbfsys/gen.h>
#include <qbfsys/handles.h>

#include "posix_dblk.h"
#include "posix_fsys.h"
#include "posix_name_codec.h"

namespace qbposix {
namespace {

constexpr std::size_t kEntriesBuffer = 32 * 1024;  // directory entries read at once
constexpr int kCaseSensitive = 1;                  // names on Linux differ by case
constexpr int kWholeName = 0;                      // no partial matches
constexpr int kClassicRules = 0;                   // FS_CompareFileSpec flags: none

// Takes the name's bytes so that a listing of everything (the usual case)
// does not decode each name once here and again when its block is filled.
bool matches(std::wstring const& spec, std::string const& bytes) {
  if (spec.empty() || spec == L"*") return true;
  std::wstring name = posix_decode_name(bytes);
  std::wstring pattern = spec;
  return FS_CompareFileSpec(&name[0], static_cast<short>(name.size()), &pattern[0],
                            static_cast<short>(pattern.size()), kCaseSensitive, kWholeName,
                            kClassicRules) == FS_SPEC_MATCH;
}

// True for a specification that only its own text matches: no wildcard,
// and no trailing dot (which also matches a name without an extension).
bool is_literal(std::wstring const& spec, std::string& bytes) {
  if (spec.empty() || spec.find_first_of(L"*?") != std::wstring::npos || spec.back() == L'.')
    return false;
  return posix_encode_name(spec.data(), spec.size(), bytes) && bytes.find('/') == std::string::npos &&
         bytes != "..";
}

}  // namespace

FS_STATUS posix_find_next_obj(FSYS_HAND_STRUCT* fsh, DBLK* blk) {
  PosixHandleState* state = posix_state(fsh);
  if (state == nullptr || blk == nullptr) return FS_ERR_BAD_PARAMETER;
  PosixLevel& level = state->levels.back();
  if (!level.listing) return FS_STATUS_NONE;
  for (;;) {
    if (level.entry_at >= level.entries_end) {
      ssize_t const got = getdents64(level.fd, level.entries.data(), level.entries.size());
      if (got <= 0) {
        int const error = errno;
        level.listing = false;
        std::vector<char>().swap(level.entries);
        if (got < 0)
          return posix_report(fsh, error, posix_display_path(*state, ""),
                              L"directory could not be listed");
        return FS_STATUS_NONE;
      }
      level.entry_at = 0;
      level.entries_end = static_cast<std::size_t>(got);
    }
    auto const* entry =
        reinterpret_cast<struct dirent64 const*>(level.entries.data() + level.entry_at);
    level.entry_at += entry->d_reclen;
    std::string const name = entry->d_name;
    if (name == "." || name == "..") continue;
    if (!matches(level.spec, name)) continue;
    struct stat st {};
    if (fstatat(level.fd, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) {
      posix_note(errno, posix_display_path(*state, name),
                 errno == ENOENT ? L"vanished after it was listed; passed over"
                                 : L"could not be examined; passed over");
      continue;
    }
    return posix_fill_dblk(fsh, *state, blk, name, st, level.found);
  }
}

FS_STATUS posix_find_first_obj(FSYS_HAND_STRUCT* fsh, DBLK* blk, wchar_t* spec, unsigned short) {
  PosixHandleState* state = posix_state(fsh);
  if (state == nullptr || blk == nullptr) return FS_ERR_BAD_PARAMETER;
  PosixLevel& level = state->levels.back();
  // The listing reads the level's own descriptor from its start.
  if (!level.read_from_start && lseek(level.fd, 0, SEEK_SET) != 0)
    return posix_report(fsh, errno, posix_display_path(*state, ""),
                        L"directory could not be listed");
  level.read_from_start = false;
  level.entry_at = level.entries_end = 0;
  level.listing = true;
  level.spec = spec == nullptr ? std::wstring() : std::wstring(spec);
  std::string literal;
  if (is_literal(level.spec, literal)) {
    // A specification without wildcards names at most one object (names
    // are compared case-sensitively): it is looked up instead of searched
    // for, so finding one object costs the same in any directory, and no
    // buffer of entries is kept for it.
    level.listing = false;
    struct stat st {};
    if (fstatat(level.fd, literal.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) return FS_STATUS_NONE;
    return posix_fill_dblk(fsh, *state, blk, literal, st, level.found);
  }
  level.entries.resize(kEntriesBuffer);
  return posix_find_next_obj(fsh, blk);
}

FS_STATUS posix_find_obj_close(FSYS_HAND_STRUCT* fsh, DBLK*) {
  PosixHandleState* state = posix_state(fsh);
  if (state == nullptr) return FS_ERR_BAD_PARAMETER;
  PosixLevel& level = state->levels.back();
  level.listing = false;
  level.entry_at = level.entries_end = 0;
  // The buffer goes with the listing: a deep path of levels, each of which
  // looked something up, would otherwise hold one buffer per level.
  std::vector<char>().swap(level.entries);
  return FS_SUCCESS;
}

FS_STATUS posix_get_current_ddb(FSYS_HAND_STRUCT* fsh, DBLK* blk) {
  PosixHandleState* state = posix_state(fsh);
  if (state == nullptr || blk == nullptr) return FS_ERR_BAD_PARAMETER;
  PosixLevel const& level = state->levels.back();
  struct stat st {};
  if (fstat(level.fd, &st) != 0)
    return posix_report(fsh, errno, posix_display_path(*state, ""),
                        L"directory could not be examined");
  return posix_fill_dblk(fsh, *state, blk, level.name, st, state->current_info);
}

FS_STATUS posix_release_blk(FSYS_HAND_STRUCT* fsh, DBLK* blk) {
  if (fsh == nullptr || blk == nullptr) return FS_ERR_BAD_PARAMETER;
  if (PosixHandleState* state = static_cast<PosixHandleState*>(fsh->fsysData))
    state->names.erase(blk->os_name);
  return GEN_ReleaseBlk(fsh, blk);
}

}  // namespace qbposix
