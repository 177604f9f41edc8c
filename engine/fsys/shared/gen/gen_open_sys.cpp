// GEN_OpenSys, GEN_InitMakeData, the object type and the extended-attribute
// names of GEN blocks.
#include <cstring>
#include <new>

#include <qbfsys/dblk_names.h>
#include <qbfsys/fs_fsh_generic.h>
#include <qbfsys/gen.h>
#include <qbfsys/handles.h>
#include <qbfsys/name_pool.h>
#include <qbhost/zprintf.h>

// Chaining an adapter the handle already had would need the generic object
// to hold it and forward to it, and the adapter classes hold no data: an
// adapter already on the handle keeps serving it (replacing it would lose a
// module's own adapter and leak it). So the generic adapter is installed only
// on a handle without one.
FS_STATUS GEN_OpenSys(FSYS_HAND_STRUCT* hand) {
  if (hand == nullptr) {
    QB_Zprintf(0, L"FS_FshGen: Bad Parameter at line number %d", GEN_OPEN_SYS_LINE);
    return FS_SUCCESS;
  }
  if (hand->adapter == nullptr) hand->adapter = new (std::nothrow) FS_FshGeneric;
  return FS_SUCCESS;
}

FS_STATUS GEN_InitMakeData(FSYS_HAND_STRUCT*, short, _CREATE_DBLK* request) {
  if (request == nullptr) return FS_ERR_BAD_PARAMETER;
  request->gen.os_id = 0;
  request->gen.qbds_id = 0;
  request->gen.os_ver = 0;
  return FS_SUCCESS;
}

FS_STATUS GEN_GetObjTypeDBLK(FSYS_HAND_STRUCT*, DBLK* blk, OBJECT_TYPE* type) {
  if (blk == nullptr || type == nullptr) return FS_ERR_BAD_PARAMETER;
  *type = static_cast<OBJECT_TYPE>(blk->area.obj.obj_type);
  return FS_SUCCESS;
}

FS_STATUS GEN_SetObjTypeDBLK(FSYS_HAND_STRUCT*, DBLK* blk, OBJECT_TYPE type) {
  if (blk == nullptr) return FS_ERR_BAD_PARAMETER;
  blk->area.obj.obj_type = static_cast<std::uint32_t>(type);
  return FS_SUCCESS;
}

FS_STATUS GEN_GetExtendedAttribFromDBLK(FSYS_HAND_STRUCT*, DBLK* blk, unsigned int which,
                                        void* buffer, unsigned int* size) {
  if (blk == nullptr || size == nullptr) return FS_ERR_BAD_PARAMETER;
  bool const has_names = dblk_has_ea_names(blk);
  FS_NAME_Q_ELEM const* element = nullptr;
  if (has_names && which == GEN_EA_NAME_1) element = blk->area.gen.ext.ea.ea_name1;
  if (has_names && which == GEN_EA_NAME_2) element = blk->area.gen.ext.ea.ea_name2;
  if (element == nullptr) return FS_ERR_NOT_SUPPORTED;
  if (buffer == nullptr || *size < element->size) {
    *size = element->size;
    return FS_ERR_OBJ_NO_DATA;
  }
  std::memcpy(buffer, element->buffer, element->size);
  *size = element->size;
  return FS_SUCCESS;
}
