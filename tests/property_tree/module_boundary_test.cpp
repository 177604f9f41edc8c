// A tree made by the layer, filled by a separately built module through the
// interface, serialized here; exceptions keep their type across modules.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include "pt_test_util.h"

namespace {

class ModuleBoundary : public ::testing::Test {
 protected:
  void SetUp() override {
    handle_ = dlopen(QB_TEST_MODULE_DIR "/libpt_tree_filler.so", RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(handle_, nullptr) << dlerror();
    fill_ = reinterpret_cast<void (*)(fs_property_tree*)>(dlsym(handle_, "filler_fill"));
    add_twice_ = reinterpret_cast<void (*)(fs_property_tree*)>(dlsym(handle_, "filler_add_twice"));
    catch_conversion_ = reinterpret_cast<int (*)(fs_property_tree*, std::string*)>(
        dlsym(handle_, "filler_catch_conversion"));
    ASSERT_TRUE(fill_ && add_twice_ && catch_conversion_);
  }
  void TearDown() override {
    if (handle_ != nullptr) dlclose(handle_);
  }
  void* handle_ = nullptr;
  void (*fill_)(fs_property_tree*) = nullptr;
  void (*add_twice_)(fs_property_tree*) = nullptr;
  int (*catch_conversion_)(fs_property_tree*, std::string*) = nullptr;
};

TEST_F(ModuleBoundary, ModuleFillsATreeThatTheCallerSerializes) {
  fs_property_tree_ptr tree = fs_property_tree_create("from_module");
  fill_(tree.get());
  EXPECT_EQ(tree->serialize_utf8txt(),
            "<from_module>\n"
            "\t<module_name type=\"string\" count=\"1\">filler \xc3\xa9 (seen)</module_name>\n"
            "\t<counts type=\"uint64\" count=\"2\">1</counts>\n"
            "\t<counts>2</counts>\n"
            "\t<blob type=\"bin\" count=\"1\">3q2+7w==</blob>\n"
            "\t<nested type=\"rec\" count=\"1\">\n"
            "\t\t<flag type=\"bool\" count=\"1\">1</flag>\n"
            "\t\t<ratio type=\"dbl\" count=\"1\">0.25</ratio>\n"
            "\t</nested>\n"
            "</from_module>\n\n");
}

TEST_F(ModuleBoundary, ExceptionsRaisedInTheLibraryKeepTypeAndMessage) {
  fs_property_tree_ptr tree = fs_property_tree_create("t");
  EXPECT_TRUE(throws_with<duplicate_property_name>(
      [&] { add_twice_(tree.get()); }, "duplicate name used in add long property call"));
  EXPECT_EQ(tree->size(), 1u);

  std::string message;
  EXPECT_EQ(catch_conversion_(tree.get(), &message), 3);
  EXPECT_EQ(message, "Type conversion error: can not convert a long to a tree type");
}

TEST_F(ModuleBoundary, TreesOutliveTheModuleThatFilledThem) {
  fs_property_tree_ptr tree = fs_property_tree_create("t");
  fill_(tree.get());
  dlclose(handle_);
  handle_ = nullptr;
  EXPECT_EQ(tree->query_sub_tree("nested").get_property("ratio").at(0).get_dbl_val(), 0.25);
  tree->clear();
}

}  // namespace
