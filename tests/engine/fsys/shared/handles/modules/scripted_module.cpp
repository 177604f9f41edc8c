// The scripted object behind a function table, built as a module of its
// own. The test hands it a script through qbtest_set_object_script.
#include "scripted_object.h"

namespace {
qbtest::ObjectScript* g_script = nullptr;

FS_STATUS open_obj(FSYS_HAND_STRUCT* hand, _FILE_HAND_STRUCT** out, DBLK*, OPEN_MODE) {
  return qbtest::scripted_open(hand, out, g_script);
}
FS_STATUS close_obj(_FILE_HAND_STRUCT* obj, void**, void**) { return qbtest::scripted_close(obj); }

_FUNC_LIST make_table() {
  _FUNC_LIST t{};
  t.OpenObj = open_obj;
  t.ReadObj = qbtest::scripted_read;
  t.WriteObj = qbtest::scripted_write;
  t.CloseObj = close_obj;
  return t;
}
_FUNC_LIST g_table = make_table();
}  // namespace

extern "C" __attribute__((visibility("default"))) _FUNC_LIST* qbtest_scripted_table() { return &g_table; }
extern "C" __attribute__((visibility("default"))) void qbtest_set_object_script(qbtest::ObjectScript* s) {
  g_script = s;
}

// ---- an adapter class of the module's own ----------------------------------
// Derived from the layer's FS_FshGen, as a module author would: it counts,
// by operation number, every call the layer makes on it and serves the
// operations a job needs.
#include <cwchar>

#include <qbfsys/fs_fsh_gen.h>

namespace {
class RecordingAdapter final : public FS_FshGen {
 public:
  explicit RecordingAdapter(int* counts) : counts_(counts) {}
  FS_STATUS AttachToDLE(FSYS_HAND_STRUCT*, GENERIC_DLE*, wchar_t*, wchar_t*) override { return hit(2); }
  FS_STATUS DetachDLE(FSYS_HAND_STRUCT*, void*, void**) override { return hit(3); }
  FS_STATUS CloseSys(FSYS_HAND_STRUCT* hand) override {
    hit(4);
    return FS_FshGen::CloseSys(hand);
  }
  FS_STATUS OpenObj(FSYS_HAND_STRUCT* hand, _FILE_HAND_STRUCT** out, DBLK*, OPEN_MODE) override {
    *out = static_cast<_FILE_HAND_STRUCT*>(std::calloc(1, sizeof(_FILE_HAND_STRUCT)));
    (*out)->fsysHand = hand;
    return hit(16);
  }
  FS_STATUS SeekObj(_FILE_HAND_STRUCT*, unsigned int*) override { return hit(17); }
  FS_STATUS ReadObj(_FILE_HAND_STRUCT*, unsigned char*, unsigned int* size, unsigned int*,
                    STREAM_INFO*) override {
    *size = 0;
    hit(18);
    return qbtest::kEndOfObject;
  }
  FS_STATUS WriteObj(_FILE_HAND_STRUCT*, unsigned char*, unsigned int*, unsigned int*,
                     STREAM_INFO*) override {
    return hit(19);
  }
  FS_STATUS CloseObj(_FILE_HAND_STRUCT* obj, void**, void**) override {
    std::free(obj);
    return hit(20);
  }
  FS_STATUS GetOSName(FSYS_HAND_STRUCT*, DBLK*, wchar_t* name, bool) override {
    std::wcscpy(name, L"x");
    return hit(30);
  }
  FS_STATUS ModAttrib1DBLK(FSYS_HAND_STRUCT*, int, DBLK*, unsigned int* word) override {
    *word = 5;
    return hit(36);
  }
  FS_STATUS ModAttrib2DBLK(FSYS_HAND_STRUCT*, int, DBLK*, unsigned int* word) override {
    *word = 6;
    return hit(37);
  }
  FS_STATUS SizeofOSName(FSYS_HAND_STRUCT*, DBLK*, bool) override {
    hit(41);
    return 2 * sizeof(wchar_t);
  }
  FS_STATUS SizeofQbdsInfo(FSYS_HAND_STRUCT*, DBLK*) override {
    hit(42);
    return 0;
  }
  FS_STATUS GetQbdsInfoDBLK(FSYS_HAND_STRUCT*, DBLK*, unsigned char*, short*) override { return hit(43); }
  FS_STATUS CreateGenDBLK(FSYS_HAND_STRUCT*, unsigned int, _CREATE_DBLK*) override { return hit(48); }

 private:
  FS_STATUS hit(int operation) {
    ++counts_[operation];
    return FS_SUCCESS;
  }
  int* counts_;
};
}  // namespace

extern "C" __attribute__((visibility("default"))) FS_FshBase* qbtest_new_recording_adapter(int* counts) {
  return new RecordingAdapter(counts);
}
