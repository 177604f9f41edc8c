// A small module for the validator's tests: one element, "qbv-fake", holding
// one file, "data.bin", of kDataSize bytes in one data stream. Built once
// per fault (QBV_FAULT, one of the kFault* values below), and once with none
// as the control that passes every check.
#include <signal.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <cwchar>

#include <qbfsys/create_dblk.h>
#include <qbfsys/dle.h>
#include <qbfsys/file_hand.h>
#include <qbfsys/gen.h>
#include <qbfsys/handles.h>
#include <qbfsys/module.h>

#define kFaultNone 0
#define kFaultWrongVersion 1   // reports interface version 22
#define kFaultReadOverrun 2    // claims more bytes than the room it was given
#define kFaultLyingSize 3      // the header announces more than the data delivered
#define kFaultCrashAttach 4    // attach writes through a null pointer
#define kFaultHangFind 5       // find-drives never returns
#define kFaultLeakAttach 6     // every attach allocates what detach never frees
#define kFaultBadIndex 7       // its table names index 60
#define kFaultUnpairedSlot 8   // attaches but leaves DetachDLE empty
#define kFaultOddStatus 9      // a read fails with a status the layer does not define
#define kFaultPathNoRoom 10    // GetCurrentPath writes whatever room it is given

namespace {

constexpr int kIndex = 30;
constexpr std::uint32_t kSubtype = 2;
constexpr std::uint32_t kDataSize = 1000;
constexpr std::uint32_t kLiedSize = 400;   // what the lying module delivers
constexpr std::uint32_t kOverrunBy = 8;
constexpr std::uint32_t kLeakBytes = 512;
constexpr int kWrongVersion = 22;
constexpr int kBadIndex = 60;
constexpr FS_STATUS kOddStatus = 0xE0001234;
constexpr wchar_t kFileName[] = L"data.bin";
constexpr short kRootPathBytes = sizeof(wchar_t);  // one empty component

void* volatile g_leaked = nullptr;

struct Object {
  _FILE_HAND_STRUCT base;
  bool header_sent;
  std::uint32_t sent;
};

FS_STATUS init(QB_CFG*) { return FS_SUCCESS; }
FS_STATUS deinit() { return FS_SUCCESS; }

FS_STATUS find_drives(HEAD_DLE* head, QB_CFG*) {
  if (QBV_FAULT == kFaultHangFind)
    for (;;) pause();
  return DLE_Create(head, nullptr, L"qbv-fake", kIndex, kSubtype, L'/', nullptr);
}

FS_STATUS attach(FSYS_HAND_STRUCT*, GENERIC_DLE*, wchar_t*, wchar_t*) {
  if (QBV_FAULT == kFaultCrashAttach) *static_cast<int volatile*>(nullptr) = 1;
  if (QBV_FAULT == kFaultLeakAttach) g_leaked = std::malloc(kLeakBytes);
  return FS_SUCCESS;
}
FS_STATUS detach(FSYS_HAND_STRUCT*, void*, void**) { return FS_SUCCESS; }

FS_STATUS fill(FSYS_HAND_STRUCT* fsh, DBLK* blk) {
  _CREATE_DBLK req;
  FS_SetDefaultDBLK(fsh, static_cast<char>(DBLK_KIND_FDB), 0, &req);
  req.dblk = req.gen.dblk = blk;
  req.gen.name = kFileName;
  req.gen.name_size = sizeof kFileName;
  req.gen.name_char_type = DBLK_NAME_WIDE;
  req.gen.display_size = kDataSize;
  return GEN_CreateDBLK(fsh, DBLK_KIND_FDB, &req);
}
FS_STATUS find_first(FSYS_HAND_STRUCT* fsh, DBLK* blk, wchar_t* spec, unsigned short) {
  if (spec != nullptr && std::wcscmp(spec, L"*") != 0 && std::wcscmp(spec, kFileName) != 0)
    return FS_STATUS_NONE;
  return fill(fsh, blk);
}
FS_STATUS find_next(FSYS_HAND_STRUCT*, DBLK*) { return FS_STATUS_NONE; }
FS_STATUS find_close(FSYS_HAND_STRUCT*, DBLK*) { return FS_SUCCESS; }
FS_STATUS change_into(FSYS_HAND_STRUCT*, DBLK*) { return FS_ERR_BAD_PARAMETER; }
FS_STATUS change_up(FSYS_HAND_STRUCT*) { return FS_ERR_NOT_SUPPORTED; }
FS_STATUS change_dir(FSYS_HAND_STRUCT*, wchar_t* path, short size) {
  return size == kRootPathBytes && path[0] == L'\0' ? FS_SUCCESS : FS_ERR_NOT_SUPPORTED;
}
FS_STATUS current_path(FSYS_HAND_STRUCT*, wchar_t* path, short* size) {
  if (*size < kRootPathBytes && QBV_FAULT != kFaultPathNoRoom) {
    *size = kRootPathBytes;
    return FS_ERR_OBJ_NO_DATA;
  }
  path[0] = L'\0';
  *size = kRootPathBytes;
  return FS_SUCCESS;
}

FS_STATUS open_obj(FSYS_HAND_STRUCT* fsh, _FILE_HAND_STRUCT** out, DBLK*, OPEN_MODE mode) {
  if (mode != FS_READ) return FS_ERR_NOT_SUPPORTED;
  auto* obj = static_cast<Object*>(std::calloc(1, sizeof(Object)));
  if (obj == nullptr) return FS_ERR_NO_MEMORY;
  obj->base.fsysHand = fsh;
  *out = &obj->base;
  return FS_SUCCESS;
}
FS_STATUS read_obj(_FILE_HAND_STRUCT* hand, unsigned char* buffer, unsigned int* size,
                   unsigned int* need, STREAM_INFO* stream) {
  auto* obj = reinterpret_cast<Object*>(hand);
  std::uint32_t const room = *size;
  std::uint32_t const total = QBV_FAULT == kFaultLyingSize ? kLiedSize : kDataSize;
  *need = 1;
  *size = 0;
  if (!obj->header_sent) {
    FS_InitStrmInfo(stream, STRM_GENERIC_DATA, 0, kDataSize);
    obj->header_sent = true;
    return FS_SUCCESS;
  }
  if (obj->sent == total) return FS_ERR_OBJ_NO_DATA;
  if (QBV_FAULT == kFaultOddStatus) return kOddStatus;
  std::uint32_t const n = total - obj->sent < room ? total - obj->sent : room;
  std::memset(buffer, 'q', n);
  obj->sent += n;
  *size = QBV_FAULT == kFaultReadOverrun ? room + kOverrunBy : n;
  return FS_SUCCESS;
}
FS_STATUS close_obj(_FILE_HAND_STRUCT* hand, void**, void**) {
  std::free(hand);
  return FS_SUCCESS;
}

}  // namespace

