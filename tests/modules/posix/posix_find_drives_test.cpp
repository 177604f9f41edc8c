// The posix module loaded for real (libqbposix.so through FS_InitFileSys):
// the tree it finds from configured roots and from the mount table, its
// remove-DLE and machine name, and bad input.
#include <stdlib.h>
#include <errno.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "capture.h"
#include "test_records.h"
#include "posix_dle_data.h"
#include <qbfsys/dle.h>
#include <qbfsys/fs_init.h>
#include <qbfsys/handles.h>
#include <qbfsys/registry.h>
#include <qbhost/strings.h>

namespace {

std::wstring Wide(std::string const& s) { return std::wstring(s.begin(), s.end()); }

// "<device> <simple name> <type>/<subtype> <delimiter>"
std::wstring Describe(GENERIC_DLE* d) {
  return std::wstring(d->device_name) + L" " + DLE_GetSimpleName(d) + L" " + std::to_wstring(d->type) + L"/" +
         std::to_wstring(d->subtype) + L" " + d->name_delimiter;
}

std::vector<GENERIC_DLE*> Children(GENERIC_DLE* parent) {
  std::vector<GENERIC_DLE*> out;
  GENERIC_DLE* d = nullptr;
  for (FS_STATUS s = DLE_GetFirstChild(parent, &d, true); s == FS_SUCCESS; s = DLE_GetNext(&d, true))
    out.push_back(d);
  return out;
}

class PosixModule : public ::testing::Test {
 protected:
  void SetUp() override {
    for (auto* dir : {&dir_a_, &dir_b_}) {
      char templ[] = "/tmp/qbposix-XXXXXX";
      ASSERT_NE(mkdtemp(templ), nullptr);
      *dir = templ;
    }
    std::wstring module = Wide(QB_TEST_MODULE_DIR "/libqbposix.so");
    wchar_t const* modules[] = {module.c_str(), nullptr};
    ASSERT_EQ(FS_InitFileSys(&cfg_, ~0ull, modules, 1), FS_SUCCESS);
    table_ = &qbtest::tables()[7];
    ASSERT_NE(table_->FindDrives, nullptr) << "the module did not fill index 7";
  }
  void TearDown() override {
    FS_DeinitDleList(head_);
    FS_RemoveFileSys();
    rmdir(dir_a_.c_str());
    rmdir(dir_b_.c_str());
  }
  GENERIC_DLE* OnlyMachine() {
    GENERIC_DLE* machine = nullptr;
    EXPECT_EQ(DLE_GetFirst(head_, &machine, true), FS_SUCCESS);
    GENERIC_DLE* next = machine;
    EXPECT_EQ(DLE_GetNext(&next, true), FS_STATUS_NO_MORE_DLE) << "more than one top element";
    return machine;
  }

