// FS_ResolveDevName and the final resolver errors.
#include <qbfsys/machine.h>
#include <qbfsys/registry.h>

#include "fs_passes.h"
#include "fs_print.h"
#include "fs_registry_access.h"

namespace {

bool has_resolver(unsigned i) {
  return fsys::object_of(i) != nullptr || fsys::table_of(i).ResolveDevName != nullptr;
}

FS_STATUS resolve(unsigned i, QB_CFG* cfg, wchar_t* devName, wchar_t* machineName, int* kind,
                  int* errOut, int* out3, int* out4, unsigned int max) {
  if (FS_DleBase* object = fsys::object_of(i))
    return object->ResolveDevName(cfg, devName, machineName, kind, errOut, out3, out4, max);
  return fsys::table_of(i).ResolveDevName(cfg, devName, machineName, kind, errOut, out3, out4, max);
}

}  // namespace

bool IsE14ResolveDeviceNameError(long code) {
  return (code >= 0xE000037E && code <= 0xE0000382) || code == 0xE000038A || code == 0xE0000391 ||
         (code >= 0xE00003C0 && code <= 0xE00003C3) || code == 0xE00003E0;
}

FS_STATUS FS_ResolveDevName(QB_CFG* cfg, wchar_t* devName, wchar_t* machineName, int* kind,
                            int* errOut, int* out3, int* out4, unsigned int machineNameMax) {
  QB_Zprintf(0, L"FS_ResolveDevName: [%s]", fsys::narrow_for_print(devName).c_str());
  FS_STATUS status = FS_ERR_RESOLVE_FAILED;
  int hint = kind != nullptr ? *kind : 0;
  if (hint == 48 || hint == 71) {
    unsigned first = hint == 48 ? 21u : 36u;
    if (has_resolver(first)) {
      status = resolve(first, cfg, devName, machineName, kind, errOut, out3, out4, machineNameMax);
      if (status == FS_SUCCESS) return FS_SUCCESS;
    }
  }
  if (status != FS_SUCCESS && !IsE14ResolveDeviceNameError(status)) {
    fsys::run_passes(resolve_order, [](unsigned) { return true; }, [&](unsigned i) {
      if (!has_resolver(i)) return false;
      status = resolve(i, cfg, devName, machineName, kind, errOut, out3, out4, machineNameMax);
      return status == FS_SUCCESS || IsE14ResolveDeviceNameError(status);
    });
  }
  if (status == FS_SUCCESS) return FS_SUCCESS;
  for (int* out : {kind, errOut, out3, out4})
    if (out != nullptr) *out = -1;
  if (errOut != nullptr && IsE14ResolveDeviceNameError(status)) *errOut = static_cast<int>(status);
  return FS_ERR_NOT_SUPPORTED;
}
