// Driving the real posix module through the layer the way the agent does:
// a session loads libqbposix.so with FS_InitFileSys and offers directories
// as roots; a handle attached to a root walks it (find-first/next, change
// into each directory and back up), reads every object's streams, and can
// copy each object into a second handle with FS_CreateGenDBLK, CreateObj,
// FS_OpenObj/FS_WriteObj/FS_CloseObj. Shared by the module's tests and the
// walk benchmark; a command-line end-to-end test can reuse it too.
#pragma once
#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <qbfsys/qbfsys.h>

namespace qbtest {

class PosixSession {
 public:
  // Loads the module from `module_dir` and builds the tree with `roots` as
  // the module's roots. ok() tells whether that worked.
  PosixSession(std::string const& module_dir, std::vector<std::string> const& roots) {
    std::wstring const module = widen(module_dir + "/libqbposix.so");
    wchar_t const* modules[] = {module.c_str(), nullptr};
    for (std::string const& r : roots) wide_roots_.push_back(widen(r));
    for (std::wstring const& r : wide_roots_) root_ptrs_.push_back(r.c_str());
    root_ptrs_.push_back(nullptr);
    cfg_.roots = root_ptrs_.data();
    cfg_.machine_name = L"session-host";
    ok_ = FS_InitFileSys(&cfg_, ~0ull, modules, 1) == FS_SUCCESS &&
          FS_InitDleList(&head_, &cfg_) == FS_SUCCESS;
  }
  ~PosixSession() {
    FS_DeinitDleList(head_);
    FS_RemoveFileSys();
  }
  PosixSession(PosixSession const&) = delete;
  PosixSession& operator=(PosixSession const&) = delete;
  bool ok() const { return ok_; }

  // A handle attached to the root `path`, or null.
  FSYS_HAND_STRUCT* attach(std::string const& path) {
    GENERIC_DLE* machine = nullptr;
    GENERIC_DLE* d = nullptr;
    if (DLE_GetFirst(head_, &machine, true) != FS_SUCCESS) return nullptr;
    for (FS_STATUS s = DLE_GetFirstChild(machine, &d, true); s == FS_SUCCESS; s = DLE_GetNext(&d, true)) {
      if (std::wstring(d->device_name) != widen(path)) continue;
      FSYS_HAND_STRUCT* hand = nullptr;
      if (FS_AttachToDLE(&hand, d, &cfg_, nullptr, nullptr, 0, 0, nullptr, nullptr, 0, nullptr,
                         false) == FS_SUCCESS)
        return hand;
    }
    return nullptr;
  }

  static std::wstring widen(std::string const& s) { return std::wstring(s.begin(), s.end()); }

