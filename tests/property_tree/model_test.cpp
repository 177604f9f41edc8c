// The tree model: names, duplicates, null objects, container operations.
#include <gtest/gtest.h>
#include "pt_test_util.h"

namespace {

struct name_case {
  char const* name;
  char const* message;  // empty: accepted
};

class NameRules : public ::testing::TestWithParam<name_case> {};

TEST_P(NameRules, AppliesToAddsAndRootTrees) {
  name_case const& c = GetParam();
  fs_property_tree_ptr tree = fs_property_tree_create("root");
  if (*c.message == '\0') {
    EXPECT_NO_THROW(tree->add_lng_property(c.name, 1L));
    EXPECT_TRUE(tree->has_property(c.name));
    EXPECT_NO_THROW(fs_property_tree_create(c.name));
  } else {
    EXPECT_TRUE(throws_with<invalid_property_name>([&] { tree->add_lng_property(c.name, 1L); },
                                                   c.message));
    EXPECT_TRUE(throws_with<invalid_property_name>([&] { tree->add_sub_tree_property(c.name); },
                                                   c.message));
    EXPECT_TRUE(throws_with<invalid_property_name>([&] { fs_property_tree_create(c.name); },
                                                   c.message));
    EXPECT_EQ(tree->size(), 0u) << "a failed add leaves the tree as it was";
  }
}

char const* const digit_first = "property name can not have a number as its first character";
char const* const dash_first = "property name can not have a dash ('-') as its first character";
char const* const bad_char =
    "property name can only have alphabetic letters, numbers, underscores, and dashes";

INSTANTIATE_TEST_SUITE_P(
    Names, NameRules,
    ::testing::Values(name_case{"", "empty property name not allowed"},
                      name_case{"1abc", digit_first}, name_case{"-a", dash_first},
                      name_case{"a.b", bad_char}, name_case{"a b", bad_char},
                      name_case{" a", bad_char}, name_case{"a\xc3\xa9", bad_char},
                      name_case{"a/b", bad_char}, name_case{"a-b", ""}, name_case{"_a", ""},
                      name_case{"A9_-z", ""}));

TEST(NameRules, NullNameIsEmpty) {
  fs_property_tree_ptr tree = fs_property_tree_create("root");
  EXPECT_TRUE(throws_with<invalid_property_name>([&] { tree->add_str_property(nullptr); },
                                                 "empty property name not allowed"));
  fs_property_tree* out = nullptr;
  property_tree_details::exception_interface* e = create_root_tree(nullptr, &out);
  ASSERT_NE(e, nullptr);
  EXPECT_EQ(e->category(), property_tree_details::exception_category::invalid_property_name);
  EXPECT_EQ(out, nullptr);
  e->destroy();
}

struct duplicate_case {
  std::function<void(fs_property_tree&)> add;
  char const* message;
};

class Duplicates : public ::testing::TestWithParam<duplicate_case> {};

TEST_P(Duplicates, UseTheKindsOwnWordWhateverTheExistingKind) {
  fs_property_tree_ptr tree = fs_property_tree_create("root");
  tree->add_sub_tree_property("x");  // the existing kind does not matter
  EXPECT_TRUE(throws_with<duplicate_property_name>([&] { GetParam().add(*tree); },
                                                   GetParam().message));
  EXPECT_EQ(tree->size(), 1u);
  EXPECT_EQ(tree->at(0).type(), fs_property_type::tree);
}

_SSGUID const zero_guid{};
unsigned char const some_bytes[] = {1, 2, 3};

INSTANTIATE_TEST_SUITE_P(
    Kinds, Duplicates,
    ::testing::Values(
        duplicate_case{[](fs_property_tree& t) { t.add_str_property("x", L"v"); }, "duplicate name used in add string property call"},
        duplicate_case{[](fs_property_tree& t) { t.add_lng_property("x"); }, "duplicate name used in add long property call"},
        duplicate_case{[](fs_property_tree& t) { t.add_dbl_property("x", 1.0); }, "duplicate name used in add double property call"},
        duplicate_case{[](fs_property_tree& t) { t.add_ulng_property("x", 1UL); }, "duplicate name used in add unsigned long property call"},
        duplicate_case{[](fs_property_tree& t) { t.add_int32_property("x", 1); }, "duplicate name used in add 32-bit int property call"},
        duplicate_case{[](fs_property_tree& t) { t.add_uint32_property("x", 1U); }, "duplicate name used in add 32-bit unsigned int property call"},
        duplicate_case{[](fs_property_tree& t) { t.add_int64_property("x", 1LL); }, "duplicate name used in add 64-bit int property call"},
        duplicate_case{[](fs_property_tree& t) { t.add_uint64_property("x", 1ULL); }, "duplicate name used in add 64-bit unsigned int property call"},
        duplicate_case{[](fs_property_tree& t) { t.add_ldbl_property("x", 1.0L); }, "duplicate name used in add long double property call"},
        duplicate_case{[](fs_property_tree& t) { t.add_flt_property("x", 1.0f); }, "duplicate name used in add float property call"},
        duplicate_case{[](fs_property_tree& t) { t.add_bool_property("x", true); }, "duplicate name used in add bool property call"},
        duplicate_case{[](fs_property_tree& t) { t.add_guid_property("x", zero_guid); }, "duplicate name used in add guid property call"},
        duplicate_case{[](fs_property_tree& t) { t.add_bin_property("x", 3, some_bytes); }, "duplicate name used in add binary property call"},
        duplicate_case{[](fs_property_tree& t) { t.add_xml_property("x"); }, "duplicate name used in add xml property call"},
        duplicate_case{[](fs_property_tree& t) { t.add_sub_tree_property("x"); }, "duplicate name used in add sub-tree property call"}));

TEST(Duplicates, InsertAndPushBackHaveTheirOwnMessages) {
  fs_property_tree_ptr a = fs_property_tree_create("a");
  fs_property_tree_ptr b = fs_property_tree_create("b");
  a->add_lng_property("n", 1L);
  b->add_str_property("n", L"other");
  EXPECT_TRUE(throws_with<duplicate_property_name>([&] { a->push_back(b->at(0)); },
                                                   "duplicate property name passed to push back"));
  EXPECT_TRUE(throws_with<duplicate_property_name>([&] { a->insert(a->begin(), b->at(0)); },
                                                   "duplicate name encountered during insert"));
  EXPECT_TRUE(throws_with<duplicate_property_name>([&] { a->insert(a->end(), 2, b->at(0)); },
                                                   "duplicate name encountered during insert"));
  EXPECT_TRUE(throws_with<duplicate_property_name>([&] { a->assign(2, b->at(0)); },
                                                   "duplicate name encountered during insert"));
  EXPECT_EQ(a->size(), 1u);
  EXPECT_EQ(a->at(0).at(0).get_lng_val(), 1);
}

TEST(NullObjects, LookupsFindingNothingGiveNullObjectsThatRefuseChanges) {
  fs_property_tree_ptr tree = fs_property_tree_create("root");
  fs_property_tree_property& missing = tree->get_property("nope");
  ASSERT_TRUE(missing.is_null_property());
  EXPECT_EQ(missing.size(), 0u);
  EXPECT_TRUE(missing.empty());
  std::string const refused = "can not modify a null object";
  EXPECT_TRUE(throws_with<modify_null_obj>([&] { missing.append_new_lng_value(1L); }, refused));
  EXPECT_TRUE(throws_with<modify_null_obj>([&] { missing.append_new_value(); }, refused));
  EXPECT_TRUE(throws_with<modify_null_obj>([&] { missing.clear(); }, refused));
  EXPECT_TRUE(throws_with<modify_null_obj>([&] { missing.resize(3); }, refused));

  fs_property_tree_value& root_parent = tree->parent_value();
  ASSERT_TRUE(root_parent.is_null_value());
  EXPECT_TRUE(throws_with<modify_null_obj>([&] { root_parent.set_lng_val(5); }, refused));
  EXPECT_EQ(root_parent.get_lng_val(), 0) << "a null value reads as the default";
  EXPECT_EQ(std::wstring(root_parent.get_str_val()), L"");

  fs_property_tree& null_tree = root_parent.sub_tree();
  ASSERT_TRUE(null_tree.is_null_tree());
  EXPECT_TRUE(throws_with<modify_null_obj>([&] { null_tree.add_str_property("a"); }, refused));
  EXPECT_TRUE(throws_with<modify_null_obj>([&] { null_tree.load_utf8txt("<r><a>1</a></r>"); },
                                           refused));
  EXPECT_TRUE(throws_with<modify_null_obj>([&] { null_tree = *tree; }, refused));
  EXPECT_EQ(null_tree.size(), 0u);
}

TEST(NullObjects, CloningTheNullTreeGivesAnEmptyRootNamedNullTree) {
  fs_property_tree_ptr tree = fs_property_tree_create("root");
  fs_property_tree_ptr clone = fs_property_tree_adopt(tree->query_sub_tree("missing").clone());
  EXPECT_TRUE(clone->is_root());
  EXPECT_FALSE(clone->is_null_tree());
  EXPECT_STREQ(clone->name(), "null_tree");
  EXPECT_EQ(clone->size(), 0u);
  clone->add_lng_property("now_allowed", 1L);
  EXPECT_EQ(clone->size(), 1u);
}

TEST(Containers, CheckedAccessReportsOutOfRangeUncheckedDoesNotThrow) {
  fs_property_tree_ptr tree = fs_property_tree_create("root");
  fs_property_tree_property& p = tree->add_lng_property("a", 7L);
  EXPECT_EQ(tree->at(0).name(), std::string("a"));
  EXPECT_THROW(tree->at(1), std::out_of_range);
  EXPECT_THROW(p.at(1), std::out_of_range);
  EXPECT_THROW(tree->get_property("missing").back(), std::out_of_range);
  EXPECT_NO_THROW((*tree)[1]);  // no check: gives the null property, never reads past the end
  EXPECT_TRUE((*tree)[5].is_null_property());
  EXPECT_EQ(p[0].get_lng_val(), 7);
}

TEST(Containers, OrderIndexAndPositionsStayInStep) {
  fs_property_tree_ptr tree = fs_property_tree_create("root");
  for (char const* n : {"c", "a", "b"}) tree->add_lng_property(n, 1L);
  std::vector<std::string> order;
  for (auto const& p : *tree) order.push_back(p.name());
  EXPECT_EQ(order, (std::vector<std::string>{"c", "a", "b"})) << "insertion order, not name order";

  tree->erase(tree->find("a"));
  EXPECT_FALSE(tree->has_property("a"));
  EXPECT_TRUE(tree->get_property("a").is_null_property());
  EXPECT_EQ(tree->find("a"), tree->end());
  tree->add_str_property("a", L"again");  // the name is free again
  EXPECT_STREQ(tree->at(2).name(), "a");

  fs_property_tree_property& values = tree->add_int32_property("v");
  for (int i = 0; i < 5; ++i) values.append_new_int32_value(i);
  values.erase(values.begin() + 1, values.begin() + 3);
  ASSERT_EQ(values.size(), 3u);
  for (std::size_t i = 0; i < values.size(); ++i) EXPECT_EQ(values[i].pos(), i);
  EXPECT_EQ(values[1].get_int32_val(), 3);
  values.insert(values.begin(), values.at(2));  // copies, converted to the property's kind
  EXPECT_EQ(values[0].get_int32_val(), 4);
  EXPECT_EQ(values[3].pos(), 3u);

  fs_property_tree_ptr other = fs_property_tree_create("other");
  other->insert(other->end(), tree->begin(), tree->end());
  EXPECT_EQ(pt_test::tree_difference(*tree, *other), "");
  other->pop_back();
  other->pop_back();
  EXPECT_EQ(other->size(), 2u);
  EXPECT_FALSE(other->has_property("v"));
  other->clear();
  EXPECT_TRUE(other->empty());
  EXPECT_THROW(other->pop_back(), std::out_of_range);
}

TEST(Containers, IteratorsOfAnotherContainerAreRefused) {
  fs_property_tree_ptr a = fs_property_tree_create("a");
  fs_property_tree_ptr b = fs_property_tree_create("b");
  b->add_lng_property("x", 1L);
  EXPECT_THROW(a->erase(b->begin()), std::exception);
  EXPECT_THROW(a->insert(b->begin(), b->at(0)), std::exception);
  EXPECT_THROW(*a->end(), std::out_of_range);
  EXPECT_EQ(a->size(), 0u);
}

TEST(Containers, HugeCountsAreRefusedBeforeMemoryIsTaken) {
  fs_property_tree_ptr tree = fs_property_tree_create("root");
  fs_property_tree_property& p = tree->add_lng_property("a", 1L);
  EXPECT_THROW(p.resize(std::size_t(1) << 40), std::exception);
  EXPECT_THROW(p.insert(p.end(), std::size_t(1) << 40, p.at(0)), std::exception);
  EXPECT_THROW(p.reserve(~std::size_t(0)), std::exception);
  EXPECT_EQ(p.size(), 1u);
}

TEST(Trees, NestedTreesKnowTheirRootParentAndName) {
  fs_property_tree_ptr root = fs_property_tree_create("root");
  fs_property_tree& level1 = root->add_sub_tree_property("one").append_new_sub_tree();
  fs_property_tree& level2 = level1.add_sub_tree_property("two").append_new_sub_tree();
  EXPECT_FALSE(level2.is_root());
  EXPECT_STREQ(level2.name(), "two");
  EXPECT_EQ(&level2.root_tree(), root.get());
  EXPECT_EQ(&level2.parent_value().parent_property().parent_tree(), &level1);
  EXPECT_EQ(&level1.get_property("two").at(0).sub_tree(), &level2);
}

TEST(Trees, CopiesAreDeep) {
  fs_property_tree_ptr root = fs_property_tree_create("root");
  root->add_sub_tree_property("t").append_new_sub_tree().add_lng_property("n", 1L);
  fs_property_tree_ptr copy = fs_property_tree_adopt(root->clone());
  *copy = *root;  // assignment copies deeply as well
  root->query_sub_tree("t").get_property("n").at(0).set_lng_val(2);
  EXPECT_EQ(copy->query_sub_tree("t").get_property("n").at(0).get_lng_val(), 1);
  EXPECT_EQ(&copy->query_sub_tree("t").root_tree(), copy.get());

  // Assigning a tree to one of its own nested trees copies a snapshot.
  fs_property_tree& inner = root->query_sub_tree("t");
  inner = *root;
  EXPECT_EQ(root->query_sub_tree("t/t").get_property("n").at(0).get_lng_val(), 2);
}

TEST(Trees, NestingBeyondTheLimitIsRefused) {
  fs_property_tree_ptr root = fs_property_tree_create("root");
  fs_property_tree* t = root.get();
  for (unsigned i = 0; i < fs_property_tree_max_depth; ++i)
    t = &t->add_sub_tree_property("d").append_new_sub_tree();
  fs_property_tree_property& last = t->add_sub_tree_property("d");
  EXPECT_THROW(last.append_new_sub_tree(), std::runtime_error);
  EXPECT_EQ(last.size(), 0u);
  EXPECT_THROW(t->add_sub_tree_property("e").resize(1), std::runtime_error);
}

}  // namespace