  std::string dir_a_, dir_b_;
  QB_CFG cfg_{};
  HEAD_DLE* head_ = nullptr;
  _FUNC_LIST* table_ = nullptr;
  qbtest::MessageCapture messages_;
};

TEST_F(PosixModule, ConfiguredRootsBecomeChildrenOfTheMachine) {
  std::wstring a = Wide(dir_a_), b = Wide(dir_b_), missing = Wide(dir_a_ + "-missing");
  std::wstring a_slash = a + L"//";
  wchar_t const* roots[] = {b.c_str(), missing.c_str(), L"relative/dir", a.c_str(),
                            a_slash.c_str(), L"/etc/hostname", nullptr};
  cfg_.roots = roots;
  cfg_.machine_name = L"unit-host";
  ASSERT_EQ(FS_InitDleList(&head_, &cfg_), FS_SUCCESS);

  GENERIC_DLE* machine = OnlyMachine();
  ASSERT_NE(machine, nullptr);
  EXPECT_EQ(Describe(machine), L"\\\\unit-host unit-host 7/1 \\");
  EXPECT_EQ(machine->parent, nullptr);

  auto children = Children(machine);
  ASSERT_EQ(children.size(), 2u);  // the trailing-slash form of a is the same root
  std::vector<std::wstring> expected = {a, b};
  // Same type and subtype: the layer orders siblings by name, ignoring case.
  std::sort(expected.begin(), expected.end(), [](std::wstring const& x, std::wstring const& y) {
    return QB::stricmp_internal(x.c_str(), y.c_str()) < 0;
  });
  for (std::size_t i = 0; i < children.size(); ++i) {
    EXPECT_EQ(Describe(children[i]), expected[i] + L" " + expected[i] + L" 7/2 /");
    EXPECT_EQ(children[i]->parent, machine);
    ASSERT_NE(children[i]->fsys_data, nullptr);
    auto* data = static_cast<qbposix::PosixDleData*>(children[i]->fsys_data);
    EXPECT_EQ(Wide(data->path), expected[i]);
    EXPECT_FALSE(data->fs_type.empty());  // /tmp lies on some mounted file system
  }
  EXPECT_TRUE(messages_.has(L"posix: root " + missing + L" is missing or not a directory; skipped"));
  EXPECT_TRUE(messages_.has(L"posix: root \"relative/dir\" is not an absolute path; skipped"));
  EXPECT_TRUE(messages_.has(L"posix: root /etc/hostname is missing or not a directory; skipped"));

  // The machine name slot answers for the machine and its file systems.
  for (GENERIC_DLE* d : {machine, children[0]}) {
    wchar_t name[256] = {};
    unsigned length = 0;
    EXPECT_EQ(table_->GetMachineName(d, name, &length, 0), FS_SUCCESS);
    EXPECT_EQ(std::wstring(name), L"unit-host");
    EXPECT_EQ(length, 9u);
  }

  // Searching again adds nothing that is already there.
  EXPECT_EQ(DLE_UpdateList(head_, &cfg_), FS_SUCCESS);
  EXPECT_EQ(OnlyMachine(), machine);
  EXPECT_EQ(Children(machine).size(), 2u);
}

TEST_F(PosixModule, MountTableGivesThisMachineWithItsRoot) {
  ASSERT_EQ(FS_InitDleList(&head_, &cfg_), FS_SUCCESS);
  GENERIC_DLE* machine = OnlyMachine();
  ASSERT_NE(machine, nullptr);
  char host[256] = {};
  ASSERT_EQ(gethostname(host, sizeof host - 1), 0);
  EXPECT_EQ(std::wstring(DLE_GetSimpleName(machine)), Wide(host));
  EXPECT_EQ(std::wstring(machine->device_name), L"\\\\" + Wide(host));

  bool has_root = false;
  for (GENERIC_DLE* child : Children(machine)) {
    std::wstring name = child->device_name;
    has_root = has_root || name == L"/";
    EXPECT_EQ(name[0], L'/');
    for (wchar_t const* pseudo : {L"/proc", L"/sys", L"/dev"})
      EXPECT_NE(name.compare(0, std::wcslen(pseudo), pseudo), 0) << name;
    EXPECT_EQ(child->subtype, 2u);
  }
  EXPECT_TRUE(has_root);
}

TEST_F(PosixModule, NoFileSystemStillGivesTheMachine) {
  std::wstring missing = Wide(dir_a_ + "-gone");
  wchar_t const* roots[] = {missing.c_str(), nullptr};
  cfg_.roots = roots;
  cfg_.machine_name = L"lonely";
  ASSERT_EQ(FS_InitDleList(&head_, &cfg_), FS_SUCCESS);
  GENERIC_DLE* machine = OnlyMachine();
  ASSERT_NE(machine, nullptr);
  EXPECT_EQ(std::wstring(machine->device_name), L"\\\\lonely");
  EXPECT_TRUE(Children(machine).empty());
}

TEST_F(PosixModule, RemoveDleUnlinksOneElementAndRefusesAParentWithChildren) {
  std::wstring a = Wide(dir_a_), b = Wide(dir_b_);
  wchar_t const* roots[] = {a.c_str(), b.c_str(), nullptr};
  cfg_.roots = roots;
  cfg_.machine_name = L"m";
  ASSERT_EQ(FS_InitDleList(&head_, &cfg_), FS_SUCCESS);
  GENERIC_DLE* machine = OnlyMachine();
  ASSERT_NE(machine, nullptr);
  head_->default_dle = machine;

  EXPECT_EQ(table_->RemoveDLE(machine), FS_ERR_BAD_PARAMETER);
  auto children = Children(machine);
  ASSERT_EQ(children.size(), 2u);
  EXPECT_EQ(table_->RemoveDLE(children[0]), FS_SUCCESS);
  EXPECT_EQ(machine->child_q.q_count, 1);
  EXPECT_EQ(Children(machine), std::vector<GENERIC_DLE*>{children[1]});
  EXPECT_EQ(table_->RemoveDLE(children[1]), FS_SUCCESS);
  EXPECT_EQ(table_->RemoveDLE(machine), FS_SUCCESS);
  EXPECT_EQ(head_->dle_q.q_count, 0);
  EXPECT_EQ(head_->default_dle, nullptr);  // the head does not keep a freed element
}

TEST_F(PosixModule, BadInputGivesStatusesNotCrashes) {
  ASSERT_NE(table_->RemoveDLE, nullptr);
  ASSERT_NE(table_->GetMachineName, nullptr);
  HEAD_DLE head{};
  InitQueue(&head.dle_q);
  EXPECT_EQ(table_->FindDrives(nullptr, &cfg_), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(table_->FindDrives(&head, nullptr), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(table_->RemoveDLE(nullptr), FS_ERR_BAD_PARAMETER);

  wchar_t name[256];
  unsigned length = 0;
  EXPECT_EQ(table_->GetMachineName(nullptr, name, &length, 0), FS_ERR_BAD_PARAMETER);
  GENERIC_DLE* foreign = nullptr;
  ASSERT_EQ(DLE_Create(&head, nullptr, L"\\\\other", 7, 1, L'\\', &foreign), FS_SUCCESS);
  EXPECT_EQ(table_->GetMachineName(foreign, nullptr, &length, 0), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(table_->GetMachineName(foreign, name, &length, 0), FS_ERR_NOT_SUPPORTED);
  EXPECT_EQ(table_->RemoveDLE(foreign), FS_SUCCESS);  // frees an element without a record too
  EXPECT_EQ(head.dle_q.q_count, 0);

  // A machine name that does not fit the 256-character buffer is refused.
  std::wstring long_name(256, L'x');
  cfg_.machine_name = long_name.c_str();
  EXPECT_EQ(table_->FindDrives(&head, &cfg_), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(head.dle_q.q_count, 0);
  EXPECT_EQ(FS_InitDleList(&head_, &cfg_), FS_ERR_INIT_FAILED);  // nothing found at all
  EXPECT_TRUE(messages_.has(
      L"Status 0xE000FE49 returned calling FindDrives for file system 7 in DLE_UpdateList"));
}

}  // namespace

namespace {

// Attaching real file-system elements through the layer.
class PosixAttach : public PosixModule {
 protected:
  FS_STATUS Attach(FSYS_HAND_STRUCT** hand, GENERIC_DLE* dle) {
    return FS_AttachToDLE(hand, dle, &cfg_, nullptr, nullptr, 0, 0, nullptr, nullptr, 0, nullptr, false);
  }
  GENERIC_DLE* Root(std::string const& dir) {
    std::wstring name = Wide(dir);
    for (GENERIC_DLE* d : Children(OnlyMachine()))
      if (name == d->device_name) return d;
    return nullptr;
  }
  void Build() {
    roots_ = {Wide(dir_a_), Wide(dir_b_)};
    root_ptrs_ = {roots_[0].c_str(), roots_[1].c_str(), nullptr};
    cfg_.roots = root_ptrs_.data();
    cfg_.machine_name = L"testhost";
    ASSERT_EQ(FS_InitDleList(&head_, &cfg_), FS_SUCCESS);
  }
  std::vector<std::wstring> roots_;
  std::vector<wchar_t const*> root_ptrs_;
};

TEST_F(PosixAttach, AttachesAndDetachesAFileSystemElement) {
  Build();
  GENERIC_DLE* dle = Root(dir_a_);
  ASSERT_NE(dle, nullptr);
  FSYS_HAND_STRUCT* hand = nullptr;
  ASSERT_EQ(Attach(&hand, dle), FS_SUCCESS);
  ASSERT_NE(hand, nullptr);
  EXPECT_EQ(dle->attach_count, 1);
  EXPECT_TRUE(messages_.has(L"Attach to: " + Wide(dir_a_)));
  EXPECT_EQ(FS_DetachDLE(hand), FS_SUCCESS);
  EXPECT_EQ(dle->attach_count, 0);
  EXPECT_TRUE(messages_.has(L"Detach from: " + Wide(dir_a_)));

  // The machine element attaches too; its children stay usable (it is local).
  GENERIC_DLE* machine = OnlyMachine();
  ASSERT_EQ(Attach(&hand, machine), FS_SUCCESS);
  for (GENERIC_DLE* child : Children(machine)) EXPECT_EQ(child->status_flags, 0u);
  EXPECT_EQ(FS_DetachDLE(hand), FS_SUCCESS);
}

TEST_F(PosixAttach, VanishedDirectoryIsReportedThroughTheLastError) {
  Build();
  GENERIC_DLE* dle = Root(dir_b_);
  ASSERT_NE(dle, nullptr);
  ASSERT_EQ(rmdir(dir_b_.c_str()), 0);
  FSYS_HAND_STRUCT* hand = nullptr;
  EXPECT_EQ(Attach(&hand, dle), FS_STATUS_EXT_ERROR);
  ASSERT_NE(hand, nullptr);  // kept so that the caller can read why
  FS_EXT_ERR_ACTION action = FS_EXT_ERR_ACTION_NONE;
  unsigned extra = 1;
  wchar_t* message = nullptr;
  EXPECT_EQ(GEN_GetExtendedErrorInfo(hand, &action, &extra, &message), ENOENT);
  EXPECT_EQ(action, FS_EXT_ERR_ACTION_SKIP);
  ASSERT_NE(message, nullptr);
  EXPECT_EQ(std::wstring(message), Wide(dir_b_) + L": No such file or directory");
  EXPECT_EQ(dle->attach_count, 1);
  EXPECT_EQ(FS_DetachDLE(hand), FS_SUCCESS);
  EXPECT_EQ(dle->attach_count, 0);
  mkdir(dir_b_.c_str(), 0700);  // for the teardown
}

TEST_F(PosixAttach, ElementsOfOtherFileSystemsAreRefused) {
  Build();
  // An element the module did not make, owned by index 7 all the same.
  GENERIC_DLE* stranger = nullptr;
  ASSERT_EQ(DLE_Create(head_, nullptr, L"stranger", 7, 2, L'/', &stranger), FS_SUCCESS);
  FSYS_HAND_STRUCT* hand = reinterpret_cast<FSYS_HAND_STRUCT*>(&hand);
  EXPECT_EQ(Attach(&hand, stranger), FS_ERR_NOT_SUPPORTED);
  EXPECT_EQ(hand, nullptr);
  EXPECT_EQ(stranger->attach_count, 0);
}

}  // namespace
