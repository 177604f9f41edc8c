// Files that change, vanish or cannot be read while a job walks them: each
// is reported with its path and reason and the walk goes on.
#include <fcntl.h>
#include <sys/fsuid.h>
#include <unistd.h>

#include <cwchar>
#include <functional>
#include <memory>

#include <gtest/gtest.h>

#include "capture.h"
#include "posix_layer.h"

namespace {

constexpr unsigned kSmallRoom = 1000;  // below the module's unit: reads are staged
constexpr int kFileSize = 300000;
char const* const kFiles[] = {"shrinking", "growing", "vanishing", "unreadable", "steady"};

std::wstring wide(char const* s) { return std::wstring(s, s + std::strlen(s)); }

class PosixWalkChanges : public ::testing::Test {
 protected:
  void SetUp() override {
    char templ[] = "/tmp/qbposix-wc-XXXXXX";
    ASSERT_NE(mkdtemp(templ), nullptr);
    root_ = templ;
    chmod(root_.c_str(), 0755);  // an unprivileged identity may look in
    dir_ = open(root_.c_str(), O_RDONLY | O_DIRECTORY);
    for (char const* n : kFiles) {
      int fd = openat(dir_, n, O_WRONLY | O_CREAT, 0644);
      ASSERT_EQ(write(fd, std::string(kFileSize, 'x').data(), kFileSize), kFileSize);
      close(fd);
    }
    session_ = std::make_unique<qbtest::PosixSession>(QB_TEST_MODULE_DIR, std::vector<std::string>{root_});
    ASSERT_NE(hand_ = session_->attach(root_), nullptr);
  }
  void TearDown() override {
    FS_DetachDLE(hand_);
    session_.reset();
    close(dir_);
    EXPECT_EQ(std::system(("rm -rf '" + root_ + "'").c_str()), 0);
  }
  std::string root_;
  int dir_ = -1;
  std::unique_ptr<qbtest::PosixSession> session_;
  FSYS_HAND_STRUCT* hand_ = nullptr;
  qbtest::MessageCapture messages_;
};

TEST_F(PosixWalkChanges, EachChangeIsReportedWithPathAndReasonAndTheWalkGoesOn) {
  // Privilege reads everything; an unprivileged file-system identity for
  // the open makes the permission bits count, as for any other agent.
  bool const privileged = geteuid() == 0;
  struct Change {
    char const* name;
    std::function<void(int dir)> before_open, mid_read;
    FS_STATUS end;          // how reading the object ends
    wchar_t const* report;  // what is reported after "/<name>: "
  } const changes[] = {
      {"shrinking", nullptr, [](int d) { int fd = openat(d, "shrinking", O_WRONLY | O_TRUNC); close(fd); },
       FS_STATUS_EXT_ERROR, L"shrank while being read: 1000 of 300000 bytes were read before its end; the copy is incomplete"},
      {"growing", nullptr, [](int d) { int fd = openat(d, "growing", O_WRONLY | O_APPEND); EXPECT_EQ(write(fd, "12345", 5), 5); close(fd); },
       FS_ERR_OBJ_NO_DATA, L"grew from 300000 to 300005 bytes while being read; the first 300000 bytes were kept"},
      {"vanishing", [](int d) { unlinkat(d, "vanishing", 0); }, nullptr, FS_STATUS_EXT_ERROR,
       L"vanished before it could be read (No such file or directory)"},
      {"unreadable", [&](int d) { fchmodat(d, "unreadable", 0, 0); if (privileged) setfsuid(65534); }, nullptr,
       FS_STATUS_EXT_ERROR, L"could not be opened (Permission denied)"},
  };
  _FUNC_LIST const& t = *hand_->funcTable;
  for (Change const& c : changes) {
    messages_.clear();
    DBLK blk{};
    std::wstring spec = wide(c.name);
    ASSERT_EQ(t.FindFirstObj(hand_, &blk, &spec[0], 0), FS_SUCCESS) << c.name;
    if (c.before_open) c.before_open(dir_);
    _FILE_HAND_STRUCT* obj = nullptr;
    FS_STATUS status = FS_OpenObj(hand_, &obj, &blk, FS_READ);
    for (bool changed = false; status == FS_SUCCESS;) {
      unsigned char buffer[kSmallRoom];
      unsigned size = kSmallRoom, need = 0;
      STREAM_INFO header{};
      status = FS_ReadObj(obj, buffer, &size, &need, &header);
      if (size > 0 && !changed && c.mid_read) c.mid_read(dir_), changed = true;
    }
    FS_CloseObj(obj, nullptr, nullptr);
    t.FindObjClose(hand_, &blk);
    t.ReleaseBlk(hand_, &blk);
    if (privileged) setfsuid(0);
    EXPECT_EQ(status, c.end) << c.name;
    std::wstring const expected = L"/" + wide(c.name) + L": " + c.report;
    EXPECT_TRUE(messages_.has(L"posix: " + expected)) << c.name;
    if (c.end == FS_STATUS_EXT_ERROR) {
      EXPECT_EQ(qbtest::last_message(hand_), expected) << c.name;
    }
  }
  qbtest::WalkTotals totals;
  auto ignore = [](STREAM_INFO const&, unsigned char*, unsigned) { return FS_SUCCESS; };
  qbtest::walk(hand_, [&](DBLK* blk) { qbtest::read_object(hand_, blk, nullptr, ignore, totals); });
  EXPECT_EQ(totals.objects, 4u);  // all but the vanished one are walked again
  EXPECT_TRUE(totals.failures.empty() || !privileged);
}

TEST_F(PosixWalkChanges, EntriesThatVanishAfterListingArePrintedAndPassedOver) {
  DBLK blk{};
  _FUNC_LIST const& t = *hand_->funcTable;
  ASSERT_EQ(t.FindFirstObj(hand_, &blk, nullptr, 0), FS_SUCCESS);
  std::wstring first(static_cast<std::size_t>(t.SizeofOSName(hand_, &blk, false)) / sizeof(wchar_t), L'\0');
  t.GetOSName(hand_, &blk, &first[0], false);
  std::size_t gone = 0, printed = 0;
  for (char const* n : kFiles)
    if (std::wcscmp(first.c_str(), wide(n).c_str()) != 0) gone += unlinkat(dir_, n, 0) == 0;
  EXPECT_EQ(t.FindNextObj(hand_, &blk), FS_STATUS_NONE);
  for (std::wstring const& line : messages_.lines())
    printed += line.find(L": vanished after it was listed; passed over (No such file or directory)") != std::wstring::npos;
  EXPECT_EQ(printed, gone);
  EXPECT_EQ(gone, 4u);
  t.FindObjClose(hand_, &blk);
  t.ReleaseBlk(hand_, &blk);
}

}  // namespace
