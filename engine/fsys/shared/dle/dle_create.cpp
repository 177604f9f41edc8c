// Creating and freeing DLE records for modules: DLE_Create, DLE_SetName,
// DLE_Free. Every owned field is a heap copy freed here, so a module never
// reinvents the record's set-up or its teardown.
#include <cstdlib>
#include <cwchar>

#include <qbfsys/dle.h>
#include <qbfsys/dle_rules.h>

namespace {

wchar_t* copy_text(wchar_t const* text, std::uint32_t* bytes) {
  std::size_t n = std::wcslen(text) + 1;
  auto* copy = static_cast<wchar_t*>(std::malloc(n * sizeof(wchar_t)));
  if (copy == nullptr) return nullptr;
  std::wmemcpy(copy, text, n);
  if (bytes != nullptr) *bytes = static_cast<std::uint32_t>(n * sizeof(wchar_t));
  return copy;
}

}  // namespace

FS_STATUS DLE_SetName(GENERIC_DLE* dle, DLE_NAME_KIND kind, wchar_t const* text) {
  if (dle == nullptr) return FS_ERR_BAD_PARAMETER;
  std::uint32_t bytes = 0;
  wchar_t* copy = nullptr;
  if (text != nullptr) {
    copy = copy_text(text, &bytes);
    if (copy == nullptr) return FS_ERR_NO_MEMORY;
  }
  switch (kind) {
    case DLE_NAME_DEVICE:
      if (copy == nullptr) return FS_ERR_BAD_PARAMETER;  // every element has a device name
      std::free(dle->device_name);
      dle->device_name = copy;
      dle->device_name_size = bytes;
      return FS_SUCCESS;
    case DLE_NAME_SECONDARY:
      std::free(dle->secondary_name);
      dle->secondary_name = copy;
      return FS_SUCCESS;
    case DLE_NAME_SIMPLE:
      std::free(dle->simple_name);
      dle->simple_name = copy;
      return FS_SUCCESS;
    case DLE_NAME_ALTERNATE:
      if (dle->alt_name_owned) std::free(dle->alt_name);
      dle->alt_name = copy;
      dle->alt_name_owned = copy != nullptr;
      return FS_SUCCESS;
  }
  std::free(copy);
  return FS_ERR_BAD_PARAMETER;
}

FS_STATUS DLE_Create(HEAD_DLE* head, GENERIC_DLE* parent, wchar_t const* deviceName,
                     std::uint32_t type, std::uint32_t subtype, wchar_t delimiter,
                     GENERIC_DLE** out) {
  if (out != nullptr) *out = nullptr;
  if (deviceName == nullptr || deviceName[0] == L'\0' || (head == nullptr && parent == nullptr))
    return FS_ERR_BAD_PARAMETER;
  auto* dle = static_cast<GENERIC_DLE*>(std::calloc(1, sizeof(GENERIC_DLE)));
  if (dle == nullptr) return FS_ERR_NO_MEMORY;
  InitQueue(&dle->child_q);
  if (DLE_SetName(dle, DLE_NAME_DEVICE, deviceName) != FS_SUCCESS) {
    std::free(dle);
    return FS_ERR_NO_MEMORY;
  }
  dle->type = type;
  dle->subtype = subtype;
  dle->name_delimiter = delimiter;
  dle->parent = parent;
  dle->head = parent != nullptr ? parent->head : head;
  // A head begins with its top-level queue, so a child queue serves as one.
  DLE_QueueInsert(parent != nullptr ? reinterpret_cast<HEAD_DLE*>(&parent->child_q) : head, dle);
  if (out != nullptr) *out = dle;
  return FS_SUCCESS;
}

void DLE_Free(GENERIC_DLE* dle) {
  if (dle == nullptr) return;
  DLE_RemoveSpecObjs(dle);
  DLE_RemoveAgentWarningObjs(dle);
  if (dle->alt_name_owned) std::free(dle->alt_name);
  if (dle->fsys_data != nullptr && dle->fsys_data->destroy != nullptr)
    dle->fsys_data->destroy(dle->fsys_data);
  std::free(dle->unselect);
  std::free(dle->device_name);
  std::free(dle->secondary_name);
  std::free(dle->simple_name);
  std::free(dle);
}
