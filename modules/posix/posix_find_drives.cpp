// FindDrives: this machine and the local file systems to back up on it.
//
// The machine element goes to the top level: device name "\\" followed by the
// machine name (the configuration's machine_name when set, else the system's
// host name), name delimiter '\', simple name the bare machine name. Below it,
// one element per file system: device name and simple name the mount point
// (or root), name delimiter '/'. The file systems are either the directory
// roots that the configuration names, exactly, or, without roots, the local
// file systems of the kernel's mount table (see posix_mounts.h for the rule).
//
// Roots: each must be an absolute path naming an existing directory; trailing
// slashes are dropped ("/data/" is "/data"). A root that is relative, missing
// or not a directory is reported and skipped; a repeated root is added once.
//
// Running the search again adds only what is not in the tree yet: an existing
// machine element of the same name is reused, and a file system already below
// it is not added twice. A machine with no file system still gets its element.
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include <qbhost/strings.h>
#include <qbhost/zprintf.h>

#include "posix_dle_data.h"
#include "posix_fsys.h"
#include "posix_mounts.h"

namespace qbposix {
namespace {

char const kMountTable[] = "/proc/self/mounts";

struct Volume {
  std::wstring name;  // device and simple name
  std::string path;
  std::string fs_type;
  std::string device;
};

// Narrow paths are taken as UTF-8; a byte that is not valid UTF-8 stands for
// itself, so no path is lost in the wide name.
std::wstring Widen(std::string const& text) {
  std::wstring wide(text.size() + 1, L'\0');
  std::size_t count = QB::UniConv(text.data(), text.size(), &wide[0], wide.size());
  wide.resize(count);
  return wide;
}

bool IsDirectory(std::string const& path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

FS_STATUS MachineName(QB_CFG const* cfg, std::wstring* out) {
  if (cfg->machine_name != nullptr && cfg->machine_name[0] != L'\0') {
    *out = cfg->machine_name;
    if (out->size() > POSIX_MACHINE_NAME_MAX) {
      QB_Zprintf(0, L"posix: machine name longer than %u characters: %ls",
                 POSIX_MACHINE_NAME_MAX, cfg->machine_name);
      return FS_ERR_BAD_PARAMETER;
    }
    return FS_SUCCESS;
  }
  char host[POSIX_MACHINE_NAME_MAX + 1] = {};
  if (::gethostname(host, sizeof host - 1) != 0 || host[0] == '\0') {
    QB_Zprintf(0, L"posix: the host name is not available (%s); using localhost",
               std::strerror(errno));
    std::strcpy(host, "localhost");
  }
  *out = Widen(host);
  return FS_SUCCESS;
}

std::vector<MountEntry> ReadMountTable() {
  std::string text;
  int error = ReadMountTableFile(kMountTable, &text);
  if (error != 0) {
    QB_Zprintf(0, L"posix: cannot read %s: %s", kMountTable, std::strerror(error));
    return {};
  }
  return ParseMountTable(text);
}

std::vector<Volume> VolumesFromMountTable() {
  std::vector<Volume> volumes;
  for (MountEntry const& entry : SelectLocalFileSystems(ReadMountTable(), IsDirectory))
    volumes.push_back(
        Volume{Widen(entry.mount_point), entry.mount_point, entry.fs_type, entry.device});
  return volumes;
}

std::vector<Volume> VolumesFromRoots(wchar_t const* const* roots) {
  std::vector<Volume> volumes;
  std::vector<MountEntry> mounts;
  bool mounts_read = false;
  for (; *roots != nullptr; ++roots) {
    std::wstring root = *roots;
    while (root.size() > 1 && root.back() == L'/') root.pop_back();
    if (root.empty() || root[0] != L'/') {
      QB_Zprintf(0, L"posix: root \"%ls\" is not an absolute path; skipped", *roots);
      continue;
    }
    std::string path = wcstring(root).to_utf8();
    if (!IsDirectory(path)) {
      QB_Zprintf(0, L"posix: root %ls is missing or not a directory; skipped", root.c_str());
      continue;
    }
    bool repeated = false;
    for (Volume const& v : volumes) repeated = repeated || v.name == root;
    if (repeated) continue;

    Volume volume{root, path, {}, {}};
    // The file system that holds the root, for the handles that come later.
    if (!mounts_read) {
      mounts = LastMountPerPoint(ReadMountTable());
      mounts_read = true;
    }
    if (char* resolved = ::realpath(path.c_str(), nullptr)) {
      if (MountEntry const* mount = FindContainingMount(mounts, resolved)) {
        volume.fs_type = mount->fs_type;
        volume.device = mount->device;
      }
      std::free(resolved);
    }
    volumes.push_back(volume);
  }
  return volumes;
}

// The element of `queue` with this type-7 subtype and device name, or null.
GENERIC_DLE* FindElement(_Q_HEADER const* queue, std::uint32_t subtype, std::wstring const& name) {
  for (_Q_ELEM* e = queue->q_head; e != nullptr; e = e->q_next) {
    GENERIC_DLE* dle = reinterpret_cast<GENERIC_DLE*>(e);
    if ((dle->type & 0xFFu) == FS_POSIX_INDEX && (dle->subtype & ~DLE_WEAK) == subtype &&
        dle->device_name != nullptr && name == dle->device_name)
      return dle;
  }
  return nullptr;
}

// Creates one element with its record and simple name.
FS_STATUS AddElement(HEAD_DLE* head, GENERIC_DLE* parent, std::wstring const& deviceName,
                     std::uint32_t subtype, wchar_t delimiter, std::wstring const& simpleName,
                     std::wstring const& machine, Volume const* volume, GENERIC_DLE** out) {
  PosixDleData* data = posix_dle_data_create();
  if (data == nullptr) return FS_ERR_NO_MEMORY;
  try {
    data->machine_name = machine;
    if (volume != nullptr) {
      data->path = volume->path;
      data->fs_type = volume->fs_type;
      data->device = volume->device;
    }
  } catch (...) {
    data->destroy(data);
    throw;
  }
  GENERIC_DLE* dle = nullptr;
  FS_STATUS status = DLE_Create(head, parent, deviceName.c_str(), FS_POSIX_INDEX, subtype,
                                delimiter, &dle);
  if (status != FS_SUCCESS) {
    data->destroy(data);
    return status;
  }
  dle->fsys_data = data;
  *out = dle;
  return DLE_SetName(dle, DLE_NAME_SIMPLE, simpleName.c_str());
}

FS_STATUS FindDrives(HEAD_DLE* head, QB_CFG* cfg) {
  std::wstring machine;
  FS_STATUS status = MachineName(cfg, &machine);
  if (status != FS_SUCCESS) return status;

  std::wstring machineDevice = L"\\\\" + machine;
  GENERIC_DLE* machineDle = FindElement(&head->dle_q, POSIX_SUBTYPE_MACHINE, machineDevice);
  if (machineDle == nullptr) {
    status = AddElement(head, nullptr, machineDevice, POSIX_SUBTYPE_MACHINE, L'\\', machine,
                        machine, nullptr, &machineDle);
    if (status != FS_SUCCESS) return status;
  }

  std::vector<Volume> volumes =
      cfg->roots != nullptr ? VolumesFromRoots(cfg->roots) : VolumesFromMountTable();
  for (Volume const& volume : volumes) {
    if (FindElement(&machineDle->child_q, POSIX_SUBTYPE_VOLUME, volume.name) != nullptr) continue;
    GENERIC_DLE* dle = nullptr;
    status = AddElement(head, machineDle, volume.name, POSIX_SUBTYPE_VOLUME, L'/', volume.name,
                        machine, &volume, &dle);
    if (status != FS_SUCCESS) return status;
  }
  return FS_SUCCESS;
}

}  // namespace

FS_STATUS posix_find_drives(HEAD_DLE* head, QB_CFG* cfg) {
  if (head == nullptr || cfg == nullptr) return FS_ERR_BAD_PARAMETER;
  try {
    return FindDrives(head, cfg);
  } catch (...) {
    // Only the standard containers throw here, and only for want of memory.
    return FS_ERR_NO_MEMORY;
  }
}

}  // namespace qbposix
