// Conversions between kinds: every refusal family with its exact wording,
// range checks, lexical conversions, and the choices for bool, GUID, binary.
#include <gtest/gtest.h>
#include "pt_test_util.h"

namespace {

// A tree holding one value of each kind, so that cases can pick one.
class Values {
 public:
  Values() : tree_(fs_property_tree_create("v")) {
    _SSGUID g{0x01234567, 0x89AB, 0xCDEF, {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}};
    unsigned char bytes[] = {9, 8, 7};
    tree_->add_str_property("str", L"42");
    tree_->add_lng_property("lng", -5L);
    tree_->add_dbl_property("dbl", 0.1);
    tree_->add_ulng_property("ulng", 7UL);
    tree_->add_int32_property("int32", 300);
    tree_->add_uint32_property("uint32", 4000000000U);
    tree_->add_int64_property("int64", 1LL << 40);
    tree_->add_uint64_property("uint64", ~0ULL);
    tree_->add_ldbl_property("ldbl", 0.1L);
    tree_->add_flt_property("flt", 0.1f);
    tree_->add_bool_property("bool", true);
    tree_->add_guid_property("guid", g);
    tree_->add_bin_property("bin", 3, bytes);
    tree_->add_xml_property("xml", L"<a/>");
    tree_->add_sub_tree_property("tree").append_new_sub_tree();
  }
  fs_property_tree_value& operator()(char const* kind) { return tree_->get_property(kind).at(0); }

