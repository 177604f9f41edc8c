// Creating and recognising the record hung on the module's elements.
#include "posix_dle_data.h"

#include <new>

namespace qbposix {
namespace {

void DestroyPosixDleData(DLE_FSYS_DATA* self) {
  delete static_cast<PosixDleData*>(self);
}

}  // namespace

PosixDleData* PosixDleDataCreate() {
  PosixDleData* data = new (std::nothrow) PosixDleData();
  if (data != nullptr) data->destroy = &DestroyPosixDleData;
  return data;
}

PosixDleData* PosixDleDataOf(GENERIC_DLE const* dle) {
  if (dle == nullptr || dle->fsys_data == nullptr) return nullptr;
  // The destroy function is this module's own only on records it made.
  if (dle->fsys_data->destroy != &DestroyPosixDleData) return nullptr;
  return static_cast<PosixDleData*>(dle->fsys_data);
}

}  // namespace qbposix
