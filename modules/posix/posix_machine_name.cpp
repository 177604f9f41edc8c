// GetMachineName: the name of the machine an element belongs to.
//
// `name` receives at most 255 characters and a terminator; `nameLength`, when
// given, the length in characters. Elements that are not this module's give
// FS_ERR_NOT_SUPPORTED.
#include <cwchar>

#include "posix_dle_data.h"
#include "posix_fsys.h"

namespace qbposix {

FS_STATUS posix_get_machine_name(GENERIC_DLE* dle, wchar_t* name, unsigned int* nameLength, int) {
  if (dle == nullptr || name == nullptr) return FS_ERR_BAD_PARAMETER;
  PosixDleData const* data = posix_dle_data_of(dle);
  if (data == nullptr) return FS_ERR_NOT_SUPPORTED;
  std::size_t length = data->machine_name.size();
  if (length > POSIX_MACHINE_NAME_MAX) return FS_ERR_OBJ_NO_DATA;  // cannot happen: checked on creation
  std::wmemcpy(name, data->machine_name.c_str(), length + 1);
  if (nameLength != nullptr) *nameLength = static_cast<unsigned int>(length);
  return FS_SUCCESS;
}

}  // namespace qbposix
