// Ownership rules of qbclass::shared_ptr / weak_ptr.
#include <qbclass/shared_ptr.h>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

// Records, at its own destruction, whether the control object (which holds
// the only other reference to `control_token`) still existed.
struct tracked {
  explicit tracked(std::vector<std::string>* log) : log(log) {}
  ~tracked() { log->push_back("object"); }
  std::vector<std::string>* log;
  int member = 7;
};

// The deleter kept in the control object; its token shows whether the
// control object is still alive.
struct tracking_deleter {
  std::shared_ptr<int> control_token;
  std::vector<std::string>* log;
  void operator()(tracked* p) const {
    log->push_back(control_token.use_count() > 1 ? "delete_obj, control alive" : "control gone");
    delete p;
  }
};

struct owned_fixture : ::testing::Test {
  std::vector<std::string> log;
  std::shared_ptr<int> token = std::make_shared<int>(0);
  qbclass::shared_ptr<tracked> make() {
    return qbclass::shared_ptr<tracked>(new tracked(&log), tracking_deleter{token, &log});
  }
  bool control_alive() const { return token.use_count() > 1; }
};

TEST_F(owned_fixture, LastStrongReleaseDeletesObjectThenControl) {
  {
    auto p = make();
    auto q = p;
    EXPECT_EQ(p.use_count(), 2);
    p.reset();
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(q->member, 7);
  }
  EXPECT_EQ(log, (std::vector<std::string>{"delete_obj, control alive", "object"}));
  EXPECT_FALSE(control_alive());
}

TEST_F(owned_fixture, WeakPointersKeepOnlyTheControlObject) {
  qbclass::weak_ptr<tracked> w1, w2;
  {
    auto p = make();
    w1 = p;
    w2 = w1;
    EXPECT_EQ(w1.use_count(), 1);
    EXPECT_FALSE(w2.expired());
  }
  EXPECT_EQ(log.size(), 2u);  // the object is gone ...
  EXPECT_TRUE(w1.expired());
  EXPECT_TRUE(control_alive());  // ... its control object is not
  w1.reset();
  EXPECT_TRUE(control_alive());
  w2.reset();
  EXPECT_FALSE(control_alive());
}

TEST_F(owned_fixture, LockAfterDeathThrowsBadWeakPtr) {
  qbclass::weak_ptr<tracked> w;
  {
    auto p = make();
    w = p;
    auto locked = w.lock();
    EXPECT_EQ(locked.use_count(), 2);
  }
  try {
    (void)w.lock();
    FAIL() << "lock of a dead weak pointer succeeded";
  } catch (qbclass::bad_weak_ptr const& e) {
    EXPECT_STREQ(e.what(), "weak pointer failed to resolve");
  }
  // A weak pointer that never had an owner does not resolve either.
  EXPECT_THROW((void)qbclass::weak_ptr<tracked>().lock(), qbclass::bad_weak_ptr);
}

TEST_F(owned_fixture, AliasKeepsTheOwnerAlive) {
  qbclass::shared_ptr<int> alias;
  {
    auto p = make();
    alias = qbclass::shared_ptr<int>(p, &p->member);
    EXPECT_EQ(p.use_count(), 2);
  }
  EXPECT_TRUE(log.empty());
  EXPECT_EQ(*alias, 7);
  alias.reset();
  EXPECT_EQ(log.size(), 2u);
  EXPECT_FALSE(control_alive());
}

struct plain_base {  // deliberately no virtual destructor
  int base_value = 1;
};
struct derived : plain_base {
  explicit derived(int* destroyed) : destroyed(destroyed) {}
  ~derived() { ++*destroyed; }
  int* destroyed;
};

TEST(shared_ptr_conversion, ObjectIsDestroyedAsTheTypeItWasMadeAs) {
  int destroyed = 0;
  {
    qbclass::shared_ptr<plain_base> base(new derived(&destroyed));
    qbclass::shared_ptr<plain_base> copy = qbclass::shared_ptr<derived>(new derived(&destroyed));
    EXPECT_EQ(copy->base_value, 1);
  }
  EXPECT_EQ(destroyed, 2);
}

struct poly {
  virtual ~poly() = default;
};
struct poly_derived : poly {};

TEST(shared_ptr_conversion, CastsShareOwnership) {
  qbclass::shared_ptr<poly> p(new poly_derived);
  auto d = qbclass::dynamic_pointer_cast<poly_derived>(p);
  ASSERT_TRUE(d);
  EXPECT_EQ(p.use_count(), 2);
  EXPECT_FALSE(qbclass::dynamic_pointer_cast<poly_derived>(qbclass::shared_ptr<poly>(new poly)));
  auto back = qbclass::static_pointer_cast<poly>(d);
  EXPECT_EQ(back, p);
  EXPECT_EQ(p.use_count(), 3);
}

struct self_aware : qbclass::internal_weak<self_aware> {
  virtual ~self_aware() = default;
};
struct self_aware_child : self_aware {};

TEST(internal_weak, OwnerIsToldAlsoThroughDerivedTypes) {
  qbclass::shared_ptr<self_aware> direct(new self_aware);
  EXPECT_EQ(direct->shared_from_this(), direct);
  qbclass::shared_ptr<self_aware_child> child(new self_aware_child);
  auto self = child->shared_from_this();
  EXPECT_EQ(self.get(), child.get());
  EXPECT_EQ(child.use_count(), 2);
  // An object nobody owns has no self to hand out.
  self_aware unowned;
  EXPECT_THROW((void)unowned.shared_from_this(), qbclass::bad_weak_ptr);
}

TEST(external_deleter, ReleasesTheReferenceHeldElsewhere) {
  std::vector<std::string> log;
  auto token = std::make_shared<int>(0);
  qbclass::shared_ptr<tracked> home(new tracked(&log), tracking_deleter{token, &log});
  qbclass::shared_ptr<tracked> away(home.get(), qbclass::external_deleter<tracked>(home));
  home.reset();
  EXPECT_TRUE(log.empty());  // "away" still holds the home reference
  away.reset();
  EXPECT_EQ(log, (std::vector<std::string>{"delete_obj, control alive", "object"}));
}

TEST(shared_ptr_threads, CopiesFromManyThreadsKeepExactCounts) {
  std::atomic<int> destroyed{0};
  struct counted {
    explicit counted(std::atomic<int>* d) : d(d) {}
    ~counted() { ++*d; }
    std::atomic<int>* d;
  };
  qbclass::shared_ptr<counted> shared(new counted(&destroyed));
  qbclass::weak_ptr<counted> weak(shared);
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 20000; ++i) {
        qbclass::shared_ptr<counted> copy = shared;
        qbclass::weak_ptr<counted> w = copy;
        qbclass::shared_ptr<counted> locked = w.lock();
        qbclass::weak_ptr<counted> w2 = weak;
      }
    });
  }
  for (auto& t : threads) t.join();
  EXPECT_EQ(shared.use_count(), 1);
  EXPECT_EQ(destroyed.load(), 0);
  shared.reset();
  EXPECT_EQ(destroyed.load(), 1);
  EXPECT_TRUE(weak.expired());
}

}  // namespace
