// FS_DleBase: the optional per-index object of a file system.
//
// When the registry holds an object for an index, the DLE-level operations of
// that file system go to the object's virtual operations instead of the table
// slots of the same role (the object takes precedence even when the slot is
// set). The virtual slot order is part of the contract with modules:
//   0 InitFileSys, 1 DeInitFileSys, 2 FindDrives, 3 RemoveDLE,
//   4 ResolveDevName, 5 GetMachineName, 6 DeviceDispName, 7 GetVolName,
//   8 SizeofDevName, 9 CreateTempDLE, 10 AddChildren, then the destructor.
// Each mirrors the table slot of the same name. The defaults answer as a file
// system that offers nothing: initialising succeeds and finds no drive,
// removing a DLE uses the generic removal (GEN_RemoveDLE), the rest return
// FS_ERR_UNIMPLEMENTED. The registry never deletes these objects.
#pragma once
#include <qbfsys/fs_export.h>
#include <qbfsys/fs_status.h>
#include <qbfsys/fs_types.h>

class FS_EXPORT FS_DleBase {
 public:
  virtual FS_STATUS InitFileSys(QB_CFG* cfg);
  virtual FS_STATUS DeInitFileSys();
  virtual FS_STATUS FindDrives(HEAD_DLE* head, QB_CFG* cfg);
  virtual FS_STATUS RemoveDLE(GENERIC_DLE* dle);
  virtual FS_STATUS ResolveDevName(QB_CFG* cfg, wchar_t* devName, wchar_t* machineName, int* kind,
                                   int* errOut, int* out3, int* out4, unsigned int machineNameMax);
  virtual FS_STATUS GetMachineName(GENERIC_DLE* dle, wchar_t* name, unsigned int* nameLength,
                                   int reserved);
  virtual FS_STATUS DeviceDispName(GENERIC_DLE* dle, wchar_t* buffer, unsigned short bufferSize);
  virtual FS_STATUS GetVolName(GENERIC_DLE* dle, wchar_t* buffer);
  virtual FS_STATUS SizeofDevName(GENERIC_DLE* dle);
  virtual FS_STATUS CreateTempDLE(QB_CFG* cfg, wchar_t const* name, HEAD_DLE* head, int kind,
                                  GENERIC_DLE** out);
  virtual FS_STATUS AddChildren(GENERIC_DLE* parent, QB_CFG* cfg);
  virtual ~FS_DleBase();
};
