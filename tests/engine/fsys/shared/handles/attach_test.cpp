// FS_AttachToDLE and FS_DetachDLE against a real module (file systems 3 and
// 5), in-process tables and an in-process adapter (file system 40).
#include <ostream>
#include <string>

#include "handles_fixture.h"

namespace {

using qbtest::HandleTest;
using qbtest::tables;

struct AttachCase {
  char const* label;
  std::uint32_t type;
  std::uint32_t status_flags;
  std::uint32_t flags2;
  std::uint32_t state;
  std::uint32_t attach_flags;
  FS_STATUS attach_result;     // the module's attach
  FS_STATUS detach_result;     // the module's detach
  FS_STATUS machine_result;    // the module's machine-name query
  unsigned machine_length;
  bool ipc_failed;
  FS_STATUS expected;
  bool handle;                 // a handle comes back
  int attaches;                // the module's attach calls
  int detaches;
  int machine_queries;         // -1: not looked at
  bool marked_unavailable;     // 0x40000 set afterwards
};

void PrintTo(AttachCase const& c, std::ostream* os) { *os << c.label; }

constexpr FS_STATUS kNoName = 0xE0000001;
constexpr std::uint32_t kMaybeRemote = DLE_STATUS_MAYBE_REMOTE;
constexpr std::uint32_t kUnavailable = DLE_STATUS_UNAVAILABLE;

class AttachOutcome : public HandleTest, public ::testing::WithParamInterface<AttachCase> {};

TEST_P(AttachOutcome, StatusHandleAndCount) {
  AttachCase const& c = GetParam();
  module_->attach_result = c.attach_result;
  module_->detach_result = c.detach_result;
  module_->machine_result = c.machine_result;
  module_->machine_length = c.machine_length;
  GENERIC_DLE* dle = add(L"DLE", c.type, c.status_flags);
  dle->flags2 = c.flags2;
  dle->state = c.state;
  _IPC_HAND ipc{c.ipc_failed ? 1u : 0u, 0, nullptr};

  FSYS_HAND_STRUCT* hand = reinterpret_cast<FSYS_HAND_STRUCT*>(&cfg_);
  EXPECT_EQ(attach(&hand, dle, c.attach_flags, &ipc), c.expected);
  EXPECT_EQ(hand != nullptr, c.handle);
  EXPECT_EQ(dle->attach_count, c.handle ? 1 : 0);
  EXPECT_EQ(module_->attaches, c.attaches);
  EXPECT_EQ(module_->detaches, c.detaches);
  if (c.machine_queries >= 0) {
    EXPECT_EQ(module_->machine_queries, c.machine_queries);
  }
  EXPECT_EQ((dle->status_flags & kUnavailable) != 0, c.marked_unavailable);
  EXPECT_EQ(messages_.has(L"Attach to: DLE"), c.handle);
  EXPECT_EQ(messages_.has(L"FS_Attach deferred error: IPC was not successfully opened."), c.ipc_failed);
  if (c.ipc_failed) {
    EXPECT_EQ(module_->closes, 1) << "the refused handle is closed";
  }
  if (hand != nullptr) {
    module_->detach_result = FS_SUCCESS;
    EXPECT_EQ(FS_DetachDLE(hand), FS_SUCCESS);
    EXPECT_EQ(dle->attach_count, 0);
  }
  // Only a file system 0..50 can free the element with the tree.
  if ((dle->type & 0xFFu) >= FS_MAX_FSYS) dle->type = 3;
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Rules, AttachOutcome, ::testing::Values(
  AttachCase{"plain", 3, 0, 0, 0, 0, 0, 0, 0, 0, false, FS_SUCCESS, true, 1, 0, 0, false},
  AttachCase{"unavailable", 3, kUnavailable, 0, 0, 0, 0, 0, 0, 0, false, FS_ERR_DLE_UNAVAILABLE, false, 0, 0, 0, true},
  AttachCase{"unavailableOverridden", 3, kUnavailable | 2, 0, 0, 0, 0, 0, 0, 0, false, FS_SUCCESS, true, 1, 0, 0, true},
  AttachCase{"attachFails", 3, 0, 0, 0, 0, 0xE0001111, 0, 0, 0, false, 0xE0001111, false, 1, 0, 0, false},
  AttachCase{"extErrorCountsAsAttached", 3, 0, 0, 0, 0, FS_STATUS_EXT_ERROR, 0, 0, 0, false, FS_STATUS_EXT_ERROR, true, 1, 0, 0, false},
  AttachCase{"ipcNotOpened", 3, 0, 0, 0, 0, 0, 0, 0, 0, true, FS_ERR_ATTACH_REFUSED, false, 0, 0, 0, false},
  AttachCase{"typeAbove50", 60, 0, 0, 0, 0, 0, 0, 0, 0, false, FS_ERR_ATTACH_REFUSED, false, 0, 0, 0, false},
  AttachCase{"unknownTypeMaybeRemote", 60, kMaybeRemote, 0, 0, 0, 0, 0, 0, 0, false, FS_ERR_DLE_UNAVAILABLE, false, 0, 0, 0, true},
  AttachCase{"index23MaybeRemote", 3, kMaybeRemote, 0x60, 0, 0, 0, 0, 0, 0, false, FS_ERR_DLE_UNAVAILABLE, false, 0, 0, 0, true},
  AttachCase{"noAttachOperation", 9, 0, 0, 0, 0, 0, 0, 0, 0, false, FS_ERR_UNIMPLEMENTED, false, 0, 0, -1, false},
  AttachCase{"remoteUnreachable", 5, kMaybeRemote, 0, 2, 0, 0, 0, kNoName, 0, false, FS_ERR_DLE_UNAVAILABLE, false, 1, 1, 1, true},
  AttachCase{"remoteUnreachableKeptByDetach", 5, kMaybeRemote, 0, 2, 0, 0, FS_STATUS_EXT_ERROR, kNoName, 0, false, FS_ERR_DLE_UNAVAILABLE, false, 1, 1, 1, true},
  AttachCase{"remoteAllowedByFlag", 5, kMaybeRemote, 0, 2, FS_ATTACH_ALLOW_REMOTE, 0, 0, kNoName, 0, false, FS_SUCCESS, true, 1, 0, 1, false},
  AttachCase{"remoteReachable", 5, kMaybeRemote, 0, 0, 0, 0, 0, kNoName, 0, false, FS_SUCCESS, true, 1, 0, 1, false},
  AttachCase{"remoteNamedIsLocal", 5, kMaybeRemote, 0, 2, 0, 0, 0, 0, 4, false, FS_SUCCESS, true, 1, 0, 1, false},
  AttachCase{"overlongMachineName", 5, kMaybeRemote, 0, 2, 0, 0, 0, 0, 300, false, FS_SUCCESS, true, 1, 0, 1, false},
  AttachCase{"emptyMachineName", 5, kMaybeRemote, 0, 2, 0, 0, 0, 0, 0, false, FS_ERR_DLE_UNAVAILABLE, false, 1, 1, 1, true},
  AttachCase{"noChecksSkipsLocality", 5, kMaybeRemote, 0, 2, FS_ATTACH_NO_CHECKS, 0, 0, kNoName, 0, false, FS_SUCCESS, true, 1, 0, 0, false},
  AttachCase{"localStatusSkipsLocality", 5, kMaybeRemote | 2, 0, 2, 0, 0, 0, kNoName, 0, false, FS_SUCCESS, true, 1, 0, 0, false}),
  [](::testing::TestParamInfo<AttachCase> const& info) { return std::string(info.param.label); });
// clang-format on

TEST_F(HandleTest, AttachFillsTheHandleAndDetachUndoesIt) {
  GENERIC_DLE* dle = add(L"VOL", 3);
  dle->alt_name = const_cast<wchar_t*>(L"Shown");
  dle->name_flags = DLE_NAME_FLAG_ALTERNATE;
  int context = 0;
  FSYS_HAND_STRUCT* hand = nullptr;
  ASSERT_EQ(FS_AttachToDLE(&hand, dle, &cfg_, nullptr, nullptr, 0x11, 7, &context, nullptr, 99,
                           nullptr, true),
            FS_SUCCESS);
  EXPECT_EQ(module_->last_attach_dle, dle);
  EXPECT_EQ(hand->dle, dle);
  EXPECT_EQ(hand->head, head_);
  EXPECT_EQ(hand->fsysId, 3);
  EXPECT_EQ(hand->attachFlags, 0x11u);
  EXPECT_EQ(hand->attachMode, 7);
  EXPECT_EQ(hand->attachContext, &context);
  EXPECT_EQ(hand->attachArg, 99u);
  EXPECT_TRUE(hand->attachBool);
  EXPECT_TRUE(hand->stateFlags & 2);
  EXPECT_STREQ(hand->pathBuf, L"\\");
  EXPECT_TRUE(messages_.has(L"Attach to: Shown"));

  EXPECT_EQ(FS_DetachDLE(hand), FS_SUCCESS);
  EXPECT_EQ(dle->attach_count, 0);
  EXPECT_EQ(module_->detaches, 1);
  EXPECT_EQ(module_->closes, 1);
  EXPECT_TRUE(messages_.has(L"Detach from: Shown"));
  dle->alt_name = nullptr;
}

TEST_F(HandleTest, DetachAnsweredWithExtErrorLeavesTheHandleAttached) {
  GENERIC_DLE* dle = add(L"VOL", 3);
  FSYS_HAND_STRUCT* hand = nullptr;
  ASSERT_EQ(attach(&hand, dle), FS_SUCCESS);
  module_->detach_result = FS_STATUS_EXT_ERROR;
  EXPECT_EQ(FS_DetachDLE(hand), FS_STATUS_EXT_ERROR);
  EXPECT_EQ(hand->dle, dle);
  EXPECT_EQ(dle->attach_count, 1);
  EXPECT_EQ(module_->closes, 0);

  module_->detach_result = FS_SUCCESS;
  EXPECT_EQ(FS_DetachDLE(hand), FS_SUCCESS);
  EXPECT_EQ(dle->attach_count, 0);
  EXPECT_EQ(module_->closes, 1);
}

TEST_F(HandleTest, ChildCheckRunsUnlessTheFlagSkipsIt) {
  tables()[7].OpenSys = nullptr;  // served by the table alone, without the generic adapter
  tables()[7].AttachToDLE = [](FSYS_HAND_STRUCT*, GENERIC_DLE*, wchar_t*, wchar_t*) {
    return FS_SUCCESS;
  };
  for (std::uint32_t flags : {0u, FS_ATTACH_NO_CHECKS}) {
    GENERIC_DLE* machine = add(flags ? L"M2" : L"M1", 7, kMaybeRemote);  // another machine's
    GENERIC_DLE* child = nullptr;
    ASSERT_EQ(DLE_Create(head_, machine, L"M\\vol", 3, 0, L'\\', &child), FS_SUCCESS);
    FSYS_HAND_STRUCT* hand = nullptr;
    ASSERT_EQ(attach(&hand, machine, flags), FS_SUCCESS);
    EXPECT_EQ((child->status_flags & kUnavailable) != 0, flags == 0);
    EXPECT_EQ(FS_DetachDLE(hand), FS_SUCCESS);  // no detach slot: nothing to undo
    EXPECT_EQ(machine->attach_count, 0);
  }
}

TEST_F(HandleTest, AdapterServesAttachDetachAndClose) {
  GENERIC_DLE* dle = add(L"ADP", qbtest::kAdapterFsys);
  FSYS_HAND_STRUCT* hand = nullptr;
  ASSERT_EQ(attach(&hand, dle), FS_SUCCESS);  // the table has no attach slot
  EXPECT_NE(hand->adapter, nullptr);
  EXPECT_EQ(adapter_.attaches, 1);
  EXPECT_EQ(FS_DetachDLE(hand), FS_SUCCESS);
  EXPECT_EQ(adapter_.detaches, 1);
  EXPECT_EQ(adapter_.closes, 1);
  EXPECT_EQ(dle->attach_count, 0);

  // A refused attach closes the adapter with the handle.
  adapter_.attach_result = 0xE0002222;
  hand = reinterpret_cast<FSYS_HAND_STRUCT*>(&cfg_);
  EXPECT_EQ(attach(&hand, dle), 0xE0002222);
  EXPECT_EQ(hand, nullptr);
  EXPECT_EQ(adapter_.closes, 2);
  EXPECT_EQ(adapter_.live, 0);
}

}  // namespace
