#include <qbhost/last_error.h>
#include <qbhost/zprintf.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <clocale>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

struct Captured {
  std::vector<std::pair<int, std::wstring>> lines;
};

void capture(void* context, int level, wchar_t const* line) {
  static_cast<Captured*>(context)->lines.emplace_back(level, line);
}

class Zprintf : public ::testing::Test {
 protected:
  void SetUp() override {
    saved_threshold_ = qbhost::zprintf_threshold();
    qbhost::zprintf_set_hook(capture, &captured_);
  }
  void TearDown() override {
    qbhost::zprintf_set_hook(nullptr, nullptr);
    qbhost::zprintf_set_threshold(saved_threshold_);
  }
  Captured captured_;
  int saved_threshold_ = 0;
};

TEST_F(Zprintf, HookReceivesFormattedLinesAtEveryLevel) {
  qbhost::zprintf_set_threshold(-1);
  EXPECT_EQ(42, QB_Zprintf(0, L"fstable: Bad Parameter at line number %d", 2103));
  QB_Zprintf(7, L"%ls and %s", L"wide \u00E9", "narrow \xC3\xA9");
  ASSERT_EQ(2u, captured_.lines.size());
  EXPECT_EQ(0, captured_.lines[0].first);
  EXPECT_EQ(L"fstable: Bad Parameter at line number 2103", captured_.lines[0].second);
  EXPECT_EQ(7, captured_.lines[1].first);
  EXPECT_EQ(L"wide \u00E9 and narrow \u00E9", captured_.lines[1].second);
}

TEST_F(Zprintf, LongLinesAreNotCut) {
  std::wstring const long_text(5000, L'x');
  QB_Zprintf(0, L"<%ls>", long_text.c_str());
  ASSERT_EQ(1u, captured_.lines.size());
  EXPECT_EQ(L"<" + long_text + L">", captured_.lines[0].second);
}

TEST_F(Zprintf, InvalidNarrowArgumentGivesAMarkedLine) {
  QB_Zprintf(0, L"name %s", "bad \xFF byte");
  ASSERT_EQ(1u, captured_.lines.size());
  EXPECT_NE(std::wstring::npos, captured_.lines[0].second.find(L"name %s"));
  EXPECT_EQ(-1, QB_Zprintf(0, nullptr));
}

TEST_F(Zprintf, ThresholdDecidesWhatReachesStandardErrorAsUtf8) {
  std::setlocale(LC_ALL, "C");  // the process locale must not matter
  qbhost::zprintf_set_threshold(1);
  ::testing::internal::CaptureStderr();
  QB_Zprintf(0, L"shown %ls\n", L"\u00C5ngstr\u00F6m \u65E5\u672C \U0001F600");
  QB_Zprintf(1, L"also shown");
  QB_Zprintf(2, L"hidden");
  std::string const err = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(
      "shown \xC3\x85ngstr\xC3\xB6m \xE6\x97\xA5\xE6\x9C\xAC \xF0\x9F\x98\x80\n"
      "also shown\n",
      err);
  EXPECT_EQ(3u, captured_.lines.size());  // the hook saw the hidden line too

  qbhost::zprintf_set_threshold(-1);
  ::testing::internal::CaptureStderr();
  QB_Zprintf(0, L"silenced");
  EXPECT_EQ("", ::testing::internal::GetCapturedStderr());
}

TEST_F(Zprintf, HookThatPrintsIsNotReentered) {
  qbhost::zprintf_set_threshold(-1);
  static int calls = 0;
  calls = 0;
  qbhost::zprintf_set_hook(
      [](void*, int, wchar_t const*) {
        ++calls;
        QB_Zprintf(0, L"from the hook");
      },
      nullptr);
  QB_Zprintf(0, L"outer");
  EXPECT_EQ(1, calls);
}

TEST(LastError, PerThreadWithErrnoFallback) {
  SetLastError(0);
  errno = ENOENT;
  EXPECT_EQ(static_cast<unsigned long>(ENOENT), GetLastError());
  SetLastError(0xE000FE49ul);
  errno = EACCES;
  EXPECT_EQ(0xE000FE49ul, GetLastError());
  unsigned long seen_by_other = 1;
  std::thread([&] {
    errno = 0;
    seen_by_other = GetLastError();
  }).join();
  EXPECT_EQ(0ul, seen_by_other);
  SetLastError(0);
  EXPECT_EQ(static_cast<unsigned long>(EACCES), GetLastError());
}

}  // namespace