 private:
  QB_CFG cfg_{};
  HEAD_DLE* head_ = nullptr;
  std::vector<std::wstring> wide_roots_;
  std::vector<wchar_t const*> root_ptrs_;
  bool ok_ = false;
};

// What a walk saw: objects, stream bytes, and the objects whose reading
// failed with the handle's message.
struct WalkTotals {
  std::uint64_t objects = 0;
  std::uint64_t bytes = 0;  // stream data delivered
  std::vector<std::wstring> failures;
};

// The last error's first message on the handle.
inline std::wstring last_message(FSYS_HAND_STRUCT* hand) {
  wchar_t* message = nullptr;
  GEN_GetExtendedErrorInfo(hand, nullptr, nullptr, &message);
  return message == nullptr ? std::wstring() : std::wstring(message);
}

// Reads one object; `sink` sees each header (data null) and each piece of
// data. Room per call is drawn from `rng` when given, else 1 MiB.
inline FS_STATUS read_object(FSYS_HAND_STRUCT* hand, DBLK* blk, std::mt19937* rng,
                             std::function<FS_STATUS(STREAM_INFO const&, unsigned char*, unsigned)> const& sink,
                             WalkTotals& totals) {
  constexpr unsigned kBuffer = 1u << 20;
  constexpr unsigned kMaxRandomRoom = 150000;
  static std::vector<unsigned char> buffer(kBuffer);
  _FILE_HAND_STRUCT* obj = nullptr;
  FS_STATUS status = FS_OpenObj(hand, &obj, blk, FS_READ);
  STREAM_INFO current{};
  while (status == FS_SUCCESS) {
    unsigned size = rng != nullptr ? 1 + (*rng)() % kMaxRandomRoom : kBuffer;
    unsigned need = 0;
    STREAM_INFO header{};
    status = FS_ReadObj(obj, buffer.data(), &size, &need, &header);
    if (status != FS_SUCCESS) break;
    if (header.id != STRM_INVALID) {
      current = header;
      status = sink(header, nullptr, 0);
    }
    if (status == FS_SUCCESS && size > 0) {
      totals.bytes += size;
      status = sink(current, buffer.data(), size);
    }
  }
  if (obj != nullptr) FS_CloseObj(obj, nullptr, nullptr);
  ++totals.objects;
  if (status == FS_ERR_OBJ_NO_DATA) return FS_SUCCESS;
  totals.failures.push_back(status == FS_STATUS_EXT_ERROR ? last_message(hand) : L"status " + std::to_wstring(status));
  return status;
}

// Walks the current directory of `hand` depth first; `visit` is called for
// each object (before a directory's children) and may read it, `leave`
// after each directory's children.
inline void walk(FSYS_HAND_STRUCT* hand, std::function<void(DBLK*)> const& visit,
                 std::function<void(DBLK*)> const& leave = nullptr) {
  _FUNC_LIST const& t = *hand->funcTable;
  DBLK blk{};
  for (FS_STATUS s = t.FindFirstObj(hand, &blk, const_cast<wchar_t*>(L"*"), 0); s == FS_SUCCESS;
       s = t.FindNextObj(hand, &blk)) {
    visit(&blk);
    if (blk.blk_type != DBLK_KIND_DDB) continue;
    if (t.ChangeIntoDDB(hand, &blk) == FS_SUCCESS) {
      walk(hand, visit, leave);
      t.ChangeDirUp(hand);
    }
    if (leave) leave(&blk);
  }
  t.FindObjClose(hand, &blk);
  t.ReleaseBlk(hand, &blk);
}

// A block of `dst` describing the object `blk` of `src` as a restore would:
// FS_CreateGenDBLK with the name, OS info and attributes read from `src`.
inline void describe_again(FSYS_HAND_STRUCT* src, DBLK* blk, FSYS_HAND_STRUCT* dst, DBLK* out) {
  std::vector<wchar_t> name(static_cast<std::size_t>(src->funcTable->SizeofOSName(src, blk, false)) / sizeof(wchar_t) + 1);
  src->funcTable->GetOSName(src, blk, name.data(), false);
  static unsigned char info[1024];  // FS_GetOS_InfoFromDBLK's capacity
  FS_GetOS_InfoFromDBLK(src, blk, info);
  _CREATE_DBLK req;
  FS_SetDefaultDBLK(dst, static_cast<char>(blk->blk_type), 0, &req);
  req.dblk = req.gen.dblk = out;
  req.gen.name = name.data();
  req.gen.name_size = static_cast<std::uint16_t>((std::wcslen(name.data()) + 1) * sizeof(wchar_t));
  req.gen.os_id = blk->os_id;
  req.gen.os_ver = blk->os_ver;
  req.gen.os_info = info;
  req.gen.os_info_size = static_cast<std::uint16_t>(FS_SizeofOS_InfoInDBLK(src, blk));
  req.gen.media_attrib = FS_GetAttrib1FromDBLK(src, blk);
  req.gen.attrib2 = FS_GetAttrib2FromDBLK(src, blk);
  FS_CreateGenDBLK(dst, blk->blk_type, &req);
}

// Copies every object below the current directory of `src` into the current
// directory of `dst` as a restore would (describe_again, CreateObj,
// FS_OpenObj/FS_WriteObj/FS_CloseObj), reads and writes in pieces whose
// sizes come from `rng`. Returns the totals of the reading side.
inline WalkTotals copy_tree(FSYS_HAND_STRUCT* src, FSYS_HAND_STRUCT* dst, std::mt19937& rng) {
  constexpr unsigned kMaxPiece = 70000;
  _FUNC_LIST const& d = *dst->funcTable;
  WalkTotals totals;
  std::vector<std::pair<DBLK, bool>> made;  // each directory being copied, and whether dst entered it
  auto write = [&](_FILE_HAND_STRUCT* obj, STREAM_INFO const& h, unsigned char* data, unsigned n) {
    STREAM_INFO header = h, none{};
    unsigned need = 0, zero = 0;
    if (data == nullptr) return FS_WriteObj(obj, nullptr, &zero, &need, &header);
    FS_STATUS w = FS_SUCCESS;
    for (unsigned at = 0, piece = 0; at < n && w == FS_SUCCESS; at += piece) {
      piece = std::min(n - at, 1 + static_cast<unsigned>(rng() % kMaxPiece));
      w = FS_WriteObj(obj, data + at, &piece, &need, &none);
    }
    return w;
  };
  auto visit = [&](DBLK* blk) {
    DBLK out{};
    describe_again(src, blk, dst, &out);
    _FILE_HAND_STRUCT* obj = nullptr;
    FS_STATUS st = d.CreateObj(dst, &out, nullptr, RESTORE_OVERWRITE);
    if (st == FS_SUCCESS) st = FS_OpenObj(dst, &obj, &out, FS_WRITE);
    if (st != FS_SUCCESS) totals.failures.push_back(L"restore: " + last_message(dst));
    read_object(src, blk, &rng, [&](STREAM_INFO const& h, unsigned char* data, unsigned n) {
      return obj == nullptr ? FS_SUCCESS : write(obj, h, data, n);
    }, totals);
    if (obj != nullptr && FS_CloseObj(obj, nullptr, nullptr) != FS_SUCCESS)
      totals.failures.push_back(L"restore close: " + last_message(dst));
    if (blk->blk_type != DBLK_KIND_DDB) return (void)d.ReleaseBlk(dst, &out);
    made.push_back({out, false});
    made.back().second = d.ChangeIntoDDB(dst, &made.back().first) == FS_SUCCESS;
  };
  auto leave = [&](DBLK*) {
    if (made.back().second) d.ChangeDirUp(dst);
    d.ReleaseBlk(dst, &made.back().first);
    made.pop_back();
  };
  walk(src, visit, leave);
  return totals;
}

}  // namespace qbtest
