// Filling and pruning the tree: drive-finding passes across in-process
// tables and a real module, removal, flushing, children checks.
#include <dlfcn.h>

#include <cstring>

#include "dle_fixture.h"
#include <qbfsys/gen.h>

namespace {

using qbtest::DleTest;

std::vector<int> g_calls;  // indices whose find-drives ran, in order

template <int I>
FS_STATUS find_recording(HEAD_DLE* head, QB_CFG*) {
  g_calls.push_back(I);
  wchar_t name[] = L"fs-00";
  name[3] = static_cast<wchar_t>(L'0' + I / 10);
  name[4] = static_cast<wchar_t>(L'0' + I % 10);
  return DLE_Create(head, nullptr, name, I, 0, L'\\', nullptr);
}

FS_STATUS find_failing(HEAD_DLE*, QB_CFG*) {
  g_calls.push_back(-1);
  return 0xE0007777;
}

std::vector<GENERIC_DLE*> g_removed;
FS_STATUS remove_recording(GENERIC_DLE* dle) {
  g_removed.push_back(dle);
  return GEN_RemoveDLE(dle);
}

using qbtest::tables;

char const* const kFindModule = QB_TEST_MODULE_DIR "/libdle_find_module.so";

class DleLists : public DleTest {
 protected:
  void SetUp() override {
    DleTest::SetUp();
    g_calls.clear();
    g_removed.clear();
  }
  void TearDown() override {
    DleTest::TearDown();
    for (auto& v : find_order) v = 0;
  }
  // Starts the layer again with the drive-finding module (index 15).
  void start_with_find_module() {
    FS_RemoveFileSys();
    std::wstring const path(kFindModule, kFindModule + std::strlen(kFindModule));
    wchar_t const* list[] = {path.c_str(), nullptr};
    ASSERT_EQ(FS_InitFileSys(&cfg_, 0, list, 1), FS_SUCCESS);
  }
};

TEST_F(DleLists, FindDrivesRunsInPassesAcrossTablesAndARealModule) {
  ASSERT_NO_FATAL_FAILURE(start_with_find_module());
  ASSERT_EQ(find_order[15], 1);

  tables()[3].FindDrives = find_recording<3>;
  tables()[4].FindDrives = find_recording<4>;
  tables()[6].FindDrives = find_failing;
  tables()[9].FindDrives = find_recording<9>;
  find_order[3] = 2;
  find_order[4] = 1;
  find_order[6] = 3;
  find_order[9] = 1;  // only with the drive-scan flag
  find_order[8] = 1;  // generic table: finds nothing, not an error

  HEAD_DLE* head = nullptr;
  ASSERT_EQ(FS_InitDleList(&head, &cfg_), FS_SUCCESS);
  EXPECT_EQ(g_calls, (std::vector<int>{4, 3, -1}));
  EXPECT_TRUE(messages_.has(
      L"Status 0xE0007777 returned calling FindDrives for file system 6 in DLE_UpdateList"));
  EXPECT_EQ(names(head->dle_q), (std::vector<std::wstring>{L"fs-03", L"fs-04", L"MOD-A"}));
  GENERIC_DLE* mod = nullptr;
  ASSERT_EQ(DLE_FindByName(head, L"MOD-A\\child", -1, &mod, nullptr), FS_SUCCESS);
  EXPECT_EQ(mod->parent->child_q.q_count, 1);

  g_calls.clear();
  cfg_.drive_scan_flag = 1;
  EXPECT_EQ(DLE_UpdateList(head, &cfg_), FS_SUCCESS);
  EXPECT_EQ(g_calls, (std::vector<int>{4, 9, 3, -1}));

  FS_DeinitDleList(head);
  void* module = dlopen(kFindModule, RTLD_LAZY | RTLD_NOLOAD);
  ASSERT_NE(module, nullptr);
  auto removed = reinterpret_cast<int (*)()>(dlsym(module, "fm_removed"));
  EXPECT_EQ(removed(), 4);  // two rounds of drive finding, two elements each
  dlclose(module);
}

TEST_F(DleLists, FailingModuleIsReportedAndTheOthersGoOn) {
  ASSERT_NO_FATAL_FAILURE(start_with_find_module());
  tables()[2].FindDrives = find_recording<2>;
  find_order[2] = 1;
  cfg_.module_flags = 1;
  HEAD_DLE* head = nullptr;
  ASSERT_EQ(FS_InitDleList(&head, &cfg_), FS_SUCCESS);
  EXPECT_TRUE(messages_.has(
      L"Status 0xE0005555 returned calling FindDrives for file system 15 in DLE_UpdateList"));
  EXPECT_EQ(names(head->dle_q), (std::vector<std::wstring>{L"fs-02"}));
  FS_DeinitDleList(head);
}

TEST_F(DleLists, EmptyTreeIsAnErrorButTheHeadIsReturned) {
  HEAD_DLE* head = nullptr;
  EXPECT_EQ(FS_InitDleList(&head, &cfg_), FS_ERR_INIT_FAILED);
  ASSERT_NE(head, nullptr);
  EXPECT_EQ(head->dle_q.q_count, 0);
  FS_DeinitDleList(head);
  FS_DeinitDleList(nullptr);
  EXPECT_EQ(FS_InitDleList(nullptr, &cfg_), FS_ERR_BAD_PARAMETER);
}

TEST_F(DleLists, NullConfigurationIsReportedPerFileSystem) {
  tables()[4].FindDrives = find_recording<4>;
  find_order[4] = 1;
  EXPECT_EQ(DLE_UpdateList(head_, nullptr), FS_SUCCESS);
  EXPECT_TRUE(g_calls.empty());
  EXPECT_TRUE(messages_.has(L"fstable: Bad Parameter at line number 2387"));
  EXPECT_TRUE(messages_.has(
      L"Status 0xE000FE49 returned calling FindDrives for file system 4 in DLE_UpdateList"));
}

TEST_F(DleLists, SingleDriveTypeAndAddChildrenDispatch) {
  EXPECT_EQ(DLE_UpdateSingleDriveType(nullptr, &cfg_, 4), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(DLE_UpdateSingleDriveType(head_, &cfg_, 51), FS_ERR_BAD_PARAMETER);
  EXPECT_TRUE(messages_.has(L"fstable: Bad Parameter at line number 2387"));
  tables()[4].FindDrives = nullptr;
  EXPECT_EQ(DLE_UpdateSingleDriveType(head_, &cfg_, 4), FS_ERR_UNIMPLEMENTED);
  tables()[4].FindDrives = find_failing;
  EXPECT_EQ(DLE_UpdateSingleDriveType(head_, &cfg_, 4), 0xE0007777u);

  GENERIC_DLE* dle = add(L"m", 4);
  EXPECT_EQ(DLE_AddChildren(nullptr, 4, &cfg_), FS_ERR_BAD_PARAMETER);
  EXPECT_TRUE(messages_.has(L"fstable: Bad Parameter at line number 2418"));
  EXPECT_EQ(DLE_AddChildren(dle, 51, &cfg_), FS_ERR_NOT_SUPPORTED);
  EXPECT_EQ(DLE_AddChildren(dle, 4, &cfg_), FS_ERR_NOT_SUPPORTED);  // empty slot 68
  static int adds = 0;
  tables()[4].AddChildren = [](GENERIC_DLE*, QB_CFG*) -> FS_STATUS {
    ++adds;
    return 0xE0000BAD;  // ignored by the layer
  };
  EXPECT_EQ(DLE_AddChildren(dle, 4, &cfg_), FS_SUCCESS);
  EXPECT_EQ(adds, 1);
}

TEST_F(DleLists, RemoveRecurseRemovesChildrenFirstWithOrWithoutForce) {
  for (unsigned i : {3u, 4u}) tables()[i].RemoveDLE = remove_recording;
  GENERIC_DLE* a = add(L"a", 3);
  GENERIC_DLE* a1 = add(L"a1", 4, 0, a);
  GENERIC_DLE* a11 = add(L"a11", 3, 0, a1);
  GENERIC_DLE* a2 = add(L"a2", 3, 0, a);
  GENERIC_DLE* b = add(L"b", 3);
  EXPECT_EQ(DLE_RemoveRecurse(a, 0), 0u);
  // Children in list order (a2 has the smaller type), each subtree bottom-up.
  EXPECT_EQ(g_removed, (std::vector<GENERIC_DLE*>{a2, a11, a1, a}));
  EXPECT_EQ(names(head_->dle_q), (std::vector<std::wstring>{L"b"}));
  g_removed.clear();
  EXPECT_EQ(DLE_Remove(head_, b), 0u);
  EXPECT_EQ(g_removed, (std::vector<GENERIC_DLE*>{b}));
  EXPECT_EQ(DLE_RemoveRecurse(nullptr, 1), 0u);
}

TEST_F(DleLists, ElementsOfIndex23AreRemovedByIndex23) {
  tables()[23].RemoveDLE = remove_recording;
  tables()[5].RemoveDLE = nullptr;  // would leak if it were asked
  GENERIC_DLE* d = add(L"x", 5);
  d->flags2 = 0x60;
  DLE_RemoveRecurse(d, 1);
  EXPECT_EQ(g_removed, (std::vector<GENERIC_DLE*>{d}));
}

TEST_F(DleLists, FlushKeepsWhatIsAttached) {
  GENERIC_DLE* keep_child = add(L"e1", 4);
  add(L"e1c1", 4, 0, keep_child)->attach_count = 1;
  add(L"e1c2", 4, 0, keep_child);
  GENERIC_DLE* attached = add(L"e2", 4);
  attached->attach_count = 2;
  GENERIC_DLE* gone_child = add(L"e2c", 4, 0, attached);
  add(L"e2cc", 4, 0, gone_child);  // a grandchild goes with its parent
  add(L"e3", 4);
  add(L"other", 5);
  GEN_FlushDLEs(head_, 4);
  EXPECT_EQ(names(head_->dle_q), (std::vector<std::wstring>{L"e1", L"e2", L"other"}));
  EXPECT_EQ(keep_child->child_q.q_count, 2);
  EXPECT_EQ(attached->child_q.q_count, 0);
  GEN_FlushDLEs(nullptr, 4);
}

TEST_F(DleLists, CheckChildrenMarksUnusableChildrenOfANonLocalMachine) {
  GENERIC_DLE* machine = add(L"\\\\remote", 7);
  machine->status_flags = DLE_STATUS_MAYBE_REMOTE;
  GENERIC_DLE* remote_down = add(L"r1", 5, 0, machine);
  remote_down->state = 2;
  GENERIC_DLE* remote_up = add(L"r2", 5, 0, machine);
  GENERIC_DLE* inner_machine = add(L"m", 7, 0, machine);
  GENERIC_DLE* volume = add(L"v", 3, 0, machine);
  GENERIC_DLE* owned23 = add(L"w", 7, 0, machine);
  owned23->flags2 = 0x60;
  GENERIC_DLE* hidden = add(L"h", 3, 0, machine);
  hidden->hidden = 1;

  EXPECT_EQ(CheckChildren(machine, 0x04), FS_STATUS_NO_MORE_DLE);
  EXPECT_EQ(remote_down->status_flags, 0u);  // flag 0x04 spares it
  EXPECT_EQ(CheckChildren(machine, 0), FS_STATUS_NO_MORE_DLE);
  EXPECT_EQ(remote_down->status_flags, DLE_STATUS_UNAVAILABLE);
  EXPECT_EQ(remote_up->status_flags, 0u);
  EXPECT_EQ(inner_machine->status_flags, 0u);
  EXPECT_EQ(volume->status_flags, DLE_STATUS_UNAVAILABLE);
  EXPECT_EQ(owned23->status_flags, DLE_STATUS_UNAVAILABLE);
  EXPECT_EQ(hidden->status_flags, 0u);
}

TEST_F(DleLists, CheckChildrenLeavesLocalMachinesAndOtherElementsAlone) {
  GENERIC_DLE* local = add(L"\\\\here", 7);
  GENERIC_DLE* child = add(L"v", 3, 0, local);
  EXPECT_EQ(CheckChildren(local, 0), 1u);  // FS_IsLocalDLE's answer
  EXPECT_EQ(child->status_flags, 0u);
  GENERIC_DLE* owned23 = add(L"x", 7);
  owned23->flags2 = 0x60;
  add(L"c", 3, 0, owned23);
  EXPECT_EQ(CheckChildren(owned23, 0), 0x60u);
  GENERIC_DLE* volume = add(L"vol", 3);
  add(L"c", 3, 0, volume);
  EXPECT_EQ(CheckChildren(volume, 0), 0u);
  EXPECT_EQ(CheckChildren(nullptr, 0), 0u);
  EXPECT_TRUE(FS_IsLocalMachine(wcstring(L"anything")));
}

}  // namespace
