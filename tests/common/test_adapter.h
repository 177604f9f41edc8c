// An in-process adapter for the handle tests: attach, detach, close and the
// restore work flow answer as the test sets them (TestAdapterControl); every
// other operation is the layer's generic adapter's (FS_FshGen), so a test
// overrides only what its file system serves.
//
// Like a real adapter it belongs to the handle that points at it: CloseSys
// clears the handle's field and deletes the object.
#pragma once
#include <qbfsys/fs_fsh_gen.h>
#include <qbfsys/handles.h>

namespace qbtest {

struct TestAdapterControl {
  FS_STATUS attach_result = FS_SUCCESS;
  FS_STATUS detach_result = FS_SUCCESS;
  FS_STATUS close_result = FS_SUCCESS;
  wchar_t const* restore_work_flow = L"";
  int attaches = 0;
  int detaches = 0;
  int closes = 0;
  int live = 0;  // adapters made and not yet deleted
};

class TestAdapter : public FS_FshGen {
 public:
  explicit TestAdapter(TestAdapterControl* control) : control_(control) { ++control_->live; }
  ~TestAdapter() override { --control_->live; }

  FS_STATUS AttachToDLE(FSYS_HAND_STRUCT*, GENERIC_DLE*, wchar_t*, wchar_t*) override {
    ++control_->attaches;
    return control_->attach_result;
  }
  FS_STATUS DetachDLE(FSYS_HAND_STRUCT*, void*, void**) override {
    ++control_->detaches;
    return control_->detach_result;
  }
  FS_STATUS CloseSys(FSYS_HAND_STRUCT* hand) override {
    ++control_->closes;
    FS_STATUS const result = control_->close_result;
    if (hand != nullptr) hand->adapter = nullptr;
    delete this;
    return result;
  }
  wcstring GetRestoreWorkFlow(FSYS_HAND_STRUCT*) override { return control_->restore_work_flow; }

 private:
  TestAdapterControl* control_;
};

}  // namespace qbtest
