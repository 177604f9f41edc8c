// A started layer (generic tables everywhere) and an empty tree head, for
// the DLE tests. Messages are captured.
#pragma once
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "capture.h"
#include "test_records.h"
#include <qbfsys/dle.h>
#include <qbfsys/fs_init.h>
#include <qbfsys/registry.h>

namespace qbtest {

class DleTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(FS_InitFileSys(&cfg_, 0, nullptr, 0), FS_SUCCESS);
    head_ = new_empty_head();
  }
  void TearDown() override {
    FS_DeinitDleList(head_);
    FS_RemoveFileSys();
  }

  GENERIC_DLE* add(wchar_t const* name, std::uint32_t type, std::uint32_t subtype = 0,
                   GENERIC_DLE* parent = nullptr, wchar_t delimiter = L'\\') {
    GENERIC_DLE* dle = nullptr;
    EXPECT_EQ(DLE_Create(head_, parent, name, type, subtype, delimiter, &dle), FS_SUCCESS);
    return dle;
  }

  // Device names of a list in order, hidden ones included.
  static std::vector<std::wstring> names(_Q_HEADER const& q) {
    std::vector<std::wstring> out;
    for (_Q_ELEM* e = q.q_head; e != nullptr; e = e->q_next)
      out.emplace_back(reinterpret_cast<GENERIC_DLE*>(e)->device_name);
    return out;
  }

  QB_CFG cfg_{};
  HEAD_DLE* head_ = nullptr;
  MessageCapture messages_;
};

}  // namespace qbtest