FS_MODULE_EXPORT int GetInterfaceVersion() {
  return QBV_FAULT == kFaultWrongVersion ? kWrongVersion : FS_MODULE_INTERFACE_VERSION;
}

FS_MODULE_EXPORT int GetTable(int n, unsigned int, _FUNC_LIST* out, int* index) {
  if (n != 0) return 0;
  _FUNC_LIST t{};
  t.InitFileSys = init;
  t.DeInitFileSys = deinit;
  t.FindDrives = find_drives;
  t.RemoveDLE = GEN_RemoveDLE;
  t.AttachToDLE = attach;
  t.DetachDLE = QBV_FAULT == kFaultUnpairedSlot ? nullptr : detach;
  t.FindFirstObj = find_first;
  t.FindNextObj = find_next;
  t.FindObjClose = find_close;
  t.ChangeIntoDDB = change_into;
  t.ChangeDirUp = change_up;
  t.ChangeDir = change_dir;
  t.GetCurrentPath = current_path;
  t.ReleaseBlk = GEN_ReleaseBlk;
  t.OpenObj = open_obj;
  t.ReadObj = read_obj;
  t.CloseObj = close_obj;
  *out = t;
  *index = QBV_FAULT == kFaultBadIndex ? kBadIndex : kIndex;
  return 1;
}
