// A started layer with the handle tests' module (file systems 3 and 5) loaded
// through FS_InitFileSys, file system 40 served in-process by TestAdapter
// objects that its open slot installs, and an empty tree head. Messages are
// captured.
#pragma once
#include <dlfcn.h>

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "capture.h"
#include "test_records.h"
#include "modules/handles_module_control.h"
#include "test_adapter.h"
#include <qbfsys/dle.h>
#include <qbfsys/fs_init.h>
#include <qbfsys/handles.h>
#include <qbfsys/registry.h>

namespace qbtest {

constexpr unsigned kAdapterFsys = 40;

inline TestAdapterControl*& adapter_control() {
  static TestAdapterControl* control = nullptr;
  return control;
}

inline FS_STATUS install_adapter(FSYS_HAND_STRUCT* hand) {
  hand->adapter = new TestAdapter(adapter_control());
  return FS_SUCCESS;
}

class HandleTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string const path = std::string(QB_TEST_MODULE_DIR) + "/libhandles_test_module.so";
    std::wstring const wpath(path.begin(), path.end());
    wchar_t const* list[] = {wpath.c_str(), nullptr};
    ASSERT_EQ(FS_InitFileSys(&cfg_, 0, list, 1), FS_SUCCESS);
    void* lib = dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    ASSERT_NE(lib, nullptr);
    auto* control = reinterpret_cast<HandlesModuleControlFn*>(dlsym(lib, "hm_control"));
    dlclose(lib);  // the layer keeps the module mapped
    ASSERT_NE(control, nullptr);
    module_ = control();
    *module_ = HandlesModuleControl{};

    adapter_control() = &adapter_;
    tables()[kAdapterFsys].OpenSys = install_adapter;

    head_ = qbtest::new_empty_head();
  }
  void TearDown() override {
    FS_DeinitDleList(head_);
    FS_RemoveFileSys();
    EXPECT_EQ(adapter_.live, 0) << "an adapter outlived its handle";
  }

  GENERIC_DLE* add(wchar_t const* name, std::uint32_t type, std::uint32_t status_flags = 0) {
    GENERIC_DLE* dle = nullptr;
    EXPECT_EQ(DLE_Create(head_, nullptr, name, type, 0, L'\\', &dle), FS_SUCCESS);
    if (dle != nullptr) dle->status_flags = status_flags;
    return dle;
  }

  FS_STATUS attach(FSYS_HAND_STRUCT** out, GENERIC_DLE* dle, std::uint32_t flags = 0,
                   _IPC_HAND* ipc = nullptr) {
    return FS_AttachToDLE(out, dle, &cfg_, nullptr, nullptr, flags, 7, &cfg_, nullptr, 99, ipc,
                          true);
  }

  QB_CFG cfg_{};
  HEAD_DLE* head_ = nullptr;
  HandlesModuleControl* module_ = nullptr;
  TestAdapterControl adapter_;
  MessageCapture messages_;
};

}  // namespace qbtest