 private:
  fs_property_tree_ptr tree_;
};

// The texts compared here are ASCII.
std::string narrow(std::wstring const& w) { return std::string(w.begin(), w.end()); }
template <class T>
std::string text(T v) {
  return std::to_string(v);
}

struct conversion_case {
  char const* label;
  std::function<std::string(Values&)> run;
  std::string expected;  // the result, or the message of the failure
};

std::ostream& operator<<(std::ostream& os, conversion_case const& c) { return os << c.label; }

class Conversions : public ::testing::TestWithParam<conversion_case> {};

TEST_P(Conversions, GiveTheResultOrTheMessage) {
  Values values;
  std::string outcome;
  try {
    outcome = GetParam().run(values);
  } catch (std::exception const& e) {
    outcome = e.what();
  }
  EXPECT_EQ(outcome, GetParam().expected);
}

std::string const tce = "Type conversion error: can not convert ";
_SSGUID const some_guid{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
unsigned char const two_bytes[] = {1, 2};

#define GET(kind, from) \
  [](Values& v) { return text(v(from).get_##kind##_val()); }
#define SET(kind, on, arg) \
  [](Values& v) { v(on).set_##kind##_val(arg); return std::string("set"); }

conversion_case const from_tree[] = {
    {"tree->str", [](Values& v) { return narrow(v("tree").get_str_val()); }, tce + "a tree to a string type"},
    {"tree->bool", GET(bool, "tree"), tce + "a tree to a bool type"},
    {"tree->guid", [](Values& v) { v("tree").get_guid_val(); return std::string(); }, tce + "a tree to a guid type"},
    {"tree->lng", GET(lng, "tree"), tce + "a tree to a long type"},
    {"tree->ulng", GET(ulng, "tree"), tce + "a tree to a unsigned long type"},
    {"tree->dbl", GET(dbl, "tree"), tce + "a tree to a double type"},
    {"tree->ldbl", GET(ldbl, "tree"), tce + "a tree to a long double type"},
    {"tree->int32", GET(int32, "tree"), tce + "a tree to a 32-bit int type"},
    {"tree->int64", GET(int64, "tree"), tce + "a tree to a 64-bit int type"},
    {"tree->uint32", GET(uint32, "tree"), tce + "a tree to an unsigned 32-bit int type"},
    {"tree->uint64", GET(uint64, "tree"), tce + "a tree to an unsigned 64-bit int type"},
};
INSTANTIATE_TEST_SUITE_P(FromTree, Conversions, ::testing::ValuesIn(from_tree));

conversion_case const to_tree[] = {
    {"str->tree", SET(str, "tree", L"x"), tce + "a string to a tree type"},
    {"bool->tree", SET(bool, "tree", true), tce + "a boolean to a tree type"},
    {"guid->tree", SET(guid, "tree", some_guid), tce + "a uuid to a tree type"},
    {"bin->tree", [](Values& v) { v("tree").set_bin_val(2, two_bytes); return std::string(); }, tce + "a binary to a tree type"},
    {"flt->tree", SET(flt, "tree", 1.0f), tce + "a float to a tree type"},
    {"dbl->tree", SET(dbl, "tree", 1.0), tce + "a double to a tree type"},
    {"ldbl->tree", SET(ldbl, "tree", 1.0L), tce + "a long double to a tree type"},
    {"lng->tree", SET(lng, "tree", 1L), tce + "a long to a tree type"},
    {"ulng->tree", SET(ulng, "tree", 1UL), tce + "a unsigned long to a tree type"},
    {"int32->tree", SET(int32, "tree", 1), tce + "a 32-bit int to a tree type"},
    {"int64->tree", SET(int64, "tree", 1LL), tce + "a 64-bit int to a tree type"},
    {"uint32->tree", SET(uint32, "tree", 1U), tce + "an unsigned 32-bit int to a tree type"},
    {"uint64->tree", SET(uint64, "tree", 1ULL), tce + "an unsigned 64-bit int to a tree type"},
    {"lng value->tree", [](Values& v) { v("lng").sub_tree(); return std::string(); }, tce + "a long to a tree type"},
    {"append lng to tree property",
     [](Values& v) { v("tree").parent_property().append_new_lng_value(1L); return std::string(); },
     tce + "a long to a tree type"},
};
INSTANTIATE_TEST_SUITE_P(ToTree, Conversions, ::testing::ValuesIn(to_tree));

conversion_case const to_xml[] = {
    {"guid->xml", SET(guid, "xml", some_guid), tce + "uuid to xml doc"},
    {"uint64->xml", SET(uint64, "xml", 1ULL), tce + "64-bit unsigned int to xml doc"},
    {"int64->xml", SET(int64, "xml", 1LL), tce + "64-bit int to xml doc"},
    {"uint32->xml", SET(uint32, "xml", 1U), tce + "32-bit unsigned int to xml doc"},
    {"int32->xml", SET(int32, "xml", 1), tce + "32-bit int to xml doc"},
    {"ulng->xml", SET(ulng, "xml", 1UL), tce + "unsigned long to xml doc"},
    {"dbl->xml", SET(dbl, "xml", 1.0), tce + "double to xml doc"},
    {"lng->xml", SET(lng, "xml", 1L), tce + "long to xml doc"},
    {"bin->xml", [](Values& v) { v("xml").set_bin_val(2, two_bytes); return std::string(); }, tce + "binary to xml doc"},
    {"flt->xml", SET(flt, "xml", 1.0f), tce + "float to xml doc"},
    {"ldbl->xml", SET(ldbl, "xml", 1.0L), tce + "long double to xml doc"},
    {"bool->xml", SET(bool, "xml", true), tce + "boolean to xml doc"},
    {"str->xml", [](Values& v) { v("xml").set_str_val(L"<b/>"); return narrow(v("xml").get_str_val()); }, "<b/>"},
};
INSTANTIATE_TEST_SUITE_P(ToXml, Conversions, ::testing::ValuesIn(to_xml));

conversion_case const to_guid[] = {
    {"ldbl->guid", SET(ldbl, "guid", 1.0L), tce + "long double to guid"},
    {"bool->guid", SET(bool, "guid", true), tce + "bool to guid"},
    {"uint64->guid", SET(uint64, "guid", 1ULL), tce + "uint64 to guid"},
    {"int64->guid", SET(int64, "guid", 1LL), tce + "int64 to guid"},
    {"uint32->guid", SET(uint32, "guid", 1U), tce + "uint32 to guid"},
    {"int32->guid", SET(int32, "guid", 1), tce + "int32 to guid"},
    {"ulng->guid", SET(ulng, "guid", 1UL), tce + "unsigned long to guid"},
    {"bin->guid", [](Values& v) { v("guid").set_bin_val(2, two_bytes); return std::string(); }, tce + "binary to guid"},
    {"flt->guid", SET(flt, "guid", 1.0f), tce + "float to guid"},
    {"dbl->guid", SET(dbl, "guid", 1.0), tce + "double to guid"},
    {"lng->guid", SET(lng, "guid", 1L), tce + "long to guid"},
    {"str->guid", [](Values& v) {
       v("guid").set_str_val(L"{00000001-0002-0003-0405-060708090a0b}");
       return std::string(*v("guid").get_guid_val() == some_guid ? "same" : "differs"); }, "same"},
    {"str without braces->guid", [](Values& v) {
       v("guid").set_str_val(L"00000001-0002-0003-0405-060708090A0B");
       return std::string(*v("guid").get_guid_val() == some_guid ? "same" : "differs"); }, "same"},
    {"bad str->guid", SET(str, "guid", L"{0000001-0002-0003-0405-060708090A0B}"),
     "bad lexical cast: source type value could not be interpreted as target"},
};
INSTANTIATE_TEST_SUITE_P(ToGuid, Conversions, ::testing::ValuesIn(to_guid));

conversion_case const to_string_and_bool[] = {
    {"bin->str", [](Values& v) { return narrow(v("bin").get_str_val()); }, tce + "binary to string"},
    {"guid->str", [](Values& v) { return narrow(v("guid").get_str_val()); }, tce + "uuid to string"},
    {"set bin on str", [](Values& v) { v("str").set_bin_val(2, two_bytes); return std::string(); }, tce + "binary to string"},
    {"bin->bool", GET(bool, "bin"), tce + "binary to bool"},
    {"guid->bool", GET(bool, "guid"), tce + "uuid to bool"},
    {"dbl->str", [](Values& v) { return narrow(v("dbl").get_str_val()); }, "0.10000000000000001"},
    {"flt->str", [](Values& v) { return narrow(v("flt").get_str_val()); }, "0.100000001"},
    {"ldbl->str", [](Values& v) { return narrow(v("ldbl").get_str_val()); }, "0.100000000000000000001"},
    {"lng->str", [](Values& v) { return narrow(v("lng").get_str_val()); }, "-5"},
    {"uint64->str", [](Values& v) { return narrow(v("uint64").get_str_val()); }, "18446744073709551615"},
    {"bool->str", [](Values& v) { return narrow(v("bool").get_str_val()); }, "1"},
    {"xml->str", [](Values& v) { return narrow(v("xml").get_str_val()); }, "<a/>"},
    {"str +1->bool", [](Values& v) { v("str").set_str_val(L"+1"); return text(v("str").get_bool_val()); }, "1"},
    {"str 0001->bool", [](Values& v) { v("str").set_str_val(L"0001"); return text(v("str").get_bool_val()); }, "1"},
    {"str -0->bool", [](Values& v) { v("str").set_str_val(L"-0"); return text(v("str").get_bool_val()); }, "0"},
    {"str true->bool", [](Values& v) { v("str").set_str_val(L"true"); return text(v("str").get_bool_val()); },
     "bad lexical cast: source type value could not be interpreted as target"},
    {"int32 300->bool", GET(bool, "int32"), "bad numeric conversion: positive overflow"},
    {"lng -5->bool", GET(bool, "lng"), "bad numeric conversion: negative overflow"},
    {"dbl 0.1->bool", GET(bool, "dbl"), "0"},
    {"bool->int32", GET(int32, "bool"), "1"},
};
INSTANTIATE_TEST_SUITE_P(ToStringAndBool, Conversions, ::testing::ValuesIn(to_string_and_bool));

conversion_case const numbers[] = {
    {"int32 300->lng", GET(lng, "int32"), "300"},
    {"int64 2^40->int32", GET(int32, "int64"), "bad numeric conversion: positive overflow"},
    {"lng -5->uint32", GET(uint32, "lng"), "bad numeric conversion: negative overflow"},
    {"lng -5->ulng", GET(ulng, "lng"), "bad numeric conversion: negative overflow"},
    {"uint64 max->int64", GET(int64, "uint64"), "bad numeric conversion: positive overflow"},
    {"uint64 max->ldbl exact", [](Values& v) { return text(v("uint64").get_ldbl_val() == 18446744073709551615.0L); }, "1"},
    {"uint32->int32", GET(int32, "uint32"), "bad numeric conversion: positive overflow"},
    {"dbl 1e300->flt", [](Values& v) { v("dbl").set_dbl_val(1e300); return text(v("dbl").get_flt_val()); },
     "bad numeric conversion: positive overflow"},
    {"dbl -1e300->flt", [](Values& v) { v("dbl").set_dbl_val(-1e300); return text(v("dbl").get_flt_val()); },
     "bad numeric conversion: negative overflow"},
    {"ldbl 1e4000->dbl", [](Values& v) { v("ldbl").set_str_val(L"1e4000"); return text(v("ldbl").get_dbl_val()); },
     "bad numeric conversion: positive overflow"},
    {"dbl 3.9->int32", [](Values& v) { v("dbl").set_dbl_val(3.9); return text(v("dbl").get_int32_val()); }, "3"},
    {"dbl nan->lng", [](Values& v) { v("dbl").set_str_val(L"nan"); return text(v("dbl").get_lng_val()); },
     "bad numeric conversion: overflow"},
    {"flt inf->dbl", [](Values& v) { v("flt").set_str_val(L"INFINITY"); return text(v("flt").get_dbl_val()); }, "inf"},
    {"str infinity->dbl", [](Values& v) { v("str").set_str_val(L"infinity"); return text(v("str").get_dbl_val()); }, "inf"},
    {"str 42->uint64", GET(uint64, "str"), "42"},
    {"str -1->uint32", [](Values& v) { v("str").set_str_val(L"-1"); return text(v("str").get_uint32_val()); },
     "bad lexical cast: source type value could not be interpreted as target"},
    {"str x->lng", [](Values& v) { v("str").set_str_val(L"x"); return text(v("str").get_lng_val()); },
     "bad lexical cast: source type value could not be interpreted as target"},
    {"str 99999999999->int32", [](Values& v) { v("str").set_str_val(L"99999999999"); return text(v("str").get_int32_val()); },
     "bad lexical cast: source type value could not be interpreted as target"},
    {"str with non-ASCII->lng", [](Values& v) { v("str").set_str_val(L"4\x00e9"); return text(v("str").get_lng_val()); },
     "bad lexical cast: source type value could not be interpreted as target"},
    {"set str on lng", [](Values& v) { v("lng").set_str_val(L"123"); return text(v("lng").get_lng_val()); }, "123"},
    {"append dbl to int32", [](Values& v) {
       return text(v("int32").parent_property().append_new_dbl_value(2.5).get_int32_val()); }, "2"},
    {"append str to uint32 keeps kind", [](Values& v) {
       return text(static_cast<int>(v("uint32").parent_property().append_new_str_value(L"5").type())); },
     text(static_cast<int>(fs_property_type::uint32))},
    {"guid->lng refused", GET(lng, "guid"), tce + "uuid to long"},
    {"bin->dbl refused", GET(dbl, "bin"), tce + "binary to double"},
};
INSTANTIATE_TEST_SUITE_P(Numbers, Conversions, ::testing::ValuesIn(numbers));

conversion_case const binary[] = {
    {"guid->bin is its 16 bytes", [](Values& v) {
       std::vector<unsigned char> b = v("guid").get_bin_val();
       _SSGUID g{};
       if (b.size() == sizeof g) std::memcpy(&g, b.data(), sizeof g);
       return text(b.size()) + (g == *v("guid").get_guid_val() ? " same" : " differs"); }, "16 same"},
    {"set guid on bin", [](Values& v) { v("bin").set_guid_val(some_guid); return text(v("bin").get_bin_val().size()); }, "16"},
    {"lng->bin refused", SET(lng, "bin", 1L), tce + "long to binary"},
    {"str->bin refused", SET(str, "bin", L"AQI="), tce + "string to binary"},
    {"null bytes refused", [](Values& v) { v("bin").set_bin_val(4, nullptr); return std::string(); }, "null binary data"},
};
INSTANTIATE_TEST_SUITE_P(Binary, Conversions, ::testing::ValuesIn(binary));

TEST(Conversions, RefusalsReachTheCallerAsStdExceptionNotAnotherCategory) {
  Values v;
  try {
    v("tree").get_lng_val();
    FAIL() << "nothing thrown";
  } catch (invalid_property_name const&) {
    FAIL() << "wrong category";
  } catch (std::runtime_error const&) {
    FAIL() << "wrong category";
  } catch (std::exception const& e) {
    EXPECT_STREQ(e.what(), "Type conversion error: can not convert a tree to a long type");
  }
  EXPECT_EQ(v("tree").sub_tree().size(), 0u) << "a refused set leaves the value as it was";
}

}  // namespace
