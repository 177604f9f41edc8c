// FS_InitFileSys / FS_RemoveFileSys against real modules loaded with dlopen.
#include <dlfcn.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "capture.h"
#include "test_records.h"
#include <qbfsys/fs_init.h>
#include <qbfsys/gen.h>
#include <qbfsys/registry.h>

namespace {

std::wstring module_path(char const* file) {
  std::string path = std::string(QB_TEST_MODULE_DIR) + "/" + file;
  return std::wstring(path.begin(), path.end());
}

// Calls a tm_* reporting entry point of an already loaded module.
template <class R>
R module_call(char const* file, char const* entry) {
  std::string path = std::string(QB_TEST_MODULE_DIR) + "/" + file;
  void* handle = dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
  if (handle == nullptr) return R(-1);
  auto fn = reinterpret_cast<R (*)()>(dlsym(handle, entry));
  R result = fn ? fn() : R(-1);
  dlclose(handle);  // only drops the reference RTLD_NOLOAD took
  return result;
}

std::string narrow(std::wstring const& w) { return std::string(w.begin(), w.end()); }

// True when a trace line of the start-up starts with `prefix` and holds `part`.
bool traced(qbtest::TraceCapture const& traces, std::string const& prefix, std::string const& part) {
  std::string const at = "engine/fsys/shared/initfsys(" + prefix;
  return std::any_of(traces.lines().begin(), traces.lines().end(), [&](std::string const& l) {
    return l.compare(0, at.size(), at) == 0 && l.find(part, at.size()) != std::string::npos;
  });
}

bool is_generic(unsigned index) {
  return std::memcmp(&qbtest::tables()[index], &_GENFuncTab, sizeof(_FUNC_LIST)) == 0;
}

// Runs FS_InitFileSys over the given module files (paths in the test tree,
// or raw names when `raw` is set).
class InitFileSys : public ::testing::Test {
 protected:
  FS_STATUS init(std::vector<std::wstring> const& names) {
    std::vector<wchar_t const*> list;
    for (auto const& n : names) list.push_back(n.c_str());
    list.push_back(nullptr);
    return FS_InitFileSys(&cfg_, ~0ull, list.data(), static_cast<unsigned>(names.size()));
  }
  void TearDown() override { FS_RemoveFileSys(); }

