// The registry accessors and the generic table.
#include <cstring>

#include <gtest/gtest.h>

#include "capture.h"
#include <qbfsys/fs_init.h>
#include <qbfsys/gen.h>
#include <qbfsys/registry.h>

namespace {

FS_STATUS open_stub(FSYS_HAND_STRUCT*) { return 0; }
FS_STATUS dii_stub(FSYS_HAND_STRUCT*, wchar_t const*, wchar_t const*, _DII_CONTROL_TYPE, unsigned int,
                   FS_OFF_HOST_FILE_LIST**, FS_OFF_HOST_FILE_LIST**, wchar_t*, unsigned int&) {
  return 0;
}

class Dummy : public FS_DleBase {};

TEST(Registry, ObjectPointerRangeChecks) {
  qbtest::MessageCapture messages;
  Dummy a, b;
  set_DLE_fsysObjPtr(50, &a);
  EXPECT_EQ(get_DLE_fsysObjPtr(50), &a);
  EXPECT_TRUE(messages.lines().empty());

  set_DLE_fsysObjPtr(51, &b);
  EXPECT_TRUE(messages.has(L"set_DLE_fsysObjPtr: Bad file system index Parameter at line number 44"));
  for (unsigned i = 0; i < 50; ++i) EXPECT_EQ(get_DLE_fsysObjPtr(i), nullptr);
  EXPECT_EQ(get_DLE_fsysObjPtr(50), &a);

  EXPECT_EQ(get_DLE_fsysObjPtr(51), nullptr);
  EXPECT_TRUE(messages.has(L"get_DLE_fsysObjPtr: Bad file system index Parameter at line number 55"));
  EXPECT_EQ(get_DLE_fsysObjPtr(~0ul), nullptr);

  EXPECT_EQ(FS_CreateDleAgent(51), nullptr);
  EXPECT_TRUE(messages.has(L"FS_CreateObject: Bad file system index Parameter at line number 1491"));
  set_DLE_fsysObjPtr(50, nullptr);
}

TEST(Registry, GenericTableIsWhatEveryIndexStartsWith) {
  qbtest::MessageCapture messages;
  ASSERT_EQ(FS_InitFileSys(nullptr, 0, nullptr, 0), FS_SUCCESS);
  _FUNC_LIST* tables = nullptr;
  get_func_tabs(&tables);
  ASSERT_NE(tables, nullptr);
  get_func_tabs(nullptr);  // ignored, no crash

  EXPECT_EQ(GetFuncTablePtr_GEN(), &_GENFuncTab);
  EXPECT_EQ(__func_tab_ptr_GEN, &_GENFuncTab);
  EXPECT_EQ(FS_CreateDleAgent(7), nullptr);  // slot 0 of the generic table is empty
  EXPECT_EQ(_GENFuncTab.InitFileSys, &GEN_InitFileSys);
  EXPECT_EQ(_GENFuncTab.CreateObject, nullptr);
  EXPECT_EQ(_GENFuncTab.AttachToDLE, nullptr);
  EXPECT_EQ(_GENFuncTab.DetachDLE, nullptr);
  // Replacing registry entries never changes the generic table or its copy.
  tables[3].OpenSys = open_stub;
  _FUNC_LIST copy = GetFuncTable_GEN();
  EXPECT_EQ(std::memcmp(&copy, &_GENFuncTab, sizeof copy), 0);
  EXPECT_NE(std::memcmp(&tables[3], &_GENFuncTab, sizeof copy), 0);
  FS_RemoveFileSys();
}

TEST(Registry, SlotAccessByNumber) {
  _FUNC_LIST t{};
  t.DirectImageInterface = dii_stub;
  EXPECT_EQ(FS_FuncListSlot(t, 114), reinterpret_cast<void*>(&dii_stub));
  EXPECT_EQ(FS_FuncListSlot(t, 113), nullptr);
  EXPECT_EQ(FS_FuncListSlot(t, 115), nullptr);
}

}  // namespace
