// Opening and closing handles, and what the lifecycle calls do with bad input.
#include <cwchar>

#include "handles_fixture.h"
#include <qbfsys/name_pool.h>

namespace {

using qbtest::HandleTest;
using qbtest::tables;

FS_STATUS g_open_result = 0;
FS_STATUS open_answer(FSYS_HAND_STRUCT*) { return g_open_result; }
FS_STATUS close_answer(FSYS_HAND_STRUCT*) { return 0x2000ABCD; }

TEST_F(HandleTest, OpenWithTheHighestIdBuildsAnUnattachedHandle) {
  FSYS_HAND_STRUCT* hand = nullptr;
  ASSERT_EQ(FS_OpenFileSys(&hand, 50, &cfg_, nullptr), FS_SUCCESS);
  ASSERT_NE(hand, nullptr);
  EXPECT_EQ(hand->fsysId, 50);
  EXPECT_EQ(hand->funcTable, &tables()[50]);
  EXPECT_EQ(hand->cfg, &cfg_);
  EXPECT_EQ(hand->dle, nullptr);
  EXPECT_EQ(hand->pathBufSize, 64);
  EXPECT_EQ(hand->workBufSize, 65536u);
  EXPECT_EQ(hand->workBuf[65535], 0);
  EXPECT_EQ(hand->scratchSize, 64);
  EXPECT_EQ(hand->scratchUsed, 0u);
  EXPECT_EQ(hand->metaCap, 2048u);
  EXPECT_EQ(hand->metaLen, 0u);
  ASSERT_NE(hand->attachText, nullptr);
  ASSERT_NE(hand->workText, nullptr);
  EXPECT_TRUE(hand->attachText->empty());
  EXPECT_EQ(hand->restoreWorkFlow, nullptr);
  EXPECT_EQ(QueueCount(&hand->in_use_name_q), 0);
  EXPECT_EQ(FS_CloseFileSys(hand), FS_SUCCESS);
}

TEST_F(HandleTest, IdAboveFiftyIsRefusedBeforeAnythingIsMade) {
  FSYS_HAND_STRUCT sentinel{};
  FSYS_HAND_STRUCT* hand = &sentinel;
  EXPECT_EQ(FS_OpenFileSys(&hand, 51, &cfg_, nullptr), FS_ERR_INVALID_FSYS_ID);
  EXPECT_EQ(hand, &sentinel);
}

TEST_F(HandleTest, NegativeIdIsAcceptedAndGetsTheGenericTable) {
  FSYS_HAND_STRUCT* hand = nullptr;
  ASSERT_EQ(FS_OpenFileSys(&hand, -1, &cfg_, nullptr), FS_SUCCESS);
  EXPECT_EQ(hand->fsysId, -1);
  EXPECT_EQ(hand->funcTable, GetFuncTablePtr_GEN());
  EXPECT_EQ(FS_CloseFileSys(hand), FS_SUCCESS);
}

TEST_F(HandleTest, OpenSlotResultIsReturnedAndTheHandleKept) {
  _FUNC_LIST table{};
  table.OpenSys = open_answer;
  table.CloseSys = close_answer;
  g_open_result = 0xE0001234;
  FSYS_HAND_STRUCT* hand = nullptr;
  EXPECT_EQ(FS_OpenFileSys(&hand, 3, &cfg_, &table), 0xE0001234);
  ASSERT_NE(hand, nullptr);
  EXPECT_EQ(hand->funcTable, &table);
  EXPECT_EQ(FS_CloseFileSys(hand), 0x2000ABCDu);  // the close slot's answer
}

TEST_F(HandleTest, ModuleSlotsServeOpenAndClose) {
  module_->close_result = 0x20001111;
  FSYS_HAND_STRUCT* hand = nullptr;
  ASSERT_EQ(FS_OpenFileSys(&hand, 5, &cfg_, nullptr), FS_SUCCESS);
  EXPECT_EQ(module_->opens, 1);
  EXPECT_EQ(FS_CloseFileSys(hand), 0x20001111u);
  EXPECT_EQ(module_->closes, 1);
  EXPECT_EQ(module_->detaches, 0);  // nothing was attached
}

TEST_F(HandleTest, CloseOfAnAttachedHandleDetachesWithoutLoweringTheCount) {
  GENERIC_DLE* dle = add(L"VOL", 3);
  FSYS_HAND_STRUCT* hand = nullptr;
  ASSERT_EQ(attach(&hand, dle), FS_SUCCESS);
  EXPECT_EQ(FS_CloseFileSys(hand), FS_SUCCESS);
  EXPECT_EQ(module_->detaches, 1);
  EXPECT_EQ(dle->attach_count, 1);
  EXPECT_FALSE(messages_.has(L"Detach from: VOL"));
}

TEST_F(HandleTest, DetachOfAnUnattachedHandleStillClosesIt) {
  FSYS_HAND_STRUCT* hand = nullptr;
  ASSERT_EQ(FS_OpenFileSys(&hand, 3, &cfg_, nullptr), FS_SUCCESS);
  EXPECT_EQ(FS_DetachDLE(hand), FS_ERR_NOT_ATTACHED);
  EXPECT_EQ(module_->closes, 1);
  EXPECT_EQ(module_->detaches, 0);
}

TEST_F(HandleTest, ReMapPathChangesNothing) {
  FSYS_HAND_STRUCT* hand = nullptr;
  ASSERT_EQ(FS_OpenFileSys(&hand, 3, &cfg_, nullptr), FS_SUCCESS);
  wcstring a(L"a"), b(L"b"), c;
  EXPECT_EQ(FS_ReMapPath(hand, a, b, c), FS_SUCCESS);
  EXPECT_EQ(a, L"a");
  EXPECT_EQ(b, L"b");
  EXPECT_TRUE(c.empty());
  FS_CloseFileSys(hand);
}

TEST_F(HandleTest, NullArgumentsGiveTheirStatusAndNeverCrash) {
  GENERIC_DLE* dle = add(L"VOL", 3);
  FSYS_HAND_STRUCT* hand = reinterpret_cast<FSYS_HAND_STRUCT*>(&cfg_);
  EXPECT_EQ(FS_OpenFileSys(nullptr, 3, &cfg_, nullptr), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(FS_CloseFileSys(nullptr), FS_ERR_INVALID_HANDLE);
  EXPECT_EQ(FS_DetachDLE(nullptr), FS_ERR_NOT_ATTACHED);
  EXPECT_EQ(attach(nullptr, dle), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(attach(&hand, nullptr), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(hand, nullptr);
  EXPECT_EQ(FS_ReattachDLE(nullptr, nullptr, dle, nullptr, nullptr), FS_ERR_INVALID_HANDLE);
  EXPECT_EQ(FS_ReattachDLE(nullptr, dle, nullptr, nullptr), FS_ERR_INVALID_HANDLE);
  wcstring a, b, c;
  EXPECT_EQ(FS_ReMapPath(nullptr, a, b, c), FS_SUCCESS);
  EXPECT_EQ(module_->opens, 0);
  EXPECT_EQ(dle->attach_count, 0);

  ASSERT_EQ(FS_OpenFileSys(&hand, 3, &cfg_, nullptr), FS_SUCCESS);
  EXPECT_EQ(FS_ReattachDLE(hand, nullptr, nullptr, nullptr, nullptr), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(FS_ReattachDLE(hand, nullptr, nullptr, nullptr), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(hand->dle, nullptr);
  EXPECT_EQ(hand->previousState, nullptr);
  FS_CloseFileSys(hand);
}

}  // namespace
