// Paths: the step grammar with its quirks, the walk, and debug_pt.
#include <gtest/gtest.h>
#include <debug_pt.h>
#include "evaluate_query.h"
#include "pt_test_util.h"

namespace {

using steps_t = std::vector<std::pair<cstring, unsigned long>>;

struct query_case {
  char const* path;
  steps_t steps;
  char const* message;  // empty: parsed
};
std::ostream& operator<<(std::ostream& os, query_case const& c) { return os << '"' << c.path << '"'; }

class EvaluateQuery : public ::testing::TestWithParam<query_case> {};

TEST_P(EvaluateQuery, CutsThePathIntoSteps) {
  steps_t steps;
  query_case const& c = GetParam();
  if (*c.message == '\0') {
    ASSERT_NO_THROW(property_tree_details::evaluate_query(c.path, steps));
    EXPECT_EQ(steps, c.steps);
  } else {
    EXPECT_TRUE(throws_with<invalid_property_name>(
        [&] { property_tree_details::evaluate_query(c.path, steps); }, c.message));
  }
}

char const* const letters = "property name can only have alphabetic letters, numbers, and underscores";

INSTANTIATE_TEST_SUITE_P(
    Grammar, EvaluateQuery,
    ::testing::Values(
        query_case{"a/b[2]/c", {{"a", 0}, {"b", 2}, {"c", 0}}, ""},
        query_case{"/a", {{"a", 0}}, ""},
        query_case{"../x", {{"..", 0}, {"x", 0}}, ""},
        query_case{"./x", {{".", 0}, {"x", 0}}, ""},
        query_case{" a / b [ 3 ] / c ", {{"a", 0}, {"b", 3}, {"c", 0}}, ""},
        query_case{"a[1 ]b", {{"a", 1}, {"b", 0}}, ""},
        query_case{"[4]", {{"", 4}}, ""},
        query_case{"a[1 ", {{"a", 1}}, ""},
        query_case{"", {}, ""},
        query_case{"//a//", {{"a", 0}}, ""},
        query_case{"_x9[10]", {{"_x9", 10}}, ""},
        query_case{"1a", {}, "property name can not have a number as its first character"},
        query_case{"a-b", {}, letters},
        query_case{"a[]", {}, "empty position"},
        query_case{"a[ ]", {}, "empty position"},
        query_case{"a[x]", {}, "invalid character found while parsing position"},
        query_case{"a[1 x]", {}, "invalid character found while parsing position"},
        query_case{"a[3", {}, "close bracket not found in parse string"},
        query_case{".x", {}, "property name can only have alphabetic letters, numbers, and underscores or '.' for self or '..' for parent"},
        query_case{"a[1]b", {}, letters},
        query_case{"a b", {}, letters},
        query_case{"-a", {}, letters},
        query_case{"a[99999999999999999999999]", {}, "position out of range"}));

class Walk : public ::testing::Test {
 protected:
  // root/a[0]/b[0], root/a[1]/c[0..2]; root/n is a long.
  void SetUp() override {
    root_ = fs_property_tree_create("root");
    fs_property_tree_property& a = root_->add_sub_tree_property("a");
    a.append_new_sub_tree().add_sub_tree_property("b").append_new_sub_tree().add_lng_property("leaf", 1L);
    fs_property_tree_property& c = a.append_new_sub_tree().add_sub_tree_property("c");
    for (int i = 0; i < 3; ++i) c.append_new_sub_tree().add_int32_property("i", i);
    root_->add_lng_property("n", 5L);
  }
  fs_property_tree_ptr root_;
};

TEST_F(Walk, StepsSelectTreeValuesByPosition) {
  EXPECT_EQ(root_->query_sub_tree("a/b").get_property("leaf").at(0).get_lng_val(), 1);
  EXPECT_EQ(root_->query_sub_tree("a[1]/c[2]").get_property("i").at(0).get_int32_val(), 2);
  EXPECT_EQ(&root_->query_sub_tree("."), root_.get());
  EXPECT_EQ(&root_->query_sub_tree(""), root_.get());
}

TEST_F(Walk, LeadingSlashStartsAtTheRootAndDotDotGoesUp) {
  fs_property_tree& b = root_->query_sub_tree("a/b");
  EXPECT_EQ(&b.query_sub_tree("/a[1]/c[1]"), &root_->query_sub_tree("a[1]/c[1]"));
  EXPECT_EQ(&b.query_sub_tree(".."), &root_->query_sub_tree("a"));
  EXPECT_EQ(&b.query_sub_tree("../.."), root_.get());
  EXPECT_EQ(&b.query_sub_tree("../../a[1]/c"), &root_->query_sub_tree("a[1]/c[0]"));
}

TEST_F(Walk, MissingStepsLeadToTheNullTreeNonTreesAreRefused) {
  EXPECT_TRUE(root_->query_sub_tree("missing").is_null_tree());
  EXPECT_TRUE(root_->query_sub_tree("a[2]").is_null_tree());
  EXPECT_TRUE(root_->query_sub_tree("missing/deeper/still").is_null_tree());
  EXPECT_TRUE(root_->query_sub_tree("..").is_null_tree());
  EXPECT_TRUE(throws_with<std::exception>([&] { root_->query_sub_tree("n"); },
                                          "Type conversion error: can not convert a long to a tree type"));
  EXPECT_TRUE(throws_with<invalid_property_name>([&] { root_->query_sub_tree("a[x]"); },
                                                 "invalid character found while parsing position"));
  EXPECT_THROW(root_->query_sub_tree(nullptr), std::exception);
}

TEST(DebugPt, BuildsAndChangesTheContextTree) {
  fs_property_tree_ptr root = fs_property_tree_create("root");
  debug_pt& d = debug_pt::i();
  d.p(root.get()).ast("rec").av("rec").mv("rec").al("n").av("n").as("s").av("s").ad("d").axml("x");
  d.al("n");  // exists already: nothing happens
  fs_property_tree& rec = root->query_sub_tree("rec");
  EXPECT_EQ(rec.size(), 4u);
  EXPECT_EQ(rec.get_property("n").size(), 1u);

  d.begin_log().cv("n", 0, L"42").cv("n", 3, L"1").cv("zz", 0, L"1");
  EXPECT_EQ(rec.get_property("n").at(0).get_lng_val(), 42);
  EXPECT_EQ(d.dv("n", 0), L"42");
  EXPECT_EQ(d.dv("n", 1), L"value offset not found!");
  EXPECT_EQ(d.dv("nope", 0), L"property not found!");
  std::wstring log = d.end_log();
  EXPECT_EQ(log,
            L"cv - called: name=n position=0 text=42\n"
            L"cv - Setting value: 42\n"
            L"cv - exit\n"
            L"cv - called: name=n position=3 text=1\n"
            L"cv - Value offset not found: 3\n"
            L"cv - exit\n"
            L"cv - called: name=zz position=0 text=1\n"
            L"cv - Property not found: zz\n"
            L"cv - exit\n");

  d.rv("n", 0).rp("s");
  EXPECT_EQ(rec.get_property("n").size(), 0u);
  EXPECT_FALSE(rec.has_property("s"));
  EXPECT_EQ(d.dp(), rec.serialize_txt());

  d.mv("/");
  d.begin_log().cv("rec", 0, L"x");
  EXPECT_EQ(d.end_log(),
            L"cv - called: name=rec position=0 text=x\ncv - Subtree not suported.\ncv - exit\n");
  d.p(nullptr);
}

TEST(DebugPt, ErrorsClearTheContextAndNothingEscapes) {
  fs_property_tree_ptr root = fs_property_tree_create("root");
  root->add_lng_property("n", 1L);
  debug_pt& d = debug_pt::i();
  d.p(root.get()).begin_log().cv("n", 0, L"not a number");
  std::wstring log = d.end_log();
  EXPECT_NE(log.find(L"cv - Unexpected error! bad lexical cast"), std::wstring::npos) << std::string(log.begin(), log.end());
  EXPECT_NE(log.find(L"cv - exit"), std::wstring::npos);
  EXPECT_EQ(d.dp(), L"context not set!");
  EXPECT_EQ(d.dv("n", 0), L"context not set!");
  d.begin_log().cv("n", 0, L"1");
  EXPECT_EQ(d.end_log(), L"cv - called: name=n position=0 text=1\ncv - Invalid state.\ncv - exit\n");

  d.p(root.get()).mv("a[");  // a bad path clears the context
  EXPECT_EQ(d.dp(), L"context not set!");
  d.p(root.get()).mv("missing");  // so does a path to no tree
  EXPECT_EQ(d.dp(), L"context not set!");
  d.p(root.get()).as(nullptr).mv(nullptr).cv(nullptr, 0, nullptr);
  EXPECT_EQ(d.dv(nullptr, 0), L"property not found!");
  EXPECT_EQ(root->size(), 1u);
  EXPECT_EQ(root->at(0).at(0).get_lng_val(), 1);
  d.p(nullptr);
}

TEST(DebugPt, DvShowsEveryKindInItsTextForm) {
  fs_property_tree_ptr root = fs_property_tree_create("root");
  unsigned char bytes[] = {1, 2, 3};
  root->add_bin_property("b", 3, bytes);
  root->add_guid_property("g", _SSGUID{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}});
  root->add_sub_tree_property("t").append_new_sub_tree().add_bool_property("f", false);
  debug_pt& d = debug_pt::i();
  d.p(root.get());
  EXPECT_EQ(d.dv("b", 0), L"AQID");
  EXPECT_EQ(d.dv("g", 0), L"{00000001-0002-0003-0405-060708090A0B}");
  EXPECT_EQ(d.dv("t", 0), L"<t>\n\t<f type=\"bool\" count=\"1\">0</f>\n</t>\n\n");
  d.p(nullptr);
}

}  // namespace
