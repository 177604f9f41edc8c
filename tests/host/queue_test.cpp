#include <qbhost/queue.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

struct Item {
  _Q_ELEM q;
  int value;
};

class QueueTest : public ::testing::Test {
 protected:
  void SetUp() override {
    InitQueue(&queue_);
    InitQueue(&other_);
    for (int i = 0; i < 5; ++i) {
      items_[i].value = i;
      InitQElem(&items_[i].q);
    }
  }
  // Walks forward and backward and checks both agree with the count.
  std::vector<int> contents(_Q_HEADER const& q) {
    std::vector<int> forward, backward;
    for (_Q_ELEM* e = QueueHead(&q); e != nullptr; e = QueueNext(e))
      forward.push_back(reinterpret_cast<Item*>(e)->value);
    for (_Q_ELEM* e = QueueTail(&q); e != nullptr; e = QueuePrev(e))
      backward.insert(backward.begin(), reinterpret_cast<Item*>(e)->value);
    EXPECT_EQ(forward, backward);
    EXPECT_EQ(static_cast<int>(forward.size()), QueueCount(&q));
    return forward;
  }

  _Q_HEADER queue_{};
  _Q_HEADER other_{};
  Item items_[5]{};
};

TEST_F(QueueTest, EnqueueAndDequeueKeepFifoOrder) {
  for (int i = 0; i < 3; ++i) ASSERT_EQ(QUEUE_SUCCESS, EnQueueElem(&queue_, &items_[i].q));
  EXPECT_EQ((std::vector<int>{0, 1, 2}), contents(queue_));
  EXPECT_EQ(&items_[0].q, DeQueueElem(&queue_));
  EXPECT_EQ(nullptr, items_[0].q.q_owner);
  EXPECT_EQ((std::vector<int>{1, 2}), contents(queue_));
  EXPECT_EQ(&items_[1].q, DeQueueElem(&queue_));
  EXPECT_EQ(&items_[2].q, DeQueueElem(&queue_));
  EXPECT_EQ(nullptr, DeQueueElem(&queue_));
  EXPECT_EQ(nullptr, QueueHead(&queue_));
  EXPECT_EQ(nullptr, QueueTail(&queue_));
}

TEST_F(QueueTest, InsertAtHeadMiddleAndTail) {
  ASSERT_EQ(QUEUE_SUCCESS, InsertElem(&queue_, nullptr, &items_[2].q));  // empty queue
  ASSERT_EQ(QUEUE_SUCCESS, InsertElem(&queue_, nullptr, &items_[0].q));  // new head
  ASSERT_EQ(QUEUE_SUCCESS, InsertElem(&queue_, &items_[0].q, &items_[1].q));
  ASSERT_EQ(QUEUE_SUCCESS, InsertElem(&queue_, &items_[2].q, &items_[3].q));  // after tail
  ASSERT_EQ(QUEUE_SUCCESS, EnQueueElem(&queue_, &items_[4].q));
  EXPECT_EQ((std::vector<int>{0, 1, 2, 3, 4}), contents(queue_));
}

TEST_F(QueueTest, RemoveFromEveryPosition) {
  for (auto& item : items_) ASSERT_EQ(QUEUE_SUCCESS, EnQueueElem(&queue_, &item.q));
  EXPECT_EQ(QUEUE_SUCCESS, RemoveQueueElem(&queue_, &items_[2].q));
  EXPECT_EQ((std::vector<int>{0, 1, 3, 4}), contents(queue_));
  EXPECT_EQ(QUEUE_SUCCESS, RemoveQueueElem(&queue_, &items_[0].q));
  EXPECT_EQ(QUEUE_SUCCESS, RemoveQueueElem(&queue_, &items_[4].q));
  EXPECT_EQ((std::vector<int>{1, 3}), contents(queue_));
  // A removed element can be queued again.
  EXPECT_EQ(QUEUE_SUCCESS, EnQueueElem(&queue_, &items_[2].q));
  EXPECT_EQ((std::vector<int>{1, 3, 2}), contents(queue_));
}

TEST_F(QueueTest, ForeignAndStaleElementsAreRefusedWithoutDamage) {
  ASSERT_EQ(QUEUE_SUCCESS, EnQueueElem(&queue_, &items_[0].q));
  ASSERT_EQ(QUEUE_SUCCESS, EnQueueElem(&queue_, &items_[1].q));
  ASSERT_EQ(QUEUE_SUCCESS, EnQueueElem(&other_, &items_[2].q));

  EXPECT_EQ(QUEUE_FAILURE, RemoveQueueElem(&queue_, &items_[2].q));  // in the other queue
  EXPECT_EQ(QUEUE_FAILURE, RemoveQueueElem(&queue_, &items_[3].q));  // in no queue
  ASSERT_EQ(QUEUE_SUCCESS, RemoveQueueElem(&queue_, &items_[1].q));
  EXPECT_EQ(QUEUE_FAILURE, RemoveQueueElem(&queue_, &items_[1].q));  // removed twice
  EXPECT_EQ(QUEUE_FAILURE, EnQueueElem(&queue_, &items_[2].q));      // already queued
  EXPECT_EQ(QUEUE_FAILURE, EnQueueElem(&queue_, &items_[0].q));
  EXPECT_EQ(QUEUE_FAILURE, InsertElem(&queue_, &items_[2].q, &items_[3].q));  // foreign anchor
  EXPECT_EQ(QUEUE_FAILURE, InsertElem(&queue_, &items_[0].q, &items_[2].q));  // queued element

  EXPECT_EQ((std::vector<int>{0}), contents(queue_));
  EXPECT_EQ((std::vector<int>{2}), contents(other_));
}

TEST_F(QueueTest, NullArgumentsFail) {
  InitQueue(nullptr);
  InitQElem(nullptr);
  EXPECT_EQ(QUEUE_FAILURE, EnQueueElem(nullptr, &items_[0].q));
  EXPECT_EQ(QUEUE_FAILURE, EnQueueElem(&queue_, nullptr));
  EXPECT_EQ(QUEUE_FAILURE, InsertElem(nullptr, nullptr, &items_[0].q));
  EXPECT_EQ(QUEUE_FAILURE, InsertElem(&queue_, nullptr, nullptr));
  EXPECT_EQ(QUEUE_FAILURE, RemoveQueueElem(nullptr, &items_[0].q));
  EXPECT_EQ(QUEUE_FAILURE, RemoveQueueElem(&queue_, nullptr));
  EXPECT_EQ(nullptr, DeQueueElem(nullptr));
  EXPECT_EQ(0, QueueCount(nullptr));
  EXPECT_EQ(nullptr, QueueHead(nullptr));
  EXPECT_EQ(nullptr, QueueTail(nullptr));
  EXPECT_EQ(nullptr, QueueNext(nullptr));
  EXPECT_EQ(nullptr, QueuePrev(nullptr));
  EXPECT_EQ(0, QueueCount(&queue_));
}

}  // namespace
