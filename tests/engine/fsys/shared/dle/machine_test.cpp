// Machine resolution, expanding a machine into the tree, and the tree dump.
#include <string>
#include <vector>

#include "dle_fixture.h"
#include <qbfsys/gen.h>
#include <qbfsys/handles.h>
#include <qbfsys/machine.h>

namespace {

using qbtest::DleTest;

std::vector<int> g_asked;             // indices whose resolver ran
FS_STATUS g_result[FS_MAX_FSYS];      // what each resolver returns
wchar_t const* g_machine = L"";       // what a successful resolver names
FS_STATUS g_attach = 0;               // what the attach slot returns
int g_detaches = 0;

template <int I>
FS_STATUS resolver(QB_CFG*, wchar_t*, wchar_t* machine, int* kind, int*, int*, int*,
                   unsigned max) {
  g_asked.push_back(I);
  if (g_result[I] == 0) {
    std::wcsncpy(machine, g_machine, max);
    *kind = 22;
  }
  return g_result[I];
}

FS_STATUS attach(FSYS_HAND_STRUCT*, GENERIC_DLE*, wchar_t*, wchar_t*) { return g_attach; }
FS_STATUS detach(FSYS_HAND_STRUCT*, void*, void**) {
  ++g_detaches;
  return 0;
}
// Index 22 makes machine elements: weak, with one child for the share.
FS_STATUS create_temp(QB_CFG*, wchar_t const* name, HEAD_DLE* head, int kind, GENERIC_DLE** out) {
  if (kind != 49) return 0xE0000049;
  FS_STATUS s = DLE_Create(head, nullptr, name, 22 | DLE_WEAK, 0, L'\\', out);
  if (s == 0) DLE_Create(head, *out, (std::wstring(name) + L"\\share").c_str(), 22 | DLE_WEAK, 0,
                         L'\\', nullptr);
  return s;
}

class Machines : public DleTest {
 protected:
  void SetUp() override {
    DleTest::SetUp();
    g_asked.clear();
    for (auto& r : g_result) r = 0xE0001000;
    g_attach = 0;
    g_detaches = 0;
    tables_ = qbtest::tables();
    tables_[22].AttachToDLE = attach;
    tables_[22].DetachDLE = detach;
    tables_[22].CreateTempDLE = create_temp;
  }
  void TearDown() override {
    DleTest::TearDown();
    for (auto& v : resolve_order) v = 0;
  }
  void resolver_at(unsigned i, FS_SLOT_ResolveDevName fn, int order) {
    tables_[i].ResolveDevName = fn;
    resolve_order[i] = order;
  }
  std::vector<std::wstring> without_dumps() const {
    std::vector<std::wstring> out;
    for (auto const& l : messages_.lines())
      if (l.rfind(L"FS_BlowOutMachine:", 0) == 0) out.push_back(l);
    return out;
  }
  _FUNC_LIST* tables_ = nullptr;
};

TEST_F(Machines, FinalResolverErrorsAreExactlyTheListedCodes) {
  for (long code : {0xE000037EL, 0xE0000380L, 0xE0000382L, 0xE000038AL, 0xE0000391L, 0xE00003C0L,
                    0xE00003C3L, 0xE00003E0L})
    EXPECT_TRUE(IsE14ResolveDeviceNameError(code)) << std::hex << code;
  for (long code : {0xE000037DL, 0xE0000383L, 0xE0000389L, 0xE00003BFL, 0xE00003C4L, 0xE00003E1L,
                    0L, -1L})
    EXPECT_FALSE(IsE14ResolveDeviceNameError(code)) << std::hex << code;
}

TEST_F(Machines, HintAsksItsFileSystemFirstThenThePasses) {
  resolver_at(21, resolver<21>, 0);
  resolver_at(3, resolver<3>, 2);
  resolver_at(4, resolver<4>, 1);
  wchar_t machine[64] = {};
  int kind = 48, err = 0, o3 = 0, o4 = 0;
  g_result[3] = 0;
  g_machine = L"\\\\srv";
  wchar_t dev[] = L"\\\\srv\\share";
  EXPECT_EQ(FS_ResolveDevName(&cfg_, dev, machine, &kind, &err, &o3, &o4, 64), FS_SUCCESS);
  EXPECT_EQ(g_asked, (std::vector<int>{21, 4, 3}));
  EXPECT_STREQ(machine, L"\\\\srv");
  EXPECT_TRUE(messages_.has(L"FS_ResolveDevName: [\\\\srv\\share]"));

  g_asked.clear();
  g_result[21] = 0;
  kind = 48;
  EXPECT_EQ(FS_ResolveDevName(&cfg_, dev, machine, &kind, &err, &o3, &o4, 64), FS_SUCCESS);
  EXPECT_EQ(g_asked, (std::vector<int>{21}));
}

TEST_F(Machines, FinalErrorStopsThePassesAndComesBackThroughErrOut) {
  resolver_at(3, resolver<3>, 1);
  resolver_at(4, resolver<4>, 1);
  resolver_at(5, resolver<5>, 2);
  g_result[4] = 0xE0000391;
  wchar_t machine[64] = {};
  int kind = 0, err = 0, o3 = 0, o4 = 0;
  wchar_t dev[] = L"x";
  EXPECT_EQ(FS_ResolveDevName(&cfg_, dev, machine, &kind, &err, &o3, &o4, 64), FS_ERR_NOT_SUPPORTED);
  EXPECT_EQ(g_asked, (std::vector<int>{3, 4}));
  EXPECT_EQ(static_cast<unsigned>(err), 0xE0000391u);
  EXPECT_EQ(kind, -1);
  EXPECT_EQ(o3, -1);
  EXPECT_EQ(o4, -1);

  g_asked.clear();
  g_result[4] = 0xE0001000;  // not final: every pass runs, errOut stays -1
  err = 0;
  EXPECT_EQ(FS_ResolveDevName(&cfg_, dev, machine, &kind, &err, &o3, &o4, 64), FS_ERR_NOT_SUPPORTED);
  EXPECT_EQ(g_asked, (std::vector<int>{3, 4, 5}));
  EXPECT_EQ(err, -1);
  EXPECT_EQ(FS_ResolveDevName(&cfg_, dev, machine, nullptr, nullptr, nullptr, nullptr, 64),
            FS_ERR_NOT_SUPPORTED);
}

// Paths that name no machine the resolvers know: nothing is made, and the
// lines say why.
TEST_F(Machines, PathsThatNameNoMachineLeaveTheTreeAlone) {
  std::wstring const overlong = L"\\\\" + std::wstring(300, L'm') + L"\\share";
  std::wstring const entered = L"FS_BlowOutMachine: entered -->";
  struct Case {
    std::wstring path;
    FS_STATUS status;
    std::vector<std::wstring> said;
  } const cases[] = {
      {L"C:", 1, {entered + L"C:<--", L"FS_BlowOutMachine: no machine name possible"}},
      {overlong, FS_ERR_NOT_SUPPORTED, {entered + overlong + L"<--", L"FS_BlowOutMachine: failed to resolve -->" + overlong + L"<--",
                                        L"FS_BlowOutMachine: returning -536836945"}},
      {L"/var/data", FS_ERR_NOT_SUPPORTED, {entered + L"/var/data<--", L"FS_BlowOutMachine: failed to resolve -->/var/data<--",
                                            L"FS_BlowOutMachine: returning -536836945"}},
  };
  for (auto const& c : cases) {
    messages_.clear();
    std::vector<wchar_t> path(c.path.begin(), c.path.end());
    path.push_back(L'\0');
    bool is_machine = true;
    GENERIC_DLE* found = reinterpret_cast<GENERIC_DLE*>(&found);
    EXPECT_EQ(FS_BlowOutMachine(head_, &cfg_, path.data(), &is_machine, &found), c.status);
    EXPECT_FALSE(is_machine);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(without_dumps(), c.said);
    EXPECT_EQ(head_->dle_q.q_count, 0);
  }
}

TEST_F(Machines, UnresolvedMachineIsCreatedAttachedAndSearched) {
  bool is_machine = false;
  GENERIC_DLE* found = nullptr;
  wchar_t path[] = L"\\\\srv\\share";
  ASSERT_EQ(FS_BlowOutMachine(head_, &cfg_, path, &is_machine, &found), FS_SUCCESS);
  EXPECT_TRUE(is_machine);
  ASSERT_NE(found, nullptr);
  EXPECT_STREQ(found->device_name, L"\\\\srv\\share");
  EXPECT_EQ(found->type, 22u);  // the weak bit is cleared below the machine
  EXPECT_EQ(found->parent->type, 22u);
  EXPECT_EQ(found->parent->attach_count, 0);
  EXPECT_EQ(g_detaches, 1);
  EXPECT_EQ(without_dumps(),
            (std::vector<std::wstring>{
                L"FS_BlowOutMachine: entered -->\\\\srv\\share<--",
                L"FS_BlowOutMachine: FS_ResolveDevName returns -->\\\\srv<-- as the machineName",
                L"FS_BlowOutMachine: processing as local machine",
                L"FS_BlowOutMachine: failed to find machine DLE in DLE tree, attempting DLE create",
                L"FS_BlowOutMachine: trying to attach to newly created DLE",
                L"FS_BlowOutMachine: attached successfully",
                L"FS_BlowOutMachine: found -->\\\\srv\\share<-- in DLE tree",
                L"FS_BlowOutMachine: detaching from newly created DLE",
                L"FS_BlowOutMachine: returning 0"}));
  EXPECT_TRUE(messages_.has(L"Initial DLE Tree"));
  EXPECT_TRUE(messages_.has(L"Modified DLE Tree"));

  // A second time the machine is in the tree: no create, same answer.
  messages_.clear();
  ASSERT_EQ(FS_BlowOutMachine(head_, &cfg_, path, &is_machine, &found), FS_SUCCESS);
  EXPECT_FALSE(messages_.has(
      L"FS_BlowOutMachine: failed to find machine DLE in DLE tree, attempting DLE create"));
  EXPECT_EQ(head_->dle_q.q_count, 1);
}

TEST_F(Machines, AttachFailureRemovesTheMachineEvenWhenItWasInTheTree) {
  GENERIC_DLE* existing = add(L"\\\\srv", 22);
  add(L"\\\\srv\\share", 22, 0, existing);
  g_attach = 0xE0001111;
  wchar_t path[] = L"\\\\srv\\share";
  GENERIC_DLE* found = nullptr;
  EXPECT_EQ(FS_BlowOutMachine(head_, &cfg_, path, nullptr, &found), 0xE0001111u);
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(head_->dle_q.q_count, 0);
  EXPECT_TRUE(messages_.has(L"FS_BlowOutMachine: attach failed, deleting newly created DLE"));
  EXPECT_TRUE(messages_.has(L"FS_BlowOutMachine: returning -536866543"));
}

TEST_F(Machines, ResolvedMachineIsFoundByTypeOneAndNoAttachFlagSkipsAttaching) {
  resolver_at(3, resolver<3>, 1);
  g_result[3] = 0;
  g_machine = L"host";  // no leading backslashes: they are added for the lookup
  GENERIC_DLE* machine = add(L"\\\\host", 1);
  machine->feature2 = DLE_FEATURE2_NO_ATTACH;
  wchar_t path[] = L"/data";
  bool is_machine = false;
  EXPECT_EQ(FS_BlowOutMachine(head_, &cfg_, path, &is_machine, nullptr), FS_SUCCESS);
  EXPECT_TRUE(is_machine);
  EXPECT_FALSE(messages_.has(L"FS_BlowOutMachine: trying to attach to newly created DLE"));
  EXPECT_EQ(head_->dle_q.q_count, 1);
}

TEST_F(Machines, NoMachineElementCanBeMadeIsNotAnError) {
  tables_[22].CreateTempDLE = nullptr;
  wchar_t path[] = L"\\\\nobody";
  EXPECT_EQ(FS_BlowOutMachine(head_, &cfg_, path, nullptr, nullptr), FS_SUCCESS);
  EXPECT_EQ(head_->dle_q.q_count, 0);
  GENERIC_DLE* out = reinterpret_cast<GENERIC_DLE*>(&out);
  EXPECT_EQ(FS_CreateTempDLE(&cfg_, L"x", head_, 49, &out), FS_ERR_NOT_SUPPORTED);
  EXPECT_EQ(out, nullptr);
}

TEST_F(Machines, TreeDumpShowsEveryElementIndentedAndCapped) {
  wchar_t path[] = L"\\\\srv";
  g_attach = 0xE0000001;  // fail so the tree is dumped once, then cleared
  GENERIC_DLE* top = add(L"top", 3);
  top->hidden = 1;
  top->feature1 = DLE_FEATURE1_UNSELECTED;
  top->unselect = static_cast<DLE_UNSELECT_RECORD*>(std::calloc(1, sizeof(DLE_UNSELECT_RECORD)));
  top->unselect->reason = 0x42;
  GENERIC_DLE* parent = top;
  for (int depth = 1; depth <= 40; ++depth) parent = add(L"deep", 3, 0, parent);
  FS_BlowOutMachine(head_, &cfg_, path, nullptr, nullptr);
  auto const& lines = messages_.lines();
  long star = messages_.index_of(std::wstring(78, L'*'));
  ASSERT_GE(star, 0);
  EXPECT_EQ(lines[star + 1], L"Initial DLE Tree");
  std::wstring const& first = lines[star + 2];
  EXPECT_EQ(first.rfind(L"-->top<-- address ", 0), 0u) << first;
  EXPECT_NE(first.find(L" type 3 subtype 0 feature bits 0x40000000 0x0 dataId 0 qbdsId 0 qbdsVer 0 "
                       L"Unselect Reason 0x42 HIDDEN"),
            std::wstring::npos)
      << first;
  EXPECT_EQ(lines[star + 3].rfind(L"    -->deep<--", 0), 0u);
  EXPECT_EQ(lines[star + 3].back(), L' ');  // an empty "%s" for a visible element
  // Depth 40 would indent by 160; the indentation stops at 154.
  EXPECT_EQ(lines[star + 2 + 40].rfind(std::wstring(154, L' ') + L"-->deep", 0), 0u);
  EXPECT_EQ(lines[star + 2 + 41], L"End of List");
}

}  // namespace
