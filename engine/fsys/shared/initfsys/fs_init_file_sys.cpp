// FS_InitFileSys: resets the registry to the generic table, loads the modules
// the host names, merges their tables and initialises every file system.
//
// Choices made here, and why:
// - An empty module name is not handed to the dynamic loader (which would
//   return the main program); it is reported as a module that could not be
//   loaded, with the code of a missing file.
// - The mapping-service module is recognised by its file name (the part after
//   the last '/'), so that hosts may name modules by path.
// - A module that keeps delivering tables is cut off after
//   kMaxTablesPerModule calls; its further tables are ignored.
// - The loader's own explanation of a failed open (not an ELF file, wrong
//   machine, a missing dependency or symbol, ...) is traced beside the
//   message, which carries only the host's error code.
// - A module whose entry point throws is a failed module, never a reason to
//   give up the others: one that throws while handing out its tables is
//   skipped as a whole (its tables are merged only after the last call), one
//   whose initialise operation throws fails that index with
//   FS_ERR_INIT_FAILED. Either is traced with the module's name and the
//   exception's message.
#include <qbfsys/fs_init.h>

#include <dlfcn.h>

#include <cerrno>
#include <cstdint>
#include <cwchar>
#include <string>
#include <vector>

#include "fs_registry_access.h"
#include "module_exception.h"
#include <qbclass/debug_trace.h>
#include <qbfsys/module.h>
#include <qbfsys/registry.h>
#include <qbhost/last_error.h>
#include <qbhost/strings.h>
#include <qbhost/zprintf.h>

namespace {

constexpr char kTracePath[] = "engine/fsys/shared/initfsys";
constexpr int kMaxTablesPerModule = 4096;
// Source lines of the traces beside the override and load traces.
constexpr int kTraceLineOpenFailed = 404;
constexpr int kTraceLineNoEntryPoint = 425;
constexpr int kTraceLineTablesThrew = 512;
constexpr int kTraceLineInitThrew = 560;
constexpr wchar_t kMappingServicePrefix[] = L"libqbdskx.";

// The loader's error as the host reports it: empty for code 0; a code whose
// upper 16 bits are all ones keeps only its bits 0xA000FFFF.
std::wstring last_error_text() {
  std::uint32_t code = static_cast<std::uint32_t>(GetLastError());
  if (code == 0) return std::wstring();
  if ((code >> 16) == 0xFFFFu) code &= 0xA000FFFFu;
  wchar_t buffer[32];
  unsigned long value = code;
  if (std::swprintf(buffer, 32, L"0x%8lx (%lu)\n", value, value) < 0) buffer[0] = L'\0';
  std::wstring text(buffer);
  std::size_t cut = text.find(L"%1");
  if (cut != std::wstring::npos) text.resize(cut);
  return text;
}

bool is_mapping_service(std::wstring const& name) {
  std::size_t slash = name.rfind(L'/');
  std::wstring file = slash == std::wstring::npos ? name : name.substr(slash + 1);
  return file.compare(0, 10, kMappingServicePrefix) == 0;
}

std::string narrow(std::wstring const& name) {
  wcstring wide(name);
  return wide.to_utf8();
}

// Merges one delivered table into the registry.
void merge_table(DllInstance* record, _FUNC_LIST const& table, int deliveredIndex, int warnLine,
                 int loadLine) {
  unsigned k = static_cast<unsigned>(deliveredIndex);
  if (k >= FS_MAX_FSYS) return;
  std::string name = narrow(record->name);
  if (dlls[k]) {
    std::string earlier = narrow(dlls[k]->name);
    qbclass::debug_trace(kTracePath, warnLine,
                         "Warning!  Overriding function table entry %d already filled by %s", k,
                         earlier);
  }
  fsys::table_of(k) = table;
  find_order[k] = record->findOrder;
  resolve_order[k] = record->resolveOrder;
  dlls[k] = record;
  set_DLE_fsysObjPtr(k, FS_CreateDleAgent(k));
  qbclass::debug_trace(kTracePath, loadLine, "%s loaded at index %d", name, k);
}

struct delivered_table {
  _FUNC_LIST table;
  int index;
};

// Every table the entry point hands out; lets the module's exceptions pass.
template <class EntryPoint, class Mask>
std::vector<delivered_table> collect_tables(EntryPoint* entry, Mask mask) {
  std::vector<delivered_table> tables;
  for (int n = 0; n < kMaxTablesPerModule; ++n) {
    delivered_table d{{}, -1};
    if (entry(n, mask, &d.table, &d.index) == 0) break;
    tables.push_back(d);
  }
  return tables;
}

template <class EntryPoint, class Mask>
void take_tables(DllInstance* record, EntryPoint* entry, Mask mask, int warnLine, int loadLine) {
  std::vector<delivered_table> tables;
  try {
    tables = collect_tables(entry, mask);
  } catch (...) {
    qbclass::debug_trace(kTracePath, kTraceLineTablesThrew,
                         "%s is skipped: it threw while handing out its tables: %s",
                         narrow(record->name), fsys::current_exception_text());
    return;
  }
  for (delivered_table const& d : tables) merge_table(record, d.table, d.index, warnLine, loadLine);
}

// The loader's own text for the last failure, or a fixed text without one.
std::string loader_error() {
  char const* text = dlerror();
  return text != nullptr ? text : "no reason given by the loader";
}

void load_module(wchar_t const* moduleName) {
  RefPointer<DllInstance> record(new DllInstance(moduleName));
  std::wstring const& name = record->name;

  if (name.empty()) {
    SetLastError(ENOENT);
  } else {
    std::string path = narrow(name);
    SetLastError(0);
    record->handle = dlopen(path.c_str(), RTLD_LAZY);
    if (record->handle == nullptr) {
      qbclass::debug_trace(kTracePath, kTraceLineOpenFailed, "%s could not be loaded: %s", path,
                           loader_error());
      if (GetLastError() == 0) SetLastError(ENOENT);
    }
  }
  if (record->handle == nullptr) {
    std::wstring text = last_error_text();
    QB_Zprintf(0, L"  %ls could not be loaded: %ls", name.c_str(), text.c_str());
    return;
  }
  if (record->version != FS_MODULE_INTERFACE_VERSION) {
    QB_Zprintf(0, L"  %ls is an incompatible version (%d instead of %d)", name.c_str(),
               record->version, FS_MODULE_INTERFACE_VERSION);
    return;
  }

  void* getTable = dlsym(record->handle, "GetTable");
  void* get64 = getTable == nullptr ? dlsym(record->handle, "Get64BitTable") : nullptr;
  if (getTable == nullptr && get64 == nullptr) {
    qbclass::debug_trace(kTracePath, kTraceLineNoEntryPoint, "%s offers no table: %s", narrow(name),
                         loader_error());
    std::wstring text = last_error_text();
    QB_Zprintf(0, L"    %ls doesn't support GetTable() or Get64BitTable(): %ls", name.c_str(),
               text.c_str());
    return;
  }
  QB_Zprintf(0, L"  loaded %ls", name.c_str());
  if (getTable != nullptr) {
    take_tables(record.get(), reinterpret_cast<FS_GetTable_fn*>(getTable), 0xFFFFFFFFu, 442, 454);
  } else {
    take_tables(record.get(), reinterpret_cast<FS_Get64BitTable_fn*>(get64),
                0xFFFFFFFFFFFFFFFFull, 488, 500);
  }
}

// Calls the initialise operation of index i: the object, else slot 2. An
// exception out of it is that index's failure.
bool initialise(unsigned i, QB_CFG* cfg, FS_STATUS* result) {
  FS_DleBase* object = get_DLE_fsysObjPtr(i);
  FS_SLOT_InitFileSys init = fsys::table_of(i).InitFileSys;
  if (object == nullptr && init == nullptr) return false;
  try {
    *result = object != nullptr ? object->InitFileSys(cfg) : init(cfg);
  } catch (...) {
    qbclass::debug_trace(kTracePath, kTraceLineInitThrew,
                         "%s threw while initializing file system %d: %s", fsys::module_name_of(i),
                         i, fsys::current_exception_text());
    *result = FS_ERR_INIT_FAILED;
  }
  return true;
}

}  // namespace

