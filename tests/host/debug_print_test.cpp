// The debug-print factory, reached the way the layer reaches it: by opening
// the utility library by name and looking up its entry point.
#include <qbhost/debug_print.h>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace {

struct Line {
  std::string path;
  int line;
  std::string text;
};

void collect(void* context, char const* path, int line, char const* text) {
  static_cast<std::vector<Line>*>(context)->push_back({path, line, text});
}

class DebugPrint : public ::testing::Test {
 protected:
  void SetUp() override {
    unsetenv("QB_TRACE");  // the defaults under test are those without it
    library_ = dlopen("libqb_util.so", RTLD_NOW);
    ASSERT_NE(nullptr, library_) << dlerror();
    entry_ = reinterpret_cast<get_debug_print_factory_fn*>(dlsym(library_, "get_debug_print_factory"));
    ASSERT_NE(nullptr, entry_);
  }
  void TearDown() override {
    if (library_ != nullptr) dlclose(library_);
  }
  qbclass::shared_ptr<debug_print_factory> factory() {
    qbclass::shared_ptr<debug_print_factory> f;
    entry_(&f);
    EXPECT_TRUE(f);
    return f;
  }

  void* library_ = nullptr;
  get_debug_print_factory_fn* entry_ = nullptr;
  std::vector<Line> lines_;
};

TEST_F(DebugPrint, DisabledByDefaultAndEnabledByPrefix) {
  auto f = factory();
  f->set_hook(collect, &lines_);
  auto init = f->create("engine/fsys/shared/initfsys");
  auto module = f->create("modules/disk/scan");
  ASSERT_TRUE(init);
  EXPECT_STREQ("engine/fsys/shared/initfsys", init->source_path());
  EXPECT_FALSE(init->enabled());
  init->print(10, "not shown");

  f->enable("engine/", true);
  EXPECT_TRUE(init->enabled());
  EXPECT_FALSE(module->enabled());
  auto later = f->create("engine/fsys/shared/dle");  // made after the enable
  EXPECT_TRUE(later->enabled());
  init->print(120, "loading \xC3\xA9");
  module->print(5, "still off");

  f->enable("engine/fsys/shared/init", false);  // a narrower rule wins for its paths
  EXPECT_FALSE(init->enabled());
  EXPECT_TRUE(later->enabled());
  EXPECT_FALSE(f->create("engine/fsys/shared/initfsys")->enabled());

  f->enable("", true);  // everything
  EXPECT_TRUE(init->enabled());
  EXPECT_TRUE(module->enabled());
  f->enable(nullptr, false);  // null prefix: also everything
  EXPECT_FALSE(later->enabled());

  ASSERT_EQ(1u, lines_.size());
  EXPECT_EQ("engine/fsys/shared/initfsys", lines_[0].path);
  EXPECT_EQ(120, lines_[0].line);
  EXPECT_EQ("loading \xC3\xA9", lines_[0].text);
}

TEST_F(DebugPrint, WritesLinesToStandardErrorWithoutHook) {
  auto f = factory();
  auto p = f->create("support/src/dates");
  f->enable("support", true);
  ::testing::internal::CaptureStderr();
  p->print(42, "converted");
  p->print(43, nullptr);
  EXPECT_EQ("support/src/dates(42): converted\nsupport/src/dates(43): \n",
            ::testing::internal::GetCapturedStderr());
}

TEST_F(DebugPrint, OneFactoryWhileAliveThenAFreshOne) {
  auto a = factory();
  auto b = factory();
  EXPECT_EQ(a.get(), b.get());
  a->enable("x", true);
  auto p = a->create("x/y");
  a.reset();
  b.reset();  // the factory is destroyed (by the library's own deleter)
  EXPECT_TRUE(p->enabled());  // an interface outlives its factory
  auto fresh = factory();
  EXPECT_FALSE(fresh->create("x/y")->enabled());
  EXPECT_TRUE(fresh->create(nullptr));
  entry_(nullptr);  // a null output is ignored
}

TEST_F(DebugPrint, TraceVariableEnablesItsPrefixes) {
  ASSERT_EQ(0, setenv("QB_TRACE", "engine,,modules/disk", 1));
  auto f = factory();
  unsetenv("QB_TRACE");
  EXPECT_TRUE(f->create("engine/fsys/shared/initfsys")->enabled());
  EXPECT_TRUE(f->create("modules/disk/scan")->enabled());
  EXPECT_FALSE(f->create("modules/db/scan")->enabled());
}

}  // namespace
