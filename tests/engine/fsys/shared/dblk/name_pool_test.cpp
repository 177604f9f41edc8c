// The name pools of a handle: allocation sizes, reuse, release errors and
// what closing a handle reports.
#include <malloc.h>

#include <gtest/gtest.h>

#include "capture.h"
#include <qbfsys/handles.h>
#include <qbfsys/name_pool.h>

namespace {

constexpr wchar_t kReleaseError[] =
    L"FS_ReleasePathOrName: Error. RemoveQueueElem( &fsh->in_use_name_q, &theElem->q ) != "
    L"SUCCESS\n";
constexpr wchar_t kTooManyFree[] =
    L"FS_FreeOSPathOrNameQueueInHand: Error. QueueCount( &fsh->avail_name_q  ) > 8 \n";
constexpr wchar_t kStillInUse[] =
    L"FS_FreeOSPathOrNameQueueInHand: Error. QueueCount( &fsh->in_use_name_q ) != 0 \n";

class NamePool : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(FS_OpenFileSys(&hand_, 3, &cfg_, &table_), FS_SUCCESS); }
  void TearDown() override {
    if (hand_ != nullptr) FS_CloseFileSys(hand_);
  }
  // Closes the handle (the leak check proves the pools were freed).
  void close() {
    FS_CloseFileSys(hand_);
    hand_ = nullptr;
  }

  QB_CFG cfg_{};
  _FUNC_LIST table_{};
  FSYS_HAND_STRUCT* hand_ = nullptr;
  qbtest::MessageCapture messages_;
};

TEST_F(NamePool, FreshElementHoldsTheRequestAndAKilobyteMore) {
  FS_NAME_Q_ELEM* e = FS_AllocPathOrName(hand_, 10);
  ASSERT_NE(e, nullptr);
  EXPECT_EQ(e->capacity, 1034);
  ASSERT_NE(e->buffer, nullptr);
#if defined(__SANITIZE_ADDRESS__)
  EXPECT_EQ(malloc_usable_size(e->buffer), 1054u);  // the sanitizer reports the exact request
#else
  EXPECT_GE(malloc_usable_size(e->buffer), 1054u);
#endif
  EXPECT_EQ(e->buffer[1053], 0);
  EXPECT_EQ(e->q.q_owner, &hand_->in_use_name_q);
  EXPECT_EQ(QueueCount(&hand_->in_use_name_q), 1);
  FS_ReleasePathOrName(hand_, &e);
  EXPECT_EQ(e, nullptr);
  EXPECT_EQ(QueueCount(&hand_->avail_name_q), 1);
  EXPECT_TRUE(messages_.lines().empty());
}

TEST_F(NamePool, ReleasedElementIsReusedWhileItIsLargeEnough) {
  FS_NAME_Q_ELEM* e = FS_AllocPathOrName(hand_, 10);
  FS_NAME_Q_ELEM* const element = e;
  unsigned char* const buffer = e->buffer;
  FS_ReleasePathOrName(hand_, &e);

  e = FS_AllocPathOrName(hand_, 1034);
  EXPECT_EQ(e, element);
  EXPECT_EQ(e->buffer, buffer);
  EXPECT_EQ(e->capacity, 1034);
  EXPECT_EQ(QueueCount(&hand_->avail_name_q), 0);
  FS_ReleasePathOrName(hand_, &e);

  e = FS_AllocPathOrName(hand_, 1035);  // too small now: same element, new buffer
  EXPECT_EQ(e, element);
  EXPECT_EQ(e->capacity, 2059);
  e->buffer[2059 + 19] = 1;
  FS_ReleasePathOrName(hand_, &e);
}

TEST_F(NamePool, SecondReleaseIsReportedAndChangesNothing) {
  FS_NAME_Q_ELEM* e = FS_AllocPathOrName(hand_, 4);
  FS_NAME_Q_ELEM* copy = e;
  FS_ReleasePathOrName(hand_, &e);
  _Q_HEADER const before = hand_->avail_name_q;
  FS_ReleasePathOrName(hand_, &copy);
  EXPECT_EQ(messages_.count(kReleaseError), 1u);
  EXPECT_EQ(copy, nullptr);
  EXPECT_EQ(hand_->avail_name_q.q_head, before.q_head);
  EXPECT_EQ(hand_->avail_name_q.q_tail, before.q_tail);
  EXPECT_EQ(QueueCount(&hand_->avail_name_q), 1);

  FS_NAME_Q_ELEM* none = nullptr;
  FS_ReleasePathOrName(hand_, &none);
  FS_ReleasePathOrName(hand_, nullptr);
  FS_ReleasePathOrName(nullptr, &copy);
  EXPECT_EQ(messages_.count(kReleaseError), 1u);
}

TEST_F(NamePool, ElementOfAnotherHandleIsNotTaken) {
  FSYS_HAND_STRUCT* other = nullptr;
  ASSERT_EQ(FS_OpenFileSys(&other, 3, &cfg_, &table_), FS_SUCCESS);
  FS_NAME_Q_ELEM* e = FS_AllocPathOrName(other, 8);
  FS_NAME_Q_ELEM* keep = e;
  FS_ReleasePathOrName(hand_, &e);
  EXPECT_TRUE(messages_.has(kReleaseError));
  EXPECT_EQ(QueueCount(&other->in_use_name_q), 1);
  EXPECT_EQ(QueueCount(&hand_->avail_name_q), 0);
  FS_ReleasePathOrName(other, &keep);
  FS_CloseFileSys(other);
}

TEST_F(NamePool, ClosingReportsAnOversizedPoolAndElementsStillInUse) {
  struct Case {
    int released;
    int in_use;
    bool too_many;
    bool still_used;
  };
  for (Case c : {Case{8, 0, false, false}, Case{9, 0, true, false}, Case{0, 1, false, true},
                 Case{9, 2, true, true}}) {
    if (hand_ == nullptr) {
      ASSERT_EQ(FS_OpenFileSys(&hand_, 3, &cfg_, &table_), FS_SUCCESS);
    }
    std::vector<FS_NAME_Q_ELEM*> elements;
    for (int i = 0; i < c.released + c.in_use; ++i)
      elements.push_back(FS_AllocPathOrName(hand_, static_cast<std::uint16_t>(i * 100)));
    for (int i = 0; i < c.released; ++i) FS_ReleasePathOrName(hand_, &elements[i]);
    messages_.clear();
    close();
    EXPECT_EQ(messages_.has(kTooManyFree), c.too_many) << c.released << "/" << c.in_use;
    EXPECT_EQ(messages_.has(kStillInUse), c.still_used) << c.released << "/" << c.in_use;
  }
  FS_FreeOSPathOrNameQueueInHand(nullptr);
  EXPECT_TRUE(messages_.has(L"FS_FreeOSPathOrNameQueueInHand: Error. fsh == NULL \n"));
}

TEST_F(NamePool, RequestBeyondA16BitCapacityIsRefused) {
  EXPECT_EQ(FS_AllocPathOrName(hand_, 64512), nullptr);
  EXPECT_EQ(FS_AllocPathOrName(nullptr, 1), nullptr);
  FS_NAME_Q_ELEM* e = FS_AllocPathOrName(hand_, 64511);
  ASSERT_NE(e, nullptr);
  EXPECT_EQ(e->capacity, 0xFFFF);
  FS_ReleasePathOrName(hand_, &e);
}

}  // namespace
