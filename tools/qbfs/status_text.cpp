#include "status_text.h"

#include <cstdio>

#include <qbfsys/file_hand.h>
#include <qbfsys/fs_status.h>
#include <qbfsys/handles.h>

namespace qbfs {

namespace {

struct status_words {
  FS_STATUS status;
  char const* words;
};

constexpr status_words kWords[] = {
    {FS_SUCCESS, "success"},
    {FS_STATUS_NONE, "nothing of that kind"},
    {FS_STATUS_NO_MORE_DLE, "no more backup elements"},
    {FS_BLK_COMPLETE, "block complete"},
    {FS_STATUS_OBJ_DEFERRED, "object status held back for the next call"},
    {FS_ERR_NO_MEMORY, "out of memory"},
    {FS_ERR_NOT_SUPPORTED, "no such element, or the operation is not offered"},
    {FS_ERR_OBJ_NO_DATA, "no data for the object, or a buffer too small"},
    {FS_ERR_RESOLVE_FAILED, "no file system resolved the name"},
    {FS_ERR_NAME_TOO_LONG, "name longer than 32767 bytes"},
    {FS_ERR_DLE_UNAVAILABLE, "the backup element is marked unavailable"},
    {FS_ERR_INIT_FAILED, "no file system initialized, or no drive found"},
    {FS_ERR_PARTIAL_INIT, "some file systems failed to initialize"},
    {FS_ERR_UNIMPLEMENTED, "the operation is not implemented"},
    {FS_ERR_BAD_PARAMETER, "bad parameter"},
    {FS_STATUS_EXT_ERROR, "failed; the details are recorded on the handle"},
    {FS_ERR_NOT_ATTACHED, "the handle is not attached"},
    {FS_ERR_INVALID_FSYS_ID, "invalid file system index"},
    {FS_ERR_INVALID_HANDLE, "invalid handle"},
    {FS_ERR_ATTACH_REFUSED, "the file system refused the attach"},
    {FS_ERR_OBJ_ACCESS_DENIED, "the object is flagged not to be opened"},
    {FS_ERR_OBJ_INCOMPLETE, "the module took nothing from a data write"},
    {FS_ERR_OBJ_OVERRUN, "the module returned or took more than offered"},
};

}  // namespace

std::string describe_status(unsigned status) {
  char const* words = "unknown status";
  for (status_words const& w : kWords)
    if (w.status == status) words = w.words;
  char code[16];
  std::snprintf(code, sizeof code, "0x%08X", status);
  return std::string(words) + " (" + code + ")";
}

}  // namespace qbfs
