// Creating and recognising the record hung on the module's elements.
#include "posix_dle_data.h"

#include <new>

namespace qbposix {
namespace {

void destroy_posix_dle_data(DLE_FSYS_DATA* self) {
  delete static_cast<PosixDleData*>(self);
}

}  // namespace

PosixDleData* posix_dle_data_create() {
  PosixDleData* data = new (std::nothrow) PosixDleData();
  if (data != nullptr) data->destroy = &destroy_posix_dle_data;
  return data;
}

PosixDleData* posix_dle_data_of(GENERIC_DLE const* dle) {
  if (dle == nullptr || dle->fsys_data == nullptr) return nullptr;
  // The destroy function is this module's own only on records it made.
  if (dle->fsys_data->destroy != &destroy_posix_dle_data) return nullptr;
  return static_cast<PosixDleData*>(dle->fsys_data);
}

}  // namespace qbposix
