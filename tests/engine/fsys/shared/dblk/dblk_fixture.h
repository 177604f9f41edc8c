// A file system for the descriptor-block tests, reachable both ways the
// layer dispatches: a function table (slots 36, 42, 43, 47, 48, 49, 54) and
// an adapter object serving the same operations. Both answer from one
// FakeFs record and count their calls apart, so a test can tell which road
// the layer took.
#pragma once
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "capture.h"
#include "test_adapter.h"
#include <qbfsys/qbfsys.h>

namespace qbtest {

struct FakeFs {
  std::uint32_t attrib[2] = {0, 0};     // words 1 and 2 of every object block
  std::vector<unsigned char> os_info;   // what SizeofOSInfo / GetOS_InfoDBLK give
  std::wstring os_name = L"name";       // what SizeofOSName / GetOSName give
  int table_calls = 0;
  int adapter_calls = 0;
  short last_capacity = 0;              // capacity offered to GetOS_InfoDBLK
  FS_STATUS create_result = 0x12340000 | 7;
  _DATE_TIME seen[6] = {};              // dates as the creator saw them
  _DATE_TIME const* seen_ptr[6] = {};  // the pointers the creator got
};

inline FakeFs& fake() {
  static FakeFs fs;
  return fs;
}

// Each operation counts its call on the road it came by.
namespace fake_ops {
inline FS_STATUS mod_attrib(int& calls, int which, int direction, unsigned int* word) {
  ++calls;
  if (direction == 0) *word = fake().attrib[which];
  else fake().attrib[which] = *word;
  return FS_SUCCESS;
}
inline FS_STATUS sizeof_os_info(int& calls) {
  ++calls;
  return static_cast<FS_STATUS>(fake().os_info.size());
}
inline FS_STATUS get_os_info(int& calls, unsigned char* buffer, short* capacity) {
  ++calls;
  fake().last_capacity = *capacity;
  std::memcpy(buffer, fake().os_info.data(), fake().os_info.size());
  *capacity = static_cast<short>(fake().os_info.size());
  return FS_SUCCESS;
}
inline FS_STATUS create(int& calls, _CREATE_DBLK* request) {
  ++calls;
  _DATE_TIME const* dates[6] = {request->gen.cdate, request->gen.mdate, request->gen.bdate,
                                request->gen.adate, request->gen.ext_date1, request->gen.ext_date2};
  for (int i = 0; i < 6; ++i) {
    fake().seen_ptr[i] = dates[i];
    if (dates[i] != nullptr) fake().seen[i] = *dates[i];
  }
  return fake().create_result;
}
inline FS_STATUS sizeof_os_name(int& calls) {
  ++calls;
  return static_cast<FS_STATUS>((fake().os_name.size() + 1) * sizeof(wchar_t));
}
inline FS_STATUS get_os_name(int& calls, wchar_t* buffer) {
  ++calls;
  std::wmemcpy(buffer, fake().os_name.c_str(), fake().os_name.size() + 1);
  return FS_SUCCESS;
}
}  // namespace fake_ops

inline _FUNC_LIST fake_table() {
  using namespace fake_ops;
  _FUNC_LIST t{};
  t.ModAttrib1DBLK = [](FSYS_HAND_STRUCT*, int d, DBLK*, unsigned int* w) { return mod_attrib(fake().table_calls, 0, d, w); };
  t.ModAttrib2DBLK = [](FSYS_HAND_STRUCT*, int d, DBLK*, unsigned int* w) { return mod_attrib(fake().table_calls, 1, d, w); };
  t.SizeofOSInfo = [](FSYS_HAND_STRUCT*, DBLK*) { return sizeof_os_info(fake().table_calls); };
  t.GetOS_InfoDBLK = [](FSYS_HAND_STRUCT*, DBLK*, unsigned char* b, short* c) { return get_os_info(fake().table_calls, b, c); };
  t.CreateDBLK = [](FSYS_HAND_STRUCT*, unsigned int, _CREATE_DBLK* r) { return create(fake().table_calls, r); };
  t.SizeofOSName = [](FSYS_HAND_STRUCT*, DBLK*, bool) { return sizeof_os_name(fake().table_calls); };
  t.GetOSName = [](FSYS_HAND_STRUCT*, DBLK*, wchar_t* b, bool) { return get_os_name(fake().table_calls, b); };
  return t;
}

class FakeAdapter : public TestAdapter {
 public:
  explicit FakeAdapter(TestAdapterControl* control) : TestAdapter(control) {}
  FS_STATUS ModAttrib1DBLK(FSYS_HAND_STRUCT*, int d, DBLK*, unsigned int* w) override { return fake_ops::mod_attrib(calls(), 0, d, w); }
  FS_STATUS ModAttrib2DBLK(FSYS_HAND_STRUCT*, int d, DBLK*, unsigned int* w) override { return fake_ops::mod_attrib(calls(), 1, d, w); }
  FS_STATUS SizeofQbdsInfo(FSYS_HAND_STRUCT*, DBLK*) override { return fake_ops::sizeof_os_info(calls()); }
  FS_STATUS GetQbdsInfoDBLK(FSYS_HAND_STRUCT*, DBLK*, unsigned char* b, short* c) override { return fake_ops::get_os_info(calls(), b, c); }
  FS_STATUS CreateGenDBLK(FSYS_HAND_STRUCT*, unsigned int, _CREATE_DBLK* r) override { return fake_ops::create(calls(), r); }
  FS_STATUS SizeofOSName(FSYS_HAND_STRUCT*, DBLK*, bool) override { return fake_ops::sizeof_os_name(calls()); }
  FS_STATUS GetOSName(FSYS_HAND_STRUCT*, DBLK*, wchar_t* b, bool) override { return fake_ops::get_os_name(calls(), b); }

 private:
  static int& calls() { return fake().adapter_calls; }
};

// A handle on the fake table; `use_adapter()` puts the adapter in front.
class DblkTest : public ::testing::Test {
 protected:
  void SetUp() override {
    fake() = FakeFs{};
    ASSERT_EQ(FS_OpenFileSys(&hand_, 3, &cfg_, &table_), FS_SUCCESS);
  }
  void TearDown() override {
    if (hand_ != nullptr) FS_CloseFileSys(hand_);
    EXPECT_EQ(control_.live, 0);
  }
  void use_adapter() { hand_->adapter = new FakeAdapter(&control_); }
  static DBLK block(std::uint8_t kind, std::uint32_t flags = 0) {
    DBLK blk{};
    blk.blk_type = kind;
    blk.obj_flags = flags;
    return blk;
  }

  QB_CFG cfg_{};
  _FUNC_LIST table_ = fake_table();
  TestAdapterControl control_;
  FSYS_HAND_STRUCT* hand_ = nullptr;
  MessageCapture messages_;
};

}  // namespace qbtest
