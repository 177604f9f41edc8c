// The XML form: the documented examples, reading rules, bad input.
#include <gtest/gtest.h>
#include "pt_test_util.h"

namespace {

using pt_test::nested;

TEST(XmlForm, LongPropertyWithTwoValuesWritesTwoElementsAttributesOnTheFirst) {
  fs_property_tree_ptr tree = fs_property_tree_create("root");
  fs_property_tree_property& a = tree->add_lng_property("a", 1L);
  a.append_new_lng_value(2L);
  tree->add_ulng_property("u", 3UL);
  tree->add_str_property("empty");
  EXPECT_EQ(tree->serialize_utf8txt(),
            "<root>\n"
            "\t<a type=\"int\" count=\"2\">1</a>\n"
            "\t<a>2</a>\n"
            "\t<u type=\"uint\" count=\"1\">3</u>\n"
            "\t<empty type=\"string\" count=\"0\"/>\n"
            "</root>\n\n");
}

TEST(XmlForm, KindsWriteTheirTagsAndTextForms) {
  fs_property_tree_ptr tree = fs_property_tree_create("r");
  unsigned char bytes[] = {0, 1, 2, 250};
  _SSGUID g{0x01234567, 0x89AB, 0xCDEF, {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}};
  tree->add_bool_property("b", true).append_new_bool_value(false);
  tree->add_guid_property("g", g);
  tree->add_bin_property("bin", 4, bytes);
  tree->add_xml_property("x", L"<p q=\"1\">t</p>");
  tree->add_sub_tree_property("t").append_new_sub_tree().add_int32_property("n", -3);
  tree->add_str_property("s", L"a<b & \x00e9");
  EXPECT_EQ(tree->serialize_utf8txt(),
            "<r>\n"
            "\t<b type=\"bool\" count=\"2\">1</b>\n"
            "\t<b>0</b>\n"
            "\t<g type=\"guid\" count=\"1\">{01234567-89AB-CDEF-0123-456789ABCDEF}</g>\n"
            "\t<bin type=\"bin\" count=\"1\">AAEC+g==</bin>\n"
            "\t<x type=\"xml\" count=\"1\">\n"
            "\t\t<p q=\"1\">t</p>\n"
            "\t</x>\n"
            "\t<t type=\"rec\" count=\"1\">\n"
            "\t\t<n type=\"int32\" count=\"1\">-3</n>\n"
            "\t</t>\n"
            "\t<s type=\"string\" count=\"1\">a&lt;b &amp; \xc3\xa9</s>\n"
            "</r>\n\n");
}

struct settle_case {
  char const* xml;
  fs_property_type kind;
  std::size_t values;
  wchar_t const* text;  // of the first value, when given
};

class TypeSettling : public ::testing::TestWithParam<settle_case> {};

TEST_P(TypeSettling, FollowsTypeAttributeAndChildren) {
  fs_property_tree_ptr tree = fs_property_tree_load_utf8(GetParam().xml);
  ASSERT_EQ(tree->size(), 1u);
  EXPECT_EQ(tree->at(0).type(), GetParam().kind);
  ASSERT_EQ(tree->at(0).size(), GetParam().values);
  if (GetParam().text != nullptr) {
    EXPECT_EQ(std::wstring(tree->at(0).at(0).get_str_val()), GetParam().text);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Elements, TypeSettling,
    ::testing::Values(settle_case{"<r><a>text</a></r>", fs_property_type::str, 1, L"text"},
                      settle_case{"<r><a/></r>", fs_property_type::str, 1, L""},
                      settle_case{"<r><a><b>1</b></a></r>", fs_property_type::tree, 1, nullptr},
                      settle_case{"<r><a type=\"int\"><b>1</b></a></r>", fs_property_type::xml, 1, L"<b>1</b>"},
                      settle_case{"<r><a type=\"rec\"><b>1</b></a></r>", fs_property_type::tree, 1, nullptr},
                      settle_case{"<r><a type=\"xml\">x</a></r>", fs_property_type::xml, 1, L"x"},
                      settle_case{"<r><a type=\"int\">5</a></r>", fs_property_type::lng, 1, L"5"},
                      settle_case{"<r><a type=\"uint\">5</a></r>", fs_property_type::ulng, 1, L"5"},
                      settle_case{"<r><a type=\"ldbl\">5</a></r>", fs_property_type::ldbl, 1, L"5"},
                      settle_case{"<r><a type=\"rec\"/></r>", fs_property_type::tree, 1, nullptr},
                      settle_case{"<r><a type=\"dbl\" count=\"0\">1.5</a></r>", fs_property_type::dbl, 0, nullptr}));

TEST(XmlForm, ElementsWithChildrenAndNoTypeLoadAsNestedTrees) {
  fs_property_tree_ptr tree =
      fs_property_tree_load_utf8("<root><a><b type=\"int\">4</b><c>hi</c></a></root>");
  EXPECT_STREQ(tree->name(), "root");
  fs_property_tree& a = tree->query_sub_tree("a");
  EXPECT_EQ(a.get_property("b").at(0).get_lng_val(), 4);
  EXPECT_EQ(std::wstring(a.get_property("c").at(0).get_str_val()), L"hi");
}

TEST(XmlForm, CountConsumesSameNamedSiblingsEvenWithOthersBetween) {
  fs_property_tree_ptr tree = fs_property_tree_load_utf8(
      "<r><a type=\"int\" count=\"3\">1</a><b>x</b><a>2</a><a>3</a><c>y</c></r>");
  ASSERT_EQ(tree->size(), 3u);
  EXPECT_STREQ(tree->at(1).name(), "b");
  EXPECT_EQ(tree->get_property("a").size(), 3u);
  EXPECT_EQ(tree->get_property("a").at(2).get_lng_val(), 3);
}

// Thousands of names, half of them alike in their first twenty bytes, each
// property's second value far from its first and in the reverse order: every
// value reaches its own property and every name is found afterwards.
TEST(XmlForm, ManyPropertiesWithScatteredValuesAreEachFound) {
  constexpr int kProperties = 5000;
  auto name_of = [](int i) {
    return (i % 2 == 0 ? "a_long_shared_prefix_" : "p") + std::to_string(i);
  };
  std::string text = "<r>";
  for (int i = 0; i < kProperties; ++i)
    text += "<" + name_of(i) + " type=\"int\" count=\"2\">" + std::to_string(i) + "</" +
            name_of(i) + ">";
  for (int i = kProperties - 1; i >= 0; --i)
    text += "<" + name_of(i) + ">" + std::to_string(-i) + "</" + name_of(i) + ">";
  text += "</r>";
  fs_property_tree_ptr tree = fs_property_tree_load_utf8(text.c_str());
  ASSERT_EQ(tree->size(), static_cast<std::size_t>(kProperties));
  for (int i = 0; i < kProperties; ++i) {
    std::string const name = name_of(i);
    ASSERT_EQ(tree->at(static_cast<std::size_t>(i)).name(), name);
    fs_property_tree_property& p = tree->get_property(name.c_str());
    ASSERT_EQ(p.size(), 2u) << name;
    EXPECT_EQ(p.at(0).get_lng_val(), i);
    EXPECT_EQ(p.at(1).get_lng_val(), -i);
  }
  EXPECT_FALSE(tree->has_property("a_long_shared_prefix_"));
  EXPECT_FALSE(tree->has_property("p5000"));
}

TEST(XmlForm, WideEntryPointsMatchTheUtf8Ones) {
  fs_property_tree_ptr tree = fs_property_tree_load(L"<r><s>\x00e9\x4e2d\x1f600</s></r>");
  EXPECT_EQ(std::wstring(tree->at(0).at(0).get_str_val()), L"\x00e9\x4e2d\x1f600");
  EXPECT_EQ(tree->serialize_txt(), L"<r>\n\t<s type=\"string\" count=\"1\">\x00e9\x4e2d\x1f600</s>\n</r>\n\n");
  tree->load_txt(L"<other><n type=\"flt\">1.5</n></other>");
  EXPECT_STREQ(tree->name(), "r") << "loading replaces the contents, not the name";
  EXPECT_EQ(tree->at(0).at(0).get_flt_val(), 1.5f);
}

struct bad_case {
  char const* label;
  std::string xml;
  std::string message;
  bool also_into_tree = true;  // loading into a tree ignores the root element's name
};
std::ostream& operator<<(std::ostream& os, bad_case const& c) { return os << c.label; }

class BadInput : public ::testing::TestWithParam<bad_case> {};

TEST_P(BadInput, GivesTheExceptionObjectAndNoTree) {
  fs_property_tree* out = nullptr;
  property_tree_details::exception_interface* e =
      utf8load_root_tree(GetParam().xml.c_str(), &out);
  ASSERT_NE(e, nullptr) << "loaded although bad";
  std::string message = e->what();
  e->destroy();
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(message, GetParam().message);

  // Loading into an existing tree fails the same way and keeps its contents.
  if (!GetParam().also_into_tree) return;
  fs_property_tree_ptr tree = fs_property_tree_create("keep");
  tree->add_lng_property("k", 1L);
  EXPECT_TRUE(throws_with<std::exception>([&] { tree->load_utf8txt(GetParam().xml.c_str()); },
                                          std::string()));
  ASSERT_EQ(tree->size(), 1u);
  EXPECT_EQ(tree->at(0).at(0).get_lng_val(), 1);
}

bad_case const parser_messages[] = {
    {"no <", "r", "expected <"},
    {"no >", "<r a=\"1\" / ", "expected >"},
    {"no =", "<r a \"1\"/>", "expected ="},
    {"no ;", "<r>&#65</r>", "expected ;"},
    {"no quote", "<r a=1/>", "expected ' or \""},
    {"no element name", "<r><></r>", "expected element name"},
    // The parser checks for "expected attribute name" only after it has read a
    // name character, so that message cannot occur; a missing name ends the tag.
    {"no attribute name", "<r =\"1\"/>", "expected >"},
    {"end of data", "<r><a>1</a>", "unexpected end of data"},
    {"bad entity", "<r>&#x110000;</r>", "invalid numeric character entity"},
};
INSTANTIATE_TEST_SUITE_P(Parser, BadInput, ::testing::ValuesIn(parser_messages));

bad_case const truncated[] = {
    {"cut in attribute name", "<r><a type=\"int\" cou", "expected ="},
    {"cut in attribute value", "<r><a type=\"in", "expected ' or \""},
    {"cut in text", "<r><a type=\"int\">12", "unexpected end of data"},
    {"cut in closing tag", "<r><a>1</a></", "invalid closing tag name"},
    {"empty", "", "the XML text has no root element"},
    {"blank", "  \n ", "the XML text has no root element"},
};
INSTANTIATE_TEST_SUITE_P(Truncated, BadInput, ::testing::ValuesIn(truncated));

char const* const lexical = "bad lexical cast: source type value could not be interpreted as target";

bad_case const content[] = {
    {"deep nesting", "<r>" + nested(5000) + "</r>",
     "XML elements nested deeper than 512 levels are not supported"},
    {"deep nesting behind brackets in attribute values",
     "<r>" + nested(5000, "<a x=\"/>\" y='>'>") + "</r>",
     "XML elements nested deeper than 512 levels are not supported"},
    {"deep trees within the element limit", "<r>" + nested(300) + "</r>",
     "property trees nested deeper than 256 levels are not supported"},
    {"huge count", "<r><a type=\"int\" count=\"18446744073709551615\">1</a><a>2</a></r>",
     "property 'a' has count 18446744073709551615 but only 2 elements"},
    {"count too big for the type", "<r><a count=\"99999999999999999999999\">1</a></r>", lexical},
    {"negative count", "<r><a count=\"-1\">1</a></r>", lexical},
    {"fewer siblings", "<r><a type=\"int\" count=\"3\">1</a><a>2</a></r>",
     "property 'a' has count 3 but only 2 elements"},
    {"invalid UTF-8", "<r><s>\xc3\x28</s></r>", "invalid UTF-8 sequence at byte offset 6"},
    {"overlong UTF-8", "<r><s>\xc0\xaf</s></r>", "invalid UTF-8 sequence at byte offset 6"},
    {"surrogate in UTF-8", "<r><s>\xed\xa0\x80</s></r>", "invalid UTF-8 sequence at byte offset 6"},
    {"truncated UTF-8", "<r>\xe4\xb8", "truncated UTF-8 sequence at byte offset 3"},
    {"invalid base64", "<r><b type=\"bin\">AQI*</b></r>", "binary value of property 'b' is not valid base64 text"},
    {"bad base64 length", "<r><b type=\"bin\">AQI</b></r>", "binary value of property 'b' is not valid base64 text"},
    {"name with dot", "<r><a.b>1</a.b></r>",
     "property name can only have alphabetic letters, numbers, underscores, and dashes"},
    {"name with colon", "<r><a><_1>x</_1><x:y>1</x:y></a></r>",
     "property name can only have alphabetic letters, numbers, underscores, and dashes"},
    {"root name", "<1r/>", "property name can not have a number as its first character", false},
    {"dash first", "<r><-a>1</-a></r>", "property name can not have a dash ('-') as its first character"},
    {"duplicate without count", "<r><a>1</a><a>2</a></r>",
     "duplicate name used in add string property call"},
    {"duplicate of other kind", "<r><a>1</a><a type=\"uint64\">2</a></r>",
     "duplicate name used in add 64-bit unsigned int property call"},
    {"unknown type", "<r><a type=\"integer\">1</a></r>",
     "Type conversion error: unknown property type 'integer'"},
    {"bad number", "<r><a type=\"int32\">12x</a></r>", lexical},
    {"out of range number", "<r><a type=\"int32\">4294967296</a></r>", lexical},
    {"negative unsigned", "<r><a type=\"uint\">-1</a></r>", lexical},
    {"bad bool", "<r><a type=\"bool\">true</a></r>", lexical},
    {"bad guid", "<r><a type=\"guid\">{0123}</a></r>", lexical},
};
INSTANTIATE_TEST_SUITE_P(Content, BadInput, ::testing::ValuesIn(content));

// An element of `count` attributes a0, a1, ... with the last one named as
// `last` instead.
std::string many_attributes(int count, std::string const& last) {
  std::string s = "<p";
  for (int i = 0; i + 1 < count; ++i)
    s += " a" + std::to_string(i) + "=\"" + std::to_string(i) + "\"";
  return s + " " + last + "=\"x\"/>";
}

// What the parser alone would take although it is not well-formed XML.
char const* const bad_reference = "invalid numeric character entity";
char const* const repeated_attribute = "duplicate attribute name";
bad_case const not_well_formed[] = {
    {"reference to a surrogate", "<r><a>&#xD800;</a></r>", bad_reference},
    {"reference to NUL", "<r><a>x&#0;y</a></r>", bad_reference},
    {"reference to a control character", "<r a='&#1;'/>", bad_reference},
    {"reference without digits", "<r>&#;</r>", bad_reference},
    {"reference wrapping round to 'A'", "<r>&#x10000000000000041;</r>", bad_reference},
    {"raw control character", "<r><a>\x01</a></r>", "character not allowed in XML at byte offset 6"},
    {"raw U+FFFF", "<r><a>\xef\xbf\xbf</a></r>", "character not allowed in XML at byte offset 6"},
    {"mismatched closing tag", "<r><a>1</b></r>", "invalid closing tag name"},
    {"'&' starting nothing", "<r><a>fish & chips</a></r>",
     "'&' at byte offset 11 starts no character or entity reference"},
    {"second root element", "<r/><s/>", "the XML text has a second root element 's'"},
    {"repeated attribute in an xml value", "<r><x type=\"xml\"><p q=\"1\" q=\"2\"/></x></r>",
     repeated_attribute},
    {"repeated attribute deep in an xml value",
     "<r><x type=\"xml\">t<p><q a='1' b='2' a='1'>u</q></p></x></r>", repeated_attribute},
    {"repeated attribute among many in an xml value",
     "<r><x type=\"xml\">" + many_attributes(40, "a17") + "</x></r>", repeated_attribute},
    {"repeated attribute on a property element", "<r><a type=\"int\" type=\"bool\">1</a></r>",
     repeated_attribute},
    {"repeated attribute on the root element", "<r v='1' v='1'/>", repeated_attribute},
};
INSTANTIATE_TEST_SUITE_P(WellFormedness, BadInput, ::testing::ValuesIn(not_well_formed));

// Only open elements count towards the nesting limit: empty elements,
// brackets inside quoted attribute values and in text, comments and
// processing instructions do not.
TEST(XmlDepth, OnlyOpenElementsCount) {
  std::string text = "<?xml version=\"1.0\"?><r>";
  for (int i = 0; i < 1000; ++i) {
    std::string n = "e" + std::to_string(i);
    text += "<" + n + " note=\"<a>\" other='<b x=\"1\">'/><!-- <c> -->";
  }
  text += "<t>a &lt; b > c \" '</t>" + nested(200) + "</r>";
  fs_property_tree_ptr tree = fs_property_tree_load_utf8(text.c_str());
  EXPECT_EQ(1002u, tree->size());
  EXPECT_STREQ(L"a < b > c \" '", tree->get_property("t").at(0).get_str_val());
}

TEST(XmlForm, InvalidWideTextIsRefused) {
  fs_property_tree* out = nullptr;
  wchar_t const text[] = {L'<', L'r', L'>', 0xD800, L'<', L'/', L'r', L'>', 0};
  property_tree_details::exception_interface* e = load_root_tree(text, &out);
  ASSERT_NE(e, nullptr);
  EXPECT_STREQ(e->what(), "invalid character at offset 3 of the wide XML text");
  e->destroy();
  EXPECT_EQ(out, nullptr);
  e = load_root_tree(nullptr, &out);
  ASSERT_NE(e, nullptr);
  e->destroy();
  e = utf8load_root_tree("<r/>", nullptr);
  ASSERT_NE(e, nullptr) << "a null output pointer is refused";
  e->destroy();
}

TEST(XmlForm, XmlValueThatIsNotWellFormedIsRefusedOnWriting) {
  fs_property_tree_ptr tree = fs_property_tree_create("r");
  tree->add_xml_property("x", L"<open>");
  EXPECT_TRUE(throws_with<std::runtime_error>(
      [&] { tree->serialize_utf8txt(); },
      "xml value of property 'x' is not a well-formed XML fragment: invalid closing tag name"));
}

TEST(XmlForm, XmlValueRepeatingAnAttributeIsRefusedOnWriting) {
  fs_property_tree_ptr tree = fs_property_tree_create("r");
  tree->add_xml_property("x", L"<p q='1' q='2'/>");
  EXPECT_TRUE(throws_with<std::runtime_error>(
      [&] { tree->serialize_utf8txt(); },
      "xml value of property 'x' is not a well-formed XML fragment: duplicate attribute name"));
}

// Attribute names that differ, however many and however alike, load, and
// the value keeps every one of them.
TEST(XmlForm, DistinctAttributesInAnXmlValueLoad) {
  std::string const fragment =
      many_attributes(40, "a39") + "<p a=\"1\" A=\"2\" ab=\"3\" b=\"4\"/><p a=\"1\"/><p a=\"1\"/>";
  fs_property_tree_ptr tree =
      fs_property_tree_load_utf8(("<r><x type=\"xml\">" + fragment + "</x></r>").c_str());
  EXPECT_EQ(std::wstring(tree->get_property("x").at(0).get_str_val()),
            std::wstring(fragment.begin(), fragment.end()));
}

TEST(XmlForm, CommentsCdataAndDeclarationsAreTolerated) {
  fs_property_tree_ptr tree = fs_property_tree_load_utf8(
      "<?xml version=\"1.0\"?><!-- c --><r><!-- <a> --><a><![CDATA[x<y]]></a></r>");
  ASSERT_EQ(tree->size(), 1u);
  EXPECT_EQ(std::wstring(tree->at(0).at(0).get_str_val()), L"x<y");
}

class RoundTrip : public ::testing::TestWithParam<unsigned> {};

TEST_P(RoundTrip, SerializeLoadGivesAnEqualTreeAndTheSameText) {
  pt_test::tree_generator generator(GetParam());
  fs_property_tree_ptr tree = fs_property_tree_create("random");
  generator.fill(*tree, 0);
  std::string text = tree->serialize_utf8txt();
  fs_property_tree_ptr back = fs_property_tree_load_utf8(text.c_str());
  EXPECT_EQ(pt_test::tree_difference(*tree, *back), "");
  EXPECT_EQ(back->serialize_utf8txt(), text);

  std::wstring wide = tree->serialize_txt();
  fs_property_tree_ptr wide_back = fs_property_tree_load(wide.c_str());
  EXPECT_EQ(pt_test::tree_difference(*tree, *wide_back), "");
  EXPECT_EQ(wide_back->serialize_txt(), wide);

  fs_property_tree_ptr clone = fs_property_tree_adopt(tree->clone());
  EXPECT_EQ(pt_test::tree_difference(*tree, *clone), "");
}

INSTANTIATE_TEST_SUITE_P(Seeds, RoundTrip, ::testing::Range(1u, 25u));

}  // namespace
