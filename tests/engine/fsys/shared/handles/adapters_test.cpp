// The adapter classes: FS_FshGen's fixed answers and guards, FS_FshLegacy's
// forwarding forms, FS_FshGeneric's description of a block, and an adapter
// class defined in a separately built module receiving every operation the
// layer dispatches.
#include <dlfcn.h>

#include <cstdint>
#include <cstring>

#include <gtest/gtest.h>

#include "capture.h"
#include "handles_fixture.h"
#include <fs_property_tree.h>
#include <qbfsys/qbfsys.h>
#include <qbfsys/fs_fsh_generic.h>

#include "modules/scripted_object.h"

namespace {

using qbtest::HandleTest;

std::wstring gen_line(char const* what, int operation) {
  return std::wstring(L"FS_FshGen: ") + (what[0] == 'U' ? L"Unimplemented function called" : L"Bad Parameter") +
         L" at line number " + std::to_wstring(FS_FSHGEN_LINE_BASE + operation);
}

// The place (counting from 1) of a virtual operation in the virtual table. In
// the C++ ABI the layer and its modules are built with (GCC, x86-64), a
// pointer to a virtual member function holds 1 plus the byte offset of the
// operation's entry.
template <typename Member>
std::size_t virtual_place(Member member) {
  std::uintptr_t words[2];
  static_assert(sizeof member == sizeof words, "a pointer to member function is two words");
  std::memcpy(words, &member, sizeof words);
  return (words[0] - 1) / sizeof(void*) + 1;
}

// Modules built long ago call the adapter's operations by their place in the
// virtual table. A few places, written out here, so that the rows the
// classes are expanded from cannot move them unnoticed.
TEST(FshBase, OperationsKeepTheirPlacesInTheVirtualTable) {
  struct Place {
    std::size_t got;
    std::size_t expected;
    char const* operation;
  } const places[] = {
      {virtual_place(&FS_FshBase::OpenSys), 1, "OpenSys"},
      {virtual_place(&FS_FshBase::AttachToDLE), 2, "AttachToDLE"},
      {virtual_place(&FS_FshBase::CloseSys), 4, "CloseSys"},
      {virtual_place(&FS_FshBase::InitMakeData), 5, "InitMakeData"},
      {virtual_place(&FS_FshBase::MakePushDBLK), 26, "MakePushDBLK"},
      {virtual_place(&FS_FshBase::PopMinDDB), 27, "PopMinDDB"},
      {virtual_place(&FS_FshBase::ChangeIntoDDB), 49, "ChangeIntoDDB"},
      {virtual_place(&FS_FshBase::DirectImageInterface), 87, "DirectImageInterface"},
      {virtual_place(&FS_FshGen::MoveGranularData), 94, "MoveGranularData"},
      {virtual_place(&FS_FshLegacy::ReadObj), 18, "ReadObj"},
  };
  for (auto const& p : places) EXPECT_EQ(p.got, p.expected) << p.operation;
}

TEST(FshGen, FixedAnswersGuardsAndGenericBlocks) {
  qbtest::MessageCapture messages;
  FSYS_HAND_STRUCT hand{};
  auto* gen = new FS_FshGen;
  hand.adapter = gen;
  DBLK blk{};
  blk.blk_type = DBLK_KIND_FDB;
  blk.area.gen.attrib1 = 0x11;
  unsigned int word = 0, size = 0, need = 0;
  OBJECT_TYPE type{};
  short length = 9;
  wcstring name;
  bool done = false;

  EXPECT_EQ(gen->ReadObj(nullptr, nullptr, &size, &need, nullptr), FS_ERR_UNIMPLEMENTED);
  EXPECT_TRUE(messages.has(gen_line("U", 18)));
  EXPECT_EQ(gen->IsBlkComplete(&hand, nullptr), FS_ERR_BAD_PARAMETER);
  EXPECT_TRUE(messages.has(gen_line("B", 6)));
  EXPECT_EQ(gen->GetCurrentPath(&hand, nullptr, &length), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(gen->GetCurrentPath(&hand, name.data(), &length), FS_ERR_UNIMPLEMENTED);
  EXPECT_TRUE(messages.has(gen_line("U", 12)));
  messages.clear();
  struct Fixed {
    FS_STATUS got;
    FS_STATUS expected;
  } const fixed[] = {
      {gen->OpenSys(&hand), FS_SUCCESS},
      {gen->GetSpecialDBLKS(&hand, &blk, 0, 0), FS_STATUS_NONE},
      {gen->GetBackupPriority(&hand, nullptr, 0), 1},
      {gen->GeneratedErrorLog(&hand, nullptr, nullptr, 0, nullptr), FS_ERR_UNIMPLEMENTED},
      {gen->GetSpecRestoreObjects(&hand, name, name, false, &done, &done, 0), FS_STATUS_NONE},
      {gen->GetObjTypeDBLK(&hand, &blk, &type), FS_SUCCESS},
      {gen->GetHardLinkPathAndName(&hand, &blk, name.data(), &length), FS_SUCCESS},
      {gen->GetActualSizeDBLK(&hand, &blk), GEN_DBLK_ACTUAL_SIZE},
      {gen->ModAttrib1DBLK(&hand, 0, &blk, &word), FS_SUCCESS},
      {gen->ProcessDDB(nullptr, nullptr), 1},
  };
  for (auto const& f : fixed) EXPECT_EQ(f.got, f.expected);
  EXPECT_TRUE(messages.lines().empty());  // fixed answers print nothing
  EXPECT_EQ(type, FS_OBJ_GENERIC);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(word, 0x11u);
  EXPECT_EQ(gen->GetRestoreWorkFlow(&hand), L"");
  EXPECT_EQ(gen->CloseSys(&hand), FS_SUCCESS);
  EXPECT_EQ(hand.adapter, nullptr);
}

TEST(FshLegacy, ForwardsInItsThreeForms) {
  qbtest::MessageCapture messages;
  static int reads = 0;
  static int closes = 0;
  _FUNC_LIST table{};
  table.ReadObj = [](_FILE_HAND_STRUCT*, unsigned char*, unsigned int*, unsigned int*, STREAM_INFO*) -> FS_STATUS {
    return ++reads, 0x1234;
  };
  table.CloseSys = [](FSYS_HAND_STRUCT*) -> FS_STATUS { return ++closes, 77; };
  FSYS_HAND_STRUCT hand{};
  hand.funcTable = &table;
  auto* legacy = new FS_FshLegacy;
  hand.adapter = legacy;
  _FILE_HAND_STRUCT obj{};
  obj.fsysHand = &hand;
  unsigned int size = 0, need = 0, status = 0;
  long code = 0;
  FS_EXT_ERR_ACTION action = FS_EXT_ERR_ACTION_RETRY;
  wchar_t* message = reinterpret_cast<wchar_t*>(&hand);

  EXPECT_EQ(legacy->ReadObj(&obj, nullptr, &size, &need, nullptr), 0x1234u);  // plain: slot 25
  EXPECT_EQ(reads, 1);
  EXPECT_EQ(legacy->GetFinalSay(&hand, &status, &code, nullptr, 0, nullptr, 0), FS_ERR_UNIMPLEMENTED);
  EXPECT_TRUE(messages.lines().empty());  // optional: silent
  EXPECT_EQ(legacy->SizeofOSName(&hand, nullptr, false), 0u);
  EXPECT_TRUE(messages.has(L"FS_FshLegacy: Bad Parameter at line number " +
                           std::to_wstring(FS_FSHLEGACY_LINE_BASE + 41)));
  EXPECT_EQ(legacy->GetExtendedErrorInfo(&hand, &action, &status, &message), FS_SUCCESS);
  EXPECT_EQ(action, FS_EXT_ERR_ACTION_NONE);
  EXPECT_EQ(message, nullptr);
  EXPECT_EQ(legacy->GetVolb(&hand, reinterpret_cast<DBLK*>(&obj)), FS_ERR_UNIMPLEMENTED);
  EXPECT_EQ(legacy->CloseSys(&hand), 77u);
  EXPECT_EQ(closes, 1);
  EXPECT_EQ(hand.adapter, nullptr);  // later calls on the handle use its table
}

// CloseSys leaves the handle without an adapter even when it is called on an
// object other than the one the handle points at (that one then belongs to
// whoever called).
TEST(FshCloseSys, ClearsTheHandlesAdapterWhicheverObjectCloses) {
  _FUNC_LIST table{};
  struct Row {
    char const* what;
    FS_FshGen* (*make)();
  } const rows[] = {
      {"FS_FshGen", []() -> FS_FshGen* { return new FS_FshGen; }},
      {"FS_FshLegacy", []() -> FS_FshGen* { return new FS_FshLegacy; }},
  };
  for (auto const& row : rows) {
    FSYS_HAND_STRUCT hand{};
    hand.funcTable = &table;
    FS_FshGen* const installed = row.make();
    hand.adapter = installed;
    EXPECT_EQ(row.make()->CloseSys(&hand), FS_SUCCESS) << row.what;
    EXPECT_EQ(hand.adapter, nullptr) << row.what;
    delete installed;
  }
}

TEST(FshGeneric, DescribesABlockAsAPropertyTree) {
  _FUNC_LIST table{};
  table.ModAttrib1DBLK = GEN_ModAttrib1DBLK;
  table.ModAttrib2DBLK = GEN_ModAttrib2DBLK;
  table.GetDisplaySizeDBLK = GEN_GetDisplaySizeDBLK;
  table.GetCDateDBLK = GEN_GetCdateDBLK;
  table.GetMDateDBLK = GEN_GetMdateDBLK;
  table.ModBDateDBLK = GEN_ModBdateDBLK;
  table.ModADateDBLK = GEN_ModAdateDBLK;
  FSYS_HAND_STRUCT* hand = nullptr;
  QB_CFG cfg{};
  ASSERT_EQ(FS_OpenFileSys(&hand, 3, &cfg, &table), FS_SUCCESS);
  hand->adapter = new FS_FshGeneric;
  DBLK blk{};
  blk.blk_type = DBLK_KIND_FDB;
  blk.obj_flags = DBLK_OBJ_FILE_ATTR_BIT19;
  blk.os_id = 85;
  blk.area.gen.attrib1 = 1;
  blk.area.gen.display_size = 1234;
  blk.area.gen.mdate = _DATE_TIME{1, 2026, 11, 23, 20, 30, 5, 0, 0, 1200};
  std::wstring const text = L"report.txt";
  ASSERT_EQ(FS_SetupOSPathOrNameInDBLK(hand, &blk, reinterpret_cast<unsigned char*>(const_cast<wchar_t*>(text.c_str())),
                                       static_cast<std::uint16_t>((text.size() + 1) * sizeof(wchar_t)), 0),
            FS_SUCCESS);

  fs_property_tree_ptr tree = fs_property_tree_create("block");
  ASSERT_EQ(hand->adapter->GetDblkExtendedProperties(hand, &blk, *tree), FS_SUCCESS);
  EXPECT_STREQ(tree->get_property("kind_name").at(0).get_str_val(), L"FDB");
  EXPECT_EQ(tree->get_property("attrib1").at(0).get_uint32_val(), 1u | DBLK_ATTR1_BIT19);
  EXPECT_STREQ(tree->get_property("delimiter").at(0).get_str_val(), L"/");
  EXPECT_STREQ(tree->get_property("name").at(0).get_str_val(), L"report.txt");
  EXPECT_EQ(tree->get_property("display_size").at(0).get_uint64_val(), 1234u);
  EXPECT_STREQ(tree->get_property("mdate").at(0).get_str_val(), L"2026-11-23 20:30:05.0001200");
  EXPECT_TRUE(tree->get_property("cdate").is_null_property());  // not set, not listed
  // The same block again: every name is taken, so the tree refuses.
  EXPECT_EQ(hand->adapter->GetDblkExtendedProperties(hand, &blk, *tree), FS_ERR_BAD_PARAMETER);
  FS_ReleaseOSPathOrNameInDBLK(hand, &blk);
  FS_CloseFileSys(hand);
}

// The layer reaches a module's own adapter class for every operation it
// dispatches on a handle.
int g_counts[95];
FS_FshBase* (*g_new_adapter)(int*) = nullptr;
FS_STATUS install_recording(FSYS_HAND_STRUCT* hand) {
  hand->adapter = g_new_adapter(g_counts);
  return FS_SUCCESS;
}

TEST_F(HandleTest, AModulesAdapterReceivesEveryDispatchedOperation) {
  void* module = dlopen(QB_TEST_MODULE_DIR "/libscripted_object_module.so", RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(module, nullptr) << dlerror();
  g_new_adapter = reinterpret_cast<FS_FshBase* (*)(int*)>(dlsym(module, "qbtest_new_recording_adapter"));
  ASSERT_NE(g_new_adapter, nullptr);
  std::fill(std::begin(g_counts), std::end(g_counts), 0);
  qbtest::tables()[qbtest::kAdapterFsys].OpenSys = install_recording;

  GENERIC_DLE* dle = add(L"DB", qbtest::kAdapterFsys);
  FSYS_HAND_STRUCT* hand = nullptr;
  ASSERT_EQ(attach(&hand, dle, FS_ATTACH_NO_CHECKS), FS_SUCCESS);
  DBLK blk{};
  blk.blk_type = DBLK_KIND_FDB;
  EXPECT_EQ(FS_GetAttrib1FromDBLK(hand, &blk), 5u);
  FS_SetAttrib2InDBLK(hand, &blk, 1);
  FS_SizeofQbdsInfoInDBLK(hand, &blk);
  unsigned char info[FS_OS_INFO_CAPACITY];
  FS_GetQbdsInfoFromDBLK(hand, &blk, info);
  _CREATE_DBLK request{};
  FS_CreateGenDBLK(hand, DBLK_KIND_UDB, &request);
  _FILE_HAND_STRUCT* obj = nullptr;
  ASSERT_EQ(FS_OpenObj(hand, &obj, &blk, FS_READ), FS_SUCCESS);
  unsigned char buffer[16];
  unsigned int size = sizeof buffer, need = 1, position = 0;
  STREAM_INFO header{};
  EXPECT_EQ(FS_ReadObj(obj, buffer, &size, &need, &header), qbtest::kEndOfObject);
  header.id = STRM_GENERIC_DATA;
  size = 0;
  FS_WriteObj(obj, buffer, &size, &need, &header);
  FS_SeekObj(obj, &position);
  FS_CloseObj(obj, nullptr, nullptr);
  blk.obj_flags = DBLK_OBJ_DENIAL_RECORDED | DBLK_OBJ_NO_OPEN;
  EXPECT_EQ(FS_OpenObj(hand, &obj, &blk, FS_READ), FS_STATUS_EXT_ERROR);  // the name comes from the adapter
  EXPECT_EQ(FS_DetachDLE(hand), FS_SUCCESS);

  for (int op : {2, 3, 4, 16, 17, 18, 19, 20, 30, 36, 37, 41, 42, 43, 48})
    EXPECT_GE(g_counts[op], 1) << "operation " << op << " never reached the module's adapter";
  dlclose(module);
}

}  // namespace
