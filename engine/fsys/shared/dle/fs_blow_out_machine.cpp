// FS_BlowOutMachine: finds (or creates and attaches) the DLE of the machine
// that holds a path, so that the machine's elements are in the tree, and
// finds the path's own DLE below it.
#include <cwchar>
#include <string>

#include <qbfsys/handles.h>
#include <qbfsys/machine.h>

#include "dle_dump.h"
#include <qbhost/zprintf.h>

namespace {

constexpr unsigned kMachineNameChars = 260;

FS_STATUS returning(FS_STATUS status) {
  QB_Zprintf(0, L"FS_BlowOutMachine: returning %d", static_cast<int>(status));
  return status;
}

FS_STATUS failed_to_resolve(wchar_t const* path, FS_STATUS status) {
  QB_Zprintf(0, L"FS_BlowOutMachine: failed to resolve -->%ls<--", path);
  return returning(status);
}

// Clears the weak bit of an element and of everything below it.
void make_strong(GENERIC_DLE* dle) {
  dle->type &= ~DLE_WEAK;
  for (_Q_ELEM* c = dle->child_q.q_head; c != nullptr; c = c->q_next)
    make_strong(reinterpret_cast<GENERIC_DLE*>(c));
}

}  // namespace

FS_STATUS FS_BlowOutMachine(HEAD_DLE* head, QB_CFG* cfg, wchar_t* path, bool* isMachinePath,
                            GENERIC_DLE** found) {
  if (isMachinePath != nullptr) *isMachinePath = false;
  if (found != nullptr) *found = nullptr;
  if (path == nullptr) return FS_ERR_BAD_PARAMETER;
  QB_Zprintf(0, L"FS_BlowOutMachine: entered -->%ls<--", path);
  if (std::wcschr(path, L'\\') == nullptr && std::wcschr(path, L'/') == nullptr) {
    QB_Zprintf(0, L"FS_BlowOutMachine: no machine name possible");
    return 1;
  }
  fsys::dump_dle_tree(head, L"Initial DLE Tree");

  wchar_t machine[kMachineNameChars] = {};
  int kind = 0, err = 0, out3 = 0, out4 = 0;
  FS_STATUS status =
      FS_ResolveDevName(cfg, path, machine, &kind, &err, &out3, &out4, kMachineNameChars);
  machine[kMachineNameChars - 1] = L'\0';  // whatever a resolver wrote, the name ends here
  if (status != FS_SUCCESS) {
    if (path[0] != L'\\' || path[1] != L'\\') return failed_to_resolve(path, status);
    wchar_t const* end = std::wcschr(path + 2, L'\\');
    std::size_t length = end != nullptr ? static_cast<std::size_t>(end - path) : std::wcslen(path);
    if (length > kMachineNameChars - 1) return failed_to_resolve(path, status);
    std::wmemcpy(machine, path, length);
    machine[length] = L'\0';
  }
  if (machine[0] == L'\0') return failed_to_resolve(path, FS_SUCCESS);

  QB_Zprintf(0, L"FS_BlowOutMachine: FS_ResolveDevName returns -->%ls<-- as the machineName",
             machine);
  if (isMachinePath != nullptr) *isMachinePath = true;
  QB_Zprintf(0, L"FS_BlowOutMachine: processing as local machine");

  std::wstring name = (machine[0] == L'\\' && machine[1] == L'\\') ? std::wstring(machine)
                                                                     : L"\\\\" + std::wstring(machine);
  GENERIC_DLE* dle = nullptr;
  if (DLE_FindByName(head, name.c_str(), 22, &dle, nullptr) != FS_SUCCESS &&
      DLE_FindByName(head, name.c_str(), 1, &dle, nullptr) != FS_SUCCESS) {
    QB_Zprintf(0, L"FS_BlowOutMachine: failed to find machine DLE in DLE tree, attempting DLE create");
    FS_CreateTempDLE(cfg, name.c_str(), head, 49, &dle);
    if (dle == nullptr) return returning(FS_SUCCESS);
  }
  if (dle->feature2 & DLE_FEATURE2_NO_ATTACH) return returning(FS_SUCCESS);

  QB_Zprintf(0, L"FS_BlowOutMachine: trying to attach to newly created DLE");
  FSYS_HAND_STRUCT* hand = nullptr;
  status = FS_AttachToDLE(&hand, dle, cfg, nullptr, nullptr, 32, 0, nullptr, nullptr, 0, nullptr,
                          false);
  make_strong(dle);
  if (status != FS_SUCCESS && status != FS_STATUS_EXT_ERROR) {
    QB_Zprintf(0, L"FS_BlowOutMachine: attach failed, deleting newly created DLE");
    DLE_RemoveRecurse(dle, 1);
    return returning(status);
  }

  QB_Zprintf(0, L"FS_BlowOutMachine: attached successfully");
  GENERIC_DLE* hit = nullptr;
  DLE_FindByName(head, path, static_cast<short>(kind), &hit, dle);
  QB_Zprintf(0,
             hit != nullptr ? L"FS_BlowOutMachine: found -->%ls<-- in DLE tree"
                            : L"FS_BlowOutMachine: didn't find -->%ls<-- in DLE tree",
             path);
  if (found != nullptr) *found = hit;
  QB_Zprintf(0, L"FS_BlowOutMachine: detaching from newly created DLE");
  FS_DetachDLE(hand);
  fsys::dump_dle_tree(head, L"Modified DLE Tree");
  return returning(FS_SUCCESS);
}
