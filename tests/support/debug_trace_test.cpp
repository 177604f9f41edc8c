// Debug tracing through the real utility library's print factory, loaded by
// the keep-alive singleton.
#include <qbclass/debug_print_keep_alive.h>
#include <qbclass/debug_trace.h>

#include <gtest/gtest.h>

#include <exception>
#include <ostream>
#include <string>
#include <vector>

namespace {

struct captured_line {
  std::string path;
  int line;
  std::string text;
};

void capture(void* context, char const* path, int line, char const* text) {
  static_cast<std::vector<captured_line>*>(context)->push_back(
      {path ? path : "", line, text ? text : ""});
}

constexpr char const* kPath = "engine/fsys/shared/initfsys";

struct debug_trace_fixture : ::testing::Test {
  void SetUp() override {
    keep_alive = qbclass::debug_print_keep_alive::instance();
    ASSERT_TRUE(keep_alive);
    factory = keep_alive->factory();
    ASSERT_TRUE(factory) << "libqb_util.so did not hand out a factory";
    factory->set_hook(&capture, &lines);
    factory->enable("", true);
  }
  void TearDown() override {
    if (factory) factory->set_hook(nullptr, nullptr);
  }
  qbclass::shared_ptr<qbclass::debug_print_keep_alive> keep_alive;
  qbclass::shared_ptr<debug_print_factory> factory;
  std::vector<captured_line> lines;
};

TEST_F(debug_trace_fixture, EnabledTraceIsFormattedAndPrinted) {
  EXPECT_TRUE(qbclass::debug_trace_enabled(kPath));
  qbclass::debug_trace(kPath, 442, "warning: %1% has %2% entries", std::string("mod"), 3);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].path, kPath);
  EXPECT_EQ(lines[0].line, 442);
  EXPECT_EQ(lines[0].text, "warning: mod has 3 entries");
}

TEST_F(debug_trace_fixture, OneCachedInterfacePerSourcePath) {
  auto a = keep_alive->print_interface(kPath);
  auto b = keep_alive->print_interface(kPath);
  auto other = keep_alive->print_interface("property_tree/trace");
  ASSERT_TRUE(a);
  EXPECT_EQ(a, b);
  EXPECT_NE(a, other);
  EXPECT_STREQ(a->source_path(), kPath);
}

// Counts how often it is formatted.
struct probe {
  int* formatted;
};
std::ostream& operator<<(std::ostream& os, probe const& p) {
  ++*p.formatted;
  return os << "probe";
}

TEST_F(debug_trace_fixture, DisabledInterfacePrintsAndFormatsNothing) {
  factory->enable("engine/", false);
  int formatted = 0;
  EXPECT_FALSE(qbclass::debug_trace_enabled(kPath));
  qbclass::debug_trace(kPath, 454, "load %1%", probe{&formatted});
  qbclass::debug_trace_text(kPath, 454, "direct text");
  EXPECT_TRUE(lines.empty());
  EXPECT_EQ(formatted, 0);
  // Other paths are untouched by the prefix.
  qbclass::debug_trace("property_tree/trace", 1, "%1%", probe{&formatted});
  EXPECT_EQ(lines.size(), 1u);
  EXPECT_EQ(formatted, 1);
}

TEST_F(debug_trace_fixture, NullArgumentsAreHarmless) {
  EXPECT_FALSE(qbclass::debug_trace_enabled(nullptr));
  qbclass::debug_trace(nullptr, 1, "%1%", 1);
  qbclass::debug_trace_text(nullptr, 1, "x");
  EXPECT_TRUE(lines.empty());
  qbclass::debug_trace(kPath, 2, nullptr);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].text.rfind("\nTRACE FORMAT ERROR:\n", 0), 0u);
}

// A formatter failure still yields a trace, with the formatter's message.
struct format_case {
  char const* name;
  char const* format;
  int args;
};
std::ostream& operator<<(std::ostream& os, format_case const& c) { return os << c.name; }
class trace_format_error : public debug_trace_fixture,
                           public ::testing::WithParamInterface<format_case> {};

TEST_P(trace_format_error, TextCarriesTheFormatterMessage) {
  format_case const& c = GetParam();
  if (c.args == 1)
    qbclass::debug_trace(kPath, 500, c.format, 1);
  else
    qbclass::debug_trace(kPath, 500, c.format, 1, 2, 3);
  ASSERT_EQ(lines.size(), 1u);
  std::string const prefix = "\nTRACE FORMAT ERROR:\n";
  std::string const& text = lines[0].text;
  ASSERT_EQ(text.rfind(prefix, 0), 0u) << text;
  std::string const message = text.substr(prefix.size());
  EXPECT_FALSE(message.empty());
  EXPECT_NE(message, "Undefined error.");
}

INSTANTIATE_TEST_SUITE_P(
    formats, trace_format_error,
    ::testing::Values(format_case{"too_few_args", "%1% and %2%", 1},
                      format_case{"too_many_args", "only %1%", 3},
                      format_case{"bad_directive", "broken %1", 1},
                      format_case{"bad_position", "%0%", 1}),
    [](::testing::TestParamInfo<format_case> const& info) { return std::string(info.param.name); });

// Arguments whose formatting throws something that carries no message.
struct throws_int {};
std::ostream& operator<<(std::ostream& os, throws_int const&) {
  throw 42;
  return os;
}
struct silent_error : std::exception {
  char const* what() const noexcept override { return ""; }
};
struct throws_silent {};
std::ostream& operator<<(std::ostream& os, throws_silent const&) {
  throw silent_error();
  return os;
}

TEST_F(debug_trace_fixture, ErrorWithoutMessageIsUndefinedError) {
  qbclass::debug_trace(kPath, 488, "%1%", throws_int{});
  qbclass::debug_trace(kPath, 488, "%1%", throws_silent{});
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0].text, "\nTRACE FORMAT ERROR:\nUndefined error.");
  EXPECT_EQ(lines[1].text, "\nTRACE FORMAT ERROR:\nUndefined error.");
}

}  // namespace
