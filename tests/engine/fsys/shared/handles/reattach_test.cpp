// Both FS_ReattachDLE forms: the caller's pointer keeps the newest binding,
// the older ones hang below it, and one FS_DetachDLE releases them all.
#include "handles_fixture.h"
#include <qbfsys/name_pool.h>

namespace {

using qbtest::HandleTest;

class Reattach : public HandleTest {
 protected:
  void SetUp() override {
    HandleTest::SetUp();
    a_ = add(L"A", 3);
    b_ = add(L"B", 5);
    ASSERT_EQ(attach(&hand_, a_, 0x11), FS_SUCCESS);
    messages_.clear();
  }
  GENERIC_DLE* a_ = nullptr;
  GENERIC_DLE* b_ = nullptr;
  FSYS_HAND_STRUCT* hand_ = nullptr;
};

TEST_F(Reattach, FiveArgumentsKeepThePointerAndOneDetachReleasesBoth) {
  FSYS_HAND_STRUCT* const before = hand_;
  ASSERT_EQ(FS_ReattachDLE(hand_, nullptr, b_, nullptr, nullptr), FS_SUCCESS);
  EXPECT_EQ(hand_, before);
  EXPECT_EQ(hand_->dle, b_);
  EXPECT_EQ(hand_->fsysId, 5);
  EXPECT_EQ(hand_->funcTable, &qbtest::tables()[5]);
  EXPECT_EQ(hand_->attachFlags, 0x11u);  // carried over
  EXPECT_EQ(hand_->attachMode, 7);
  EXPECT_EQ(hand_->attachContext, &cfg_);
  EXPECT_EQ(hand_->attachArg, 0u);       // not carried
  EXPECT_FALSE(hand_->attachBool);
  EXPECT_STREQ(hand_->pathBuf, L"\\");
  ASSERT_NE(hand_->previousState, nullptr);
  EXPECT_EQ(hand_->previousState->dle, a_);
  EXPECT_EQ(hand_->previousState->attachArg, 99u);
  EXPECT_EQ(a_->attach_count, 1);
  EXPECT_EQ(b_->attach_count, 1);
  EXPECT_TRUE(messages_.has(L"Attach to: B"));

  EXPECT_EQ(FS_DetachDLE(hand_), FS_SUCCESS);
  EXPECT_EQ(a_->attach_count, 0);
  EXPECT_EQ(b_->attach_count, 0);
  EXPECT_EQ(module_->detaches, 2);
  EXPECT_EQ(module_->closes, 2);
  long const newest = messages_.index_of(L"Detach from: B");
  ASSERT_GE(newest, 0);
  EXPECT_LT(newest, messages_.index_of(L"Detach from: A"));
}

// A refused binding leaves the old one; the five-argument form drops the
// state it made. Only the four-argument form counts FS_STATUS_EXT_ERROR as
// attached.
TEST_F(Reattach, FailedBindingsLeaveTheOldOne) {
  struct Case {
    int form;  // 5 or 4 arguments
    FS_STATUS attach_result;
    bool unavailable;
    bool ipc_failed;
    FS_STATUS expected;
    bool switched;
  } const cases[] = {
      {5, FS_STATUS_EXT_ERROR, false, false, FS_STATUS_EXT_ERROR, false},
      {5, 0xE0003333, false, false, 0xE0003333, false},
      {5, FS_SUCCESS, false, true, FS_ERR_ATTACH_REFUSED, false},
      {4, FS_SUCCESS, true, false, FS_ERR_DLE_UNAVAILABLE, false},
      {4, 0xE0004444, false, false, 0xE0004444, false},
      {4, FS_STATUS_EXT_ERROR, false, false, FS_STATUS_EXT_ERROR, true},
  };
  _IPC_HAND ipc{0, 0, nullptr};
  for (Case const& c : cases) {
    SCOPED_TRACE(std::to_string(c.form) + " arguments, expecting " + std::to_string(c.expected));
    module_->attach_result = c.attach_result;
    b_->status_flags = c.unavailable ? DLE_STATUS_UNAVAILABLE : 0;
    ipc.failure = c.ipc_failed ? 1 : 0;
    hand_->ipc = &ipc;
    int const closes = module_->closes;
    EXPECT_EQ(c.form == 5 ? FS_ReattachDLE(hand_, nullptr, b_, nullptr, nullptr) : FS_ReattachDLE(hand_, b_, nullptr, nullptr),
              c.expected);
    hand_->ipc = nullptr;
    EXPECT_EQ(hand_->dle, c.switched ? b_ : a_);
    EXPECT_EQ(b_->attach_count, c.switched ? 1 : 0);
    if (c.switched) {
      ASSERT_NE(hand_->restoreWorkFlow, nullptr);
      EXPECT_TRUE(hand_->restoreWorkFlow->empty());
      continue;
    }
    EXPECT_EQ(hand_->fsysId, 3);
    EXPECT_EQ(hand_->previousState, nullptr);
    if (c.form == 5) {
      EXPECT_EQ(module_->closes, closes + 1);  // the fresh state is dropped
    }
  }
  EXPECT_TRUE(messages_.has(L"FS_Attach deferred error: IPC was not successfully opened."));
  EXPECT_EQ(FS_DetachDLE(hand_), FS_SUCCESS);
  EXPECT_EQ(a_->attach_count + b_->attach_count, 0);
}

TEST_F(Reattach, FiveArgumentFormWithAnEmptyTableOrBadIdIsRefused) {
  _FUNC_LIST empty{};
  EXPECT_EQ(FS_ReattachDLE(hand_, &empty, b_, nullptr, nullptr), FS_ERR_UNIMPLEMENTED);
  GENERIC_DLE* odd = add(L"ODD", 3);
  odd->type = 60;
  EXPECT_EQ(FS_ReattachDLE(hand_, nullptr, odd, nullptr, nullptr), FS_ERR_DLE_UNAVAILABLE);
  odd->type = 3;
  EXPECT_EQ(hand_->dle, a_);
  EXPECT_EQ(FS_DetachDLE(hand_), FS_SUCCESS);
}

TEST_F(Reattach, NameElementsStayReleasableAfterTheSwap) {
  FS_NAME_Q_ELEM* kept = FS_AllocPathOrName(hand_, 10);
  ASSERT_NE(kept, nullptr);
  ASSERT_EQ(FS_ReattachDLE(hand_, nullptr, b_, nullptr, nullptr), FS_SUCCESS);
  FSYS_HAND_STRUCT* old = hand_->previousState;
  EXPECT_EQ(QueueCount(&old->in_use_name_q), 1);
  FS_ReleasePathOrName(hand_, &kept);  // not in the new state's queue
  EXPECT_TRUE(messages_.has_prefix(L"FS_ReleasePathOrName: Error."));
  kept = reinterpret_cast<FS_NAME_Q_ELEM*>(old->in_use_name_q.q_head);
  FS_ReleasePathOrName(old, &kept);  // the old state's own queue accepts it
  EXPECT_EQ(QueueCount(&old->in_use_name_q), 0);
  EXPECT_EQ(QueueCount(&old->avail_name_q), 1);
  EXPECT_EQ(QueueCount(&hand_->in_use_name_q), 0);
  EXPECT_EQ(FS_DetachDLE(hand_), FS_SUCCESS);
}

TEST_F(Reattach, FourArgumentsCarryTheAdaptersRestoreWorkFlow) {
  GENERIC_DLE* c = add(L"C", qbtest::kAdapterFsys);
  FS_DetachDLE(hand_);
  ASSERT_EQ(attach(&hand_, c, 0x11), FS_SUCCESS);
  adapter_.restore_work_flow = L"flow-from-adapter";
  FSYS_HAND_STRUCT* const before = hand_;

  ASSERT_EQ(FS_ReattachDLE(hand_, a_, nullptr, nullptr), FS_SUCCESS);
  EXPECT_EQ(hand_, before);
  EXPECT_EQ(hand_->dle, a_);
  EXPECT_EQ(hand_->attachFlags, 0x11u);
  EXPECT_EQ(hand_->attachArg, 0u);
  EXPECT_EQ(hand_->adapter, nullptr);  // file system 3 serves through its table
  ASSERT_NE(hand_->restoreWorkFlow, nullptr);
  EXPECT_EQ(*hand_->restoreWorkFlow, L"flow-from-adapter");
  ASSERT_NE(hand_->previousState, nullptr);
  EXPECT_EQ(hand_->previousState->dle, c);

  // The old state's own text is taken as it is.
  *hand_->restoreWorkFlow = L"own text";
  ASSERT_EQ(FS_ReattachDLE(hand_, b_, nullptr, nullptr), FS_SUCCESS);
  EXPECT_EQ(*hand_->restoreWorkFlow, L"own text");
  EXPECT_EQ(a_->attach_count + b_->attach_count + c->attach_count, 3);

  EXPECT_EQ(FS_DetachDLE(hand_), FS_SUCCESS);
  EXPECT_EQ(a_->attach_count + b_->attach_count + c->attach_count, 0);
  EXPECT_EQ(adapter_.detaches, 1);
  EXPECT_EQ(adapter_.closes, 1);
}

}  // namespace