  QB_CFG cfg_{};
  qbtest::MessageCapture messages_;
};

TEST_F(InitFileSys, RegistryIsEmptyBeforeStartUp) {
  for (unsigned i = 0; i < FS_MAX_FSYS; ++i) {
    EXPECT_EQ(find_order[i], 0);
    EXPECT_EQ(resolve_order[i], 0);
  }
  ASSERT_EQ(dlls.size(), FS_MAX_FSYS);
  for (auto const& d : dlls) EXPECT_FALSE(d);
}

TEST_F(InitFileSys, EmptyListInitialisesEveryIndexThroughTheGenericTable) {
  EXPECT_EQ(init({}), FS_SUCCESS);
  for (unsigned i = 0; i < FS_MAX_FSYS; ++i) EXPECT_TRUE(is_generic(i)) << i;
  EXPECT_EQ(messages_.index_of(L"FS_InitFileSys"), 0);
  EXPECT_TRUE(messages_.has(L"Initializing FSs"));
  EXPECT_EQ(FS_InitFileSys(&cfg_, 0, nullptr, 0), FS_SUCCESS);  // a null list is an empty one
}

TEST_F(InitFileSys, LoadsTablesThroughEitherEntryPoint) {
  qbtest::TraceCapture traces("engine/fsys/shared/initfsys");
  std::wstring multi = module_path("libtm_multi.so");
  std::wstring only64 = module_path("libtm_only64.so");
  ASSERT_EQ(init({multi, only64}), FS_SUCCESS);

  EXPECT_TRUE(messages_.has(L"  loaded " + multi));
  EXPECT_TRUE(messages_.has(L"  loaded " + only64));
  for (unsigned i : {10u, 11u, 12u, 13u}) {
    ASSERT_TRUE(dlls[i]) << i;
    EXPECT_FALSE(is_generic(i));
    EXPECT_EQ(find_order[i], 1);
    EXPECT_EQ(resolve_order[i], 1);
    EXPECT_EQ(dlls[i]->version, 23);
  }
  EXPECT_EQ(dlls[10].get(), dlls[12].get());  // one record, several indices
  EXPECT_EQ(dlls[10]->RefCount(), 3);
  EXPECT_EQ(dlls[13]->name, only64);
  EXPECT_FALSE(dlls[9]);
  EXPECT_EQ(module_call<unsigned long long>("libtm_multi.so", "tm_mask"), 0xFFFFFFFFull);
  EXPECT_EQ(module_call<unsigned long long>("libtm_only64.so", "tm_mask"), ~0ull);
  EXPECT_EQ(module_call<int>("libtm_multi.so", "tm_init_calls"), 3);

  ASSERT_TRUE(traces.available());
  EXPECT_TRUE(traces.has("engine/fsys/shared/initfsys(454): " + narrow(multi) + " loaded at index 10"));
  EXPECT_TRUE(traces.has("engine/fsys/shared/initfsys(500): " + narrow(only64) + " loaded at index 13"));

  FS_RemoveFileSys();
  EXPECT_EQ(module_call<int>("libtm_multi.so", "tm_deinit_calls"), 3);
  EXPECT_TRUE(messages_.has(L"  unloading " + multi));
  for (auto const& d : dlls) EXPECT_FALSE(d);
  EXPECT_FALSE(is_generic(10));  // tables stay until the next start-up
}

TEST_F(InitFileSys, DropsIndicesOutOfRangeAndReleasesModulesThatFillNothing) {
  std::wstring big = module_path("libtm_bigindex.so");
  std::wstring empty = module_path("libtm_empty.so");
  ASSERT_EQ(init({big, empty}), FS_SUCCESS);
  ASSERT_TRUE(dlls[14]);
  EXPECT_EQ(dlls[14]->RefCount(), 1);
  EXPECT_TRUE(messages_.has(L"  loaded " + empty));
  EXPECT_TRUE(messages_.has(L"  unloading " + empty));
  int filled = 0;
  for (auto const& d : dlls) filled += d ? 1 : 0;
  EXPECT_EQ(filled, 1);
}

TEST_F(InitFileSys, LaterModuleOverridesAnIndexAndTheTraceNamesTheEarlierOne) {
  qbtest::TraceCapture traces("engine/fsys/shared/initfsys");
  std::wstring a = module_path("libtm_dup_a.so");
  std::wstring b = module_path("libtm_dup_b.so");
  std::wstring c = module_path("libtm_dup_c.so");
  ASSERT_EQ(init({c, a, b}), FS_SUCCESS);

  ASSERT_TRUE(dlls[20]);
  EXPECT_EQ(dlls[20]->name, b);
  // c still holds index 21, so it survives losing 20; a held only 20 and goes.
  ASSERT_TRUE(dlls[21]);
  EXPECT_EQ(dlls[21]->name, c);
  EXPECT_TRUE(messages_.has(L"  unloading " + a));
  EXPECT_FALSE(messages_.has(L"  unloading " + c));
  EXPECT_EQ(module_call<int>("libtm_dup_b.so", "tm_init_calls"), 1);
  EXPECT_EQ(module_call<int>("libtm_dup_a.so", "tm_init_calls"), 0);
  ASSERT_TRUE(traces.available());
  for (std::wstring const& earlier : {c, a})
    EXPECT_TRUE(traces.has("engine/fsys/shared/initfsys(442): Warning!  Overriding function table entry 20 already filled by " +
                           narrow(earlier)));
}

TEST_F(InitFileSys, SameIndexTwiceFromOneModuleKeepsTheSecondTable) {
  qbtest::TraceCapture traces("engine/fsys/shared/initfsys");
  std::wstring twice = module_path("libtm_twice.so");
  ASSERT_EQ(init({twice}), FS_SUCCESS);
  ASSERT_TRUE(dlls[22]);
  EXPECT_EQ(dlls[22]->RefCount(), 1);
  EXPECT_EQ(module_call<int>("libtm_twice.so", "tm_last_init_table"), 1);
  EXPECT_EQ(module_call<int>("libtm_twice.so", "tm_init_calls"), 1);
  ASSERT_TRUE(traces.available());
  EXPECT_TRUE(traces.has("engine/fsys/shared/initfsys(442): Warning!  Overriding function table entry 22 already filled by " +
                         narrow(twice)));
}

TEST_F(InitFileSys, PerIndexObjectTakesPrecedenceOverTheTable) {
  std::wstring object = module_path("libtm_object.so");
  ASSERT_EQ(init({object}), FS_SUCCESS);
  ASSERT_NE(get_DLE_fsysObjPtr(40), nullptr);
  EXPECT_EQ(module_call<int>("libtm_object.so", "tm_object_init_calls"), 1);
  EXPECT_EQ(module_call<int>("libtm_object.so", "tm_init_calls"), 0);
  FS_RemoveFileSys();
  EXPECT_EQ(module_call<int>("libtm_object.so", "tm_object_deinit_calls"), 1);
  EXPECT_EQ(get_DLE_fsysObjPtr(40), nullptr);
}

TEST_F(InitFileSys, SomeFailingGivesPartialInitAndResetsOnlyThoseIndices) {
  std::wstring fail = module_path("libtm_initfail.so");
  std::wstring multi = module_path("libtm_multi.so");
  EXPECT_EQ(init({fail, multi}), FS_ERR_PARTIAL_INIT);
  EXPECT_TRUE(messages_.has(L"FS 30 failed to initialize: 0xE0001234"));
  EXPECT_TRUE(is_generic(30));
  EXPECT_FALSE(dlls[30]);
  EXPECT_TRUE(messages_.has(L"  unloading " + fail));
  EXPECT_TRUE(dlls[10]);
  EXPECT_FALSE(is_generic(10));
}

TEST_F(InitFileSys, AllFailingTearsEverythingDown) {
  std::wstring all = module_path("libtm_allfail.so");
  EXPECT_EQ(init({all}), FS_ERR_INIT_FAILED);
  EXPECT_EQ(module_call<int>("libtm_allfail.so", "tm_init_calls"), 51);
  EXPECT_TRUE(messages_.has(L"FS 50 failed to initialize: 0xE0000001"));
  EXPECT_TRUE(messages_.has(L"FS_RemoveFileSys"));
  for (auto const& d : dlls) EXPECT_FALSE(d);
}

TEST_F(InitFileSys, MappingServiceFailureStopsAtItsIndexAndTearsDown) {
  std::wstring kxms = module_path("libqbdskx.fail.so");
  std::wstring object = module_path("libtm_object.so");
  std::wstring multi = module_path("libtm_multi.so");
  EXPECT_EQ(init({multi, kxms, object}), FS_ERR_INIT_FAILED);
  EXPECT_TRUE(messages_.has(L"FS 31 failed to initialize: 0xE0004321"));
  long exiting = messages_.index_of(
      L"Exiting qbremote. Cannot continue without successful KXMS initialization.");
  ASSERT_GE(exiting, 0);
  EXPECT_GT(messages_.index_of(L"FS_RemoveFileSys"), exiting);
  // Index 40 comes after 31: never initialised, but de-initialised by the teardown.
  EXPECT_EQ(module_call<int>("libtm_object.so", "tm_object_init_calls"), 0);
  EXPECT_EQ(module_call<int>("libtm_object.so", "tm_object_deinit_calls"), 1);
  EXPECT_EQ(module_call<int>("libtm_multi.so", "tm_init_calls"), 3);
  for (auto const& d : dlls) EXPECT_FALSE(d);
  for (unsigned i = 0; i < FS_MAX_FSYS; ++i) EXPECT_EQ(get_DLE_fsysObjPtr(i), nullptr);
}

TEST_F(InitFileSys, ModuleWorksAgainAfterRemoveAndSecondStartUp) {
  std::wstring multi = module_path("libtm_multi.so");
  ASSERT_EQ(init({multi}), FS_SUCCESS);
  FS_RemoveFileSys();
  ASSERT_EQ(init({}), FS_SUCCESS);
  EXPECT_TRUE(is_generic(10));  // the second start-up reset the tables
  ASSERT_EQ(init({multi}), FS_SUCCESS);
  ASSERT_TRUE(dlls[11]);
  EXPECT_FALSE(is_generic(11));
  EXPECT_EQ(module_call<int>("libtm_multi.so", "tm_init_calls"), 6);
  EXPECT_EQ(messages_.count(L"  loaded " + multi), 2u);
}

// A module that cannot be opened is skipped: the message keeps the host's
// code, the trace carries the loader's reason. A module that opens but
// offers neither table entry is released at once.
TEST_F(InitFileSys, SkipsModulesThatCannotServeAndTracesWhy) {
  std::string text_file = ::testing::TempDir() + "qb_not_a_module.so";
  std::ofstream(text_file) << std::string(256, 'x');  // longer than an ELF header
  std::wstring const missing = module_path("libtm_does_not_exist.so");
  struct refusal {
    std::wstring path;
    char const* reason;
  } const refusals[] = {
      {std::wstring(text_file.begin(), text_file.end()), "invalid ELF header"},
      {module_path(""), "Is a directory"},
      {missing, "No such file or directory"},
      {module_path("libhm_undefined.so"), "undefined symbol: hm_no_library_defines_this"},
  };
  qbtest::TraceCapture traces("engine/fsys/shared/initfsys");
  ASSERT_TRUE(traces.available());
  std::wstring const neither = module_path("libtm_neither.so");
  std::vector<std::wstring> names = {neither, L""};
  for (auto const& r : refusals) names.push_back(r.path);
  names.push_back(module_path("libtm_multi.so"));
  ASSERT_EQ(init(names), FS_SUCCESS);
  for (auto const& r : refusals) {
    EXPECT_TRUE(messages_.has_prefix(L"  " + r.path + L" could not be loaded: 0x")) << r.reason;
    EXPECT_TRUE(traced(traces, "404): " + narrow(r.path) + " could not be loaded: ", r.reason)) << r.reason;
  }
  EXPECT_TRUE(messages_.has(L"  " + missing + L" could not be loaded: 0x       2 (2)\n"));
  EXPECT_TRUE(messages_.has(L"   could not be loaded: 0x       2 (2)\n"));  // an empty name
  EXPECT_TRUE(messages_.has_prefix(L"    " + neither + L" doesn't support GetTable() or Get64BitTable(): "));
  EXPECT_TRUE(messages_.has(L"  unloading " + neither));
  EXPECT_TRUE(dlls[10]);
  std::remove(text_file.c_str());
}

// A module that throws fails alone: the good module beside it serves, and the
// trace names the thrower.
struct hostile_case {
  char const* file;
  FS_STATUS status;
  bool generic_45;    // index 45 back to the generic table
  char const* trace;  // after "engine/fsys/shared/initfsys(<line>): <module>"
};
std::ostream& operator<<(std::ostream& os, hostile_case const& c) { return os << c.file; }

class HostileModule : public InitFileSys, public ::testing::WithParamInterface<hostile_case> {};

TEST_P(HostileModule, FailsAloneAndIsNamed) {
  qbtest::TraceCapture traces("engine/fsys/shared/initfsys");
  ASSERT_TRUE(traces.available());
  std::wstring hostile = module_path(GetParam().file);
  EXPECT_EQ(init({hostile, module_path("libtm_multi.so")}), GetParam().status);
  EXPECT_TRUE(dlls[10]);
  EXPECT_EQ(is_generic(45), GetParam().generic_45);
  FS_RemoveFileSys();
  EXPECT_TRUE(traced(traces, "", narrow(hostile) + GetParam().trace));
  for (auto const& d : dlls) EXPECT_FALSE(d);
}

INSTANTIATE_TEST_SUITE_P(
    Throwing, HostileModule,
    ::testing::Values(
        hostile_case{"libhm_throw1.so", FS_SUCCESS, true,
                     " is skipped: it threw while handing out its tables: hostile tables"},
        hostile_case{"libhm_throw2.so", FS_ERR_PARTIAL_INIT, true,
                     " threw while initializing file system 45: hostile init"},
        hostile_case{"libhm_throw3.so", FS_SUCCESS, false,
                     " threw while making the object of file system 45: hostile object"},
        hostile_case{"libhm_throw4.so", FS_SUCCESS, false,
                     " threw while de-initializing file system 45: hostile deinit"}));

}  // namespace
