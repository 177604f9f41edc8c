// Defaults of FS_DleBase: a file system that offers nothing.
#include <qbfsys/fs_dle_base.h>

#include <qbfsys/gen.h>

FS_STATUS FS_DleBase::InitFileSys(QB_CFG*) { return FS_SUCCESS; }
FS_STATUS FS_DleBase::DeInitFileSys() { return FS_SUCCESS; }
FS_STATUS FS_DleBase::FindDrives(HEAD_DLE*, QB_CFG*) { return FS_SUCCESS; }
FS_STATUS FS_DleBase::RemoveDLE(GENERIC_DLE* dle) { return GEN_RemoveDLE(dle); }
FS_STATUS FS_DleBase::ResolveDevName(QB_CFG*, wchar_t*, wchar_t*, int*, int*, int*, int*,
                                     unsigned int) {
  return FS_ERR_UNIMPLEMENTED;
}
FS_STATUS FS_DleBase::GetMachineName(GENERIC_DLE*, wchar_t*, unsigned int*, int) {
  return FS_ERR_UNIMPLEMENTED;
}
FS_STATUS FS_DleBase::DeviceDispName(GENERIC_DLE*, wchar_t*, unsigned short) {
  return FS_ERR_UNIMPLEMENTED;
}
FS_STATUS FS_DleBase::GetVolName(GENERIC_DLE*, wchar_t*) { return FS_ERR_UNIMPLEMENTED; }
FS_STATUS FS_DleBase::SizeofDevName(GENERIC_DLE*) { return FS_ERR_UNIMPLEMENTED; }
FS_STATUS FS_DleBase::CreateTempDLE(QB_CFG*, wchar_t const*, HEAD_DLE*, int, GENERIC_DLE**) {
  return FS_ERR_UNIMPLEMENTED;
}
FS_STATUS FS_DleBase::AddChildren(GENERIC_DLE*, QB_CFG*) { return FS_ERR_UNIMPLEMENTED; }
FS_DleBase::~FS_DleBase() = default;
