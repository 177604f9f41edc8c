// qbclass singleton storage: one instance, reentrancy guard, failure retry,
// release at process exit.
#include <qbclass/singleton.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace {

using qbclass::singleton_details::object_controller;
using qbclass::singleton_details::pointer_controller;
using qbclass::singleton_details::reentrant_exception;
using qbclass::singleton_details::singleton_storage;

template <class Storage>
struct counted {
  static inline int constructed = 0;
  counted() { ++constructed; }
  double payload = 0;
};

template <class Storage>
struct singleton_kinds : ::testing::Test {};
using storage_kinds = ::testing::Types<object_controller, pointer_controller>;
TYPED_TEST_SUITE(singleton_kinds, storage_kinds);

TYPED_TEST(singleton_kinds, BuildsOnceAndHandsOutTheSameObject) {
  using object = counted<TypeParam>;
  EXPECT_EQ(object::constructed, 0);
  auto a = singleton_storage<object, TypeParam>::get();
  auto b = singleton_storage<object, TypeParam>::get();
  ASSERT_TRUE(a);
  EXPECT_EQ(a.get(), b.get());
  EXPECT_EQ(object::constructed, 1);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(a.get()) % 8, 0u);
}

// Reaches its own singleton from its constructor while `recurse` is set.
struct self_calling {
  static inline bool recurse = true;
  self_calling() {
    if (recurse) singleton_storage<self_calling>::get();
  }
};

TEST(singleton_reentrancy, ConstructorReachingItselfThrowsAndLaterUseSucceeds) {
  try {
    singleton_storage<self_calling>::get();
    FAIL() << "recursive construction was not detected";
  } catch (reentrant_exception const& e) {
    EXPECT_STREQ(e.what(),
                 "singleton creation and/or destuction code can not be recursively called.");
  }
  self_calling::recurse = false;
  EXPECT_TRUE(singleton_storage<self_calling>::get());
}

struct fails_first {
  static inline int attempts = 0;
  fails_first() {
    if (++attempts == 1) throw std::runtime_error("first attempt fails");
  }
};

TEST(singleton_failure, ThrowingConstructorPropagatesAndNextUseRetries) {
  EXPECT_THROW(singleton_storage<fails_first>::get(), std::runtime_error);
  auto p = singleton_storage<fails_first>::get();  // not reported as reentrant
  EXPECT_TRUE(p);
  EXPECT_EQ(fails_first::attempts, 2);
}

// At process exit: the destructor reaching its own singleton is refused, and
// after the release get() hands out nothing.
struct self_calling_on_exit {
  ~self_calling_on_exit() {
    try {
      singleton_storage<self_calling_on_exit>::get();
      std::fputs("destructor: no exception\n", stderr);
    } catch (reentrant_exception const& e) {
      std::fprintf(stderr, "destructor: %s\n", e.what());
    }
  }
};

void report_after_release() {
  bool const empty = !singleton_storage<self_calling_on_exit>::get();
  std::fprintf(stderr, "after release: %s\n", empty ? "empty" : "rebuilt");
}

TEST(singleton_exit, DestructorReentryRefusedAndReleasedStorageStaysEmpty) {
  EXPECT_EXIT(
      {
        std::atexit(report_after_release);  // runs after the storage's release
        singleton_storage<self_calling_on_exit>::get();
        std::exit(0);
      },
      ::testing::ExitedWithCode(0),
      "destructor: singleton creation and/or destuction code can not be recursively "
      "called\\.\nafter release: empty");
}

}  // namespace
