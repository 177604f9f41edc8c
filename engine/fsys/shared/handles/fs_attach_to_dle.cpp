// FS_AttachToDLE: creates a handle and binds it to a DLE.
//
// Choices where the interface leaves room:
// - A null `out` or a null DLE is refused with FS_ERR_BAD_PARAMETER.
// - Every refusal leaves `*out` null and nothing allocated. That includes a
//   file system whose open operation fails (the half-made handle is closed)
//   and a refused remote machine whose file system keeps the handle attached
//   on detach (the handle is closed anyway and the DLE's count restored).
// - The machine name a file system reports is read from a zeroed buffer of
//   256 characters plus a terminator, and a reported length beyond 256 is cut
//   to 256.
#include <algorithm>

#include <qbfsys/dle.h>
#include <qbfsys/fs_init.h>
#include <qbfsys/handles.h>
#include <qbfsys/registry.h>

#include "fs_handle_bind.h"
#include "fs_print.h"
#include "fs_registry_access.h"

namespace {

constexpr unsigned kMachineNameChars = 256;
constexpr std::uint32_t kUnavailableMask = DLE_STATUS_UNAVAILABLE | DLE_STATUS_AVAILABLE_OVERRIDE;
constexpr std::uint32_t kLocalityMask = DLE_STATUS_MAYBE_REMOTE | DLE_STATUS_AVAILABLE_OVERRIDE;

// True when the file system reports the DLE's machine name and that machine
// is this one.
bool machine_name_is_local(GENERIC_DLE* dle) {
  unsigned const index = DLE_FsysIndex(dle);
  if (index >= FS_MAX_FSYS) return false;
  wchar_t name[kMachineNameChars + 1] = {};
  unsigned int length = 0;
  FS_STATUS status;
  if (FS_DleBase* object = fsys::object_of(index)) {
    status = object->GetMachineName(dle, name, &length, 0);
  } else if (FS_SLOT_GetMachineName query = fsys::table_of(index).GetMachineName) {
    status = query(dle, name, &length, 0);
  } else {
    return false;
  }
  name[kMachineNameChars] = L'\0';
  if (status != FS_SUCCESS || length == 0) return false;
  try {
    return FS_IsLocalMachine(wcstring(name, std::min(length, kMachineNameChars)));
  } catch (...) {
    return false;  // no memory for the name: judge by the type instead
  }
}

// Whether the DLE is a remote machine. Types the locality rules do not know
// are marked unavailable.
bool is_remote(GENERIC_DLE* dle) {
  if (machine_name_is_local(dle)) return false;
  if ((dle->flags2 & DLE_FLAGS2_INDEX23) != DLE_FLAGS2_INDEX23) {
    std::uint32_t const type = dle->type & DLE_TYPE_BYTE_MASK;
    if (type == DLE_TYPE_REMOTE_MACHINE) return true;
    for (std::uint32_t local : DLE_TYPES_NEVER_REMOTE)
      if (type == local) return false;
  }
  dle->status_flags |= DLE_STATUS_UNAVAILABLE;
  return false;
}

FS_STATUS give_up(FSYS_HAND_STRUCT* hand, FS_STATUS status) {
  hand->dle = nullptr;
  FS_CloseFileSys(hand);
  return status;
}

}  // namespace

FS_STATUS FS_AttachToDLE(FSYS_HAND_STRUCT** out, GENERIC_DLE* dle, QB_CFG* cfg, wchar_t* user,
                         wchar_t* password, std::uint32_t attachFlags, std::uint16_t attachMode,
                         void* attachContext, SnapshotVolume* snapshot, std::uint32_t attachArg,
                         _IPC_HAND* ipc, bool attachBool) {
  if (out == nullptr || dle == nullptr) {
    if (out != nullptr) *out = nullptr;
    fsys::print_bad_parameter(3102);
    return FS_ERR_BAD_PARAMETER;
  }
  *out = nullptr;

  bool remote = false;
  if ((dle->status_flags & DLE_STATUS_UNAVAILABLE) == 0 && (attachFlags & FS_ATTACH_NO_CHECKS) == 0 &&
      (dle->status_flags & kLocalityMask) == DLE_STATUS_MAYBE_REMOTE)
    remote = is_remote(dle);

  if ((dle->status_flags & kUnavailableMask) == DLE_STATUS_UNAVAILABLE) return FS_ERR_DLE_UNAVAILABLE;

  unsigned const index = DLE_FsysIndex(dle);
  if (index >= FS_MAX_FSYS) return FS_ERR_ATTACH_REFUSED;

  FSYS_HAND_STRUCT* hand = nullptr;
  FS_STATUS status = FS_OpenFileSys(&hand, static_cast<short>(index), cfg, nullptr);
  if (status != FS_SUCCESS) {
    if (hand != nullptr) FS_CloseFileSys(hand);
    return status;
  }

  hand->attachFlags = attachFlags;
  hand->dle = dle;
  hand->attachMode = attachMode;
  hand->head = dle->head;
  fsys::set_root_path(hand);
  hand->attachContext = attachContext;
  hand->snapshot = snapshot;
  hand->attachArg = attachArg;
  hand->stateFlags |= HAND_STATE_BOUND;
  hand->ipc = ipc;
  hand->attachText->clear();
  hand->attachBool = attachBool;

  if (fsys::cannot_attach(hand)) return give_up(hand, FS_ERR_UNIMPLEMENTED);
  if (fsys::ipc_failed(hand)) return give_up(hand, FS_ERR_ATTACH_REFUSED);

  FS_STATUS const result = fsys::call_attach(hand, dle, user, password);

  if (!FS_AttachSkipsInitWait(attachFlags) && DLE_FsysIndex(dle) != DLE_TYPE_LOCAL)
    FS_BlockWaitForInitThreads(dle->head, 1);

  // FS_STATUS_EXT_ERROR counts as attached: the caller reads the details
  // from the handle.
  if (result != FS_SUCCESS && result != FS_STATUS_EXT_ERROR) return give_up(hand, result);

  if (remote && (attachFlags & FS_ATTACH_ALLOW_REMOTE) == 0 && dle->state == DLE_STATE_UNREACHABLE) {
    ++dle->attach_count;
    dle->status_flags |= DLE_STATUS_UNAVAILABLE;
    if (FS_DetachDLE(hand) == FS_STATUS_EXT_ERROR) {
      if (dle->attach_count > 0) --dle->attach_count;
      give_up(hand, FS_STATUS_EXT_ERROR);
    }
    return FS_ERR_DLE_UNAVAILABLE;
  }

  if ((attachFlags & FS_ATTACH_NO_CHECKS) == 0)
    CheckChildren(dle, static_cast<unsigned short>(attachFlags & 0xFFFFu));

  fsys::count_attach(dle);
  *out = hand;
  return result;
}