FS_STATUS FS_InitFileSys(QB_CFG* cfg, unsigned long long /*mask*/, wchar_t const** modules,
                         unsigned int /*count*/) {
  try {
    QB_Zprintf(0, L"FS_InitFileSys");
    for (unsigned i = 0; i < FS_MAX_FSYS; ++i) {
      fsys::table_of(i) = GetFuncTable_GEN();
      set_DLE_fsysObjPtr(i, nullptr);
    }
    if (modules != nullptr) {
      for (wchar_t const** name = modules; *name != nullptr; ++name) load_module(*name);
    }

    QB_Zprintf(0, L"Initializing FSs");
    unsigned attempted = 0;
    unsigned failed = 0;
    for (unsigned i = 0; i < FS_MAX_FSYS; ++i) {
      FS_STATUS result = 0;
      if (!initialise(i, cfg, &result)) continue;
      ++attempted;
      if (result == 0) continue;
      ++failed;
      QB_Zprintf(0, L"FS %i failed to initialize: 0x%08X", static_cast<int>(i), result);
      fsys::table_of(i) = GetFuncTable_GEN();
      RefPointer<DllInstance> record = dlls[i];
      bool fatal = record && is_mapping_service(record->name);
      if (fatal) {
        QB_Zprintf(0,
                   L"Exiting qbremote. Cannot continue without successful KXMS initialization.");
      }
      dlls[i].reset();
      set_DLE_fsysObjPtr(i, nullptr);
      if (fatal) {
        record.reset();
        FS_RemoveFileSys();
        return FS_ERR_INIT_FAILED;
      }
    }
    if (failed == attempted) {
      FS_RemoveFileSys();
      return FS_ERR_INIT_FAILED;
    }
    return failed == 0 ? FS_SUCCESS : FS_ERR_PARTIAL_INIT;
  } catch (...) {
    // Only memory exhaustion can throw here; nothing half-merged stays usable.
    FS_RemoveFileSys();
    return FS_ERR_NO_MEMORY;
  }
}
