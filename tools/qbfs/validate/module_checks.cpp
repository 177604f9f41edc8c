#include "module_checks.h"

#include <dlfcn.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include <qbfsys/func_list.h>
#include <qbfsys/module.h>
#include <qbfsys/registry.h>

namespace qbfs::validate {
namespace {

constexpr unsigned kSlotBytes = sizeof(void*);
static_assert(sizeof(_FUNC_LIST) == FS_FUNC_LIST_SLOTS * kSlotBytes, "one pointer per slot");
using Slots = std::array<void*, FS_FUNC_LIST_SLOTS>;

// The mask each entry point receives from the layer.
constexpr unsigned kTableMask32 = 0xFFFFFFFFu;
constexpr unsigned long long kTableMask64 = ~0ull;

struct SlotRef {
  unsigned index;
  char const* name;
};
#define QBV_SLOT(name) SlotRef{offsetof(_FUNC_LIST, name) / kSlotBytes, #name}

// "If the first is filled, the second must be too", with the reason the
// layer or a job needs the second.
struct SlotPair {
  SlotRef first;
  SlotRef second;
  char const* why;
};
constexpr SlotPair kPairs[] = {
    {QBV_SLOT(AttachToDLE), QBV_SLOT(DetachDLE), "a handle that attached must be detached"},
    {QBV_SLOT(FindDrives), QBV_SLOT(RemoveDLE), "the elements found are freed through it"},
    {QBV_SLOT(FindFirstObj), QBV_SLOT(FindNextObj), "a walk goes on with it"},
    {QBV_SLOT(FindNextObj), QBV_SLOT(FindFirstObj), "a walk starts with it"},
    {QBV_SLOT(ChangeIntoDDB), QBV_SLOT(ChangeDirUp), "a walk comes back up with it"},
    {QBV_SLOT(OpenObj), QBV_SLOT(CloseObj), "every open object is closed through it"},
    {QBV_SLOT(ReadObj), QBV_SLOT(OpenObj), "objects are read once opened"},
    {QBV_SLOT(WriteObj), QBV_SLOT(OpenObj), "objects are written once opened"},
    {QBV_SLOT(CreateObj), QBV_SLOT(WriteObj), "a restore writes what it created"},
};
// Slots no caller of the layer uses. A filled one most often means the
// table's entries sit one place off. Slots 58 and 85 are left to the
// modules' volume-block code and are not listed.
constexpr SlotRef kReserved[] = {
    QBV_SLOT(Reserved64),  QBV_SLOT(Reserved65),  QBV_SLOT(Reserved78),
    QBV_SLOT(Reserved79),  QBV_SLOT(Reserved81),  QBV_SLOT(Reserved84),
    QBV_SLOT(Reserved91),  QBV_SLOT(Reserved95),  QBV_SLOT(Reserved105),
    QBV_SLOT(Reserved106), QBV_SLOT(Reserved108), QBV_SLOT(Reserved109),
    QBV_SLOT(Reserved113),
};
#undef QBV_SLOT

// The module opened for a check; never closed: the child ends right after.
struct Opened {
  void* handle = nullptr;
  std::string error;
};

Opened open_module(ValidateOptions const& options) {
  Opened opened;
  dlerror();
  opened.handle = dlopen(options.module.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (opened.handle == nullptr) {
    char const* why = dlerror();
    opened.error = why != nullptr ? why : "no reason given by the loader";
  }
  return opened;
}

struct Delivered {
  int index;
  Slots slots;
};

// Calls the entry point the layer would use until it returns 0 or
// kMaxTableCalls calls were made. `stopped` tells which.
std::vector<Delivered> collect_tables(void* handle, bool& stopped) {
  auto* get32 = reinterpret_cast<FS_GetTable_fn*>(dlsym(handle, "GetTable"));
  auto* get64 = reinterpret_cast<FS_Get64BitTable_fn*>(dlsym(handle, "Get64BitTable"));
  std::vector<Delivered> tables;
  stopped = false;
  for (int n = 0; n < kMaxTableCalls; ++n) {
    _FUNC_LIST table{};
    int index = -1;
    int const more = get32 != nullptr ? get32(n, kTableMask32, &table, &index)
                                      : get64(n, kTableMask64, &table, &index);
    if (more == 0) {
      stopped = true;
      break;
    }
    Delivered d{index, {}};
    std::memcpy(d.slots.data(), &table, sizeof table);
    tables.push_back(d);
  }
  return tables;
}

bool has_entry_point(void* handle) {
  return dlsym(handle, "GetTable") != nullptr || dlsym(handle, "Get64BitTable") != nullptr;
}

}  // namespace

CheckResult check_load(ValidateOptions const& options) {
  Opened const opened = open_module(options);
  if (opened.handle == nullptr)
    return failed("expected the module to open with every symbol bound; the loader said: " +
                  opened.error);
  return passed("opened with every symbol bound");
}

CheckResult check_entry_points(ValidateOptions const& options) {
  Opened const opened = open_module(options);
  if (opened.handle == nullptr) return skipped("the module does not open");
  bool const t32 = dlsym(opened.handle, "GetTable") != nullptr;
  bool const t64 = dlsym(opened.handle, "Get64BitTable") != nullptr;
  if (!t32 && !t64)
    return failed("expected an export named GetTable or Get64BitTable; found neither, so the "
                  "layer would load nothing from this module");
  if (t32 && t64) return passed("GetTable and Get64BitTable; the layer uses GetTable");
  return passed(t32 ? "GetTable" : "Get64BitTable");
}

CheckResult check_interface_version(ValidateOptions const& options) {
  Opened const opened = open_module(options);
  if (opened.handle == nullptr) return skipped("the module does not open");
  using version_fn = int();
  auto* version = reinterpret_cast<version_fn*>(dlsym(opened.handle, kVersionEntryPoint));
  if (version == nullptr)
    return skipped(std::string("the module does not export ") + kVersionEntryPoint +
                   "; the layer takes every module for version " +
                   std::to_string(FS_MODULE_INTERFACE_VERSION));
  int const reported = version();
  if (reported != FS_MODULE_INTERFACE_VERSION)
    return failed("expected interface version " + std::to_string(FS_MODULE_INTERFACE_VERSION) +
                  "; the module reports " + std::to_string(reported) +
                  " (its slots may not be where the layer looks for them)");
  return passed("version " + std::to_string(reported));
}

CheckResult check_tables(ValidateOptions const& options) {
  Opened const opened = open_module(options);
  if (opened.handle == nullptr || !has_entry_point(opened.handle))
    return skipped("the module does not open or has no table entry point");
  bool stopped = false;
  std::vector<Delivered> const first = collect_tables(opened.handle, stopped);
  if (!stopped)
    return failed("expected the entry point to return 0 once its tables are delivered; it still "
                  "delivered after " + std::to_string(kMaxTableCalls) + " calls");
  if (first.empty())
    return failed("expected at least one table; the first call returned 0, so the module "
                  "serves no file system");
  std::map<int, int> seen;
  std::string indices;
  for (std::size_t n = 0; n < first.size(); ++n) {
    int const index = first[n].index;
    if (index < 0 || static_cast<unsigned>(index) >= FS_MAX_FSYS)
      return failed("call " + std::to_string(n) + " gave index " + std::to_string(index) +
                    "; expected 0 to " + std::to_string(FS_MAX_FSYS - 1) +
                    " (the layer drops such a table)");
    if (seen.count(index) != 0)
      return failed("index " + std::to_string(index) + " delivered by calls " +
                    std::to_string(seen[index]) + " and " + std::to_string(n) +
                    "; expected each index once (the later table replaces the earlier)");
    seen[index] = static_cast<int>(n);
    indices += (indices.empty() ? "" : ", ") + std::to_string(index);
  }
  std::vector<Delivered> const again = collect_tables(opened.handle, stopped);
  bool same = again.size() == first.size();
  for (std::size_t n = 0; same && n < first.size(); ++n)
    same = again[n].index == first[n].index && again[n].slots == first[n].slots;
  if (!same)
    return failed("a second round of calls delivered different tables; expected the same "
                  "tables each time the layer starts");
  return passed(std::to_string(first.size()) + " table(s), index " + indices);
}

CheckResult check_slots(ValidateOptions const& options) {
  Opened const opened = open_module(options);
  if (opened.handle == nullptr || !has_entry_point(opened.handle))
    return skipped("the module does not open or has no table entry point");
  bool stopped = false;
  std::vector<Delivered> const tables = collect_tables(opened.handle, stopped);
  if (tables.empty()) return skipped("the module delivers no table");
  std::string problems;
  std::string summary;
  for (Delivered const& t : tables) {
    std::string const where = "index " + std::to_string(t.index) + ": ";
    unsigned filled = 0;
    for (void* slot : t.slots) filled += slot != nullptr ? 1u : 0u;
    summary += (summary.empty() ? "" : "; ") + where + std::to_string(filled) + " slots filled";
    if (t.slots[offsetof(_FUNC_LIST, InitFileSys) / kSlotBytes] == nullptr)
      summary += " (no InitFileSys: the layer skips this index at start-up)";
    for (SlotPair const& p : kPairs) {
      if (t.slots[p.first.index] != nullptr && t.slots[p.second.index] == nullptr)
        problems += (problems.empty() ? "" : "; ") + where + p.first.name + " (slot " +
                    std::to_string(p.first.index) + ") is filled but " + p.second.name +
                    " (slot " + std::to_string(p.second.index) + ") is empty: " + p.why;
    }
    for (SlotRef const& r : kReserved) {
      if (t.slots[r.index] != nullptr)
        problems += (problems.empty() ? "" : "; ") + where + "reserved slot " +
                    std::to_string(r.index) +
                    " is filled; the layer never calls it (are the entries one place off?)";
    }
  }
  if (!problems.empty()) return failed(problems);
  return passed(summary);
}

}  // namespace qbfs::validate
