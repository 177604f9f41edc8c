// Files that change, vanish or cannot be read while a job walks them: each
// is reported with its path and reason (the handle's last error or a
// printed line) and the walk goes on.
#include <fcntl.h>
#include <stdlib.h>
#include <sys/fsuid.h>
#include <unistd.h>

#include <cwchar>
#include <functional>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "capture.h"
#include "posix_layer.h"

namespace {

constexpr unsigned kSmallRoom = 1000;  // below the module's unit, so reads are staged
constexpr uid_t kNobody = 65534;

struct Change {
  char const* name;
  std::function<void(int dir)> before_open;  // between listing and opening
  std::function<void(int dir)> mid_read;     // after the first data arrived
  FS_STATUS end;                             // how reading the object ends
  wchar_t const* report;                     // what is reported, after "/<name>: "
};

void append(int dir, char const* name, std::size_t n) {
  int fd = openat(dir, name, O_WRONLY | O_APPEND);
  ASSERT_EQ(write(fd, std::string(n, 'g').data(), n), static_cast<ssize_t>(n));
  close(fd);
}

void shrink(int dir, char const* name) {
  int fd = openat(dir, name, O_WRONLY);
  ASSERT_EQ(ftruncate(fd, 0), 0);
  close(fd);
}

class PosixWalkChanges : public ::testing::Test {
 protected:
  void SetUp() override {
    char templ[] = "/tmp/qbposix-wc-XXXXXX";
    ASSERT_NE(mkdtemp(templ), nullptr);
    root_ = templ;
    chmod(root_.c_str(), 0755);  // an unprivileged identity may look in
    dir_ = open(root_.c_str(), O_RDONLY | O_DIRECTORY);
    for (char const* n : {"shrinking", "growing", "vanishing", "unreadable", "steady"}) {
      int fd = openat(dir_, n, O_WRONLY | O_CREAT, 0644);
      ASSERT_EQ(write(fd, std::string(300000, 'x').data(), 300000), 300000);
      close(fd);
    }
    session_ = std::make_unique<qbtest::PosixSession>(QB_TEST_MODULE_DIR, std::vector<std::string>{root_});
    ASSERT_TRUE(session_->ok());
    hand_ = session_->attach(root_);
    ASSERT_NE(hand_, nullptr);
  }
  void TearDown() override {
    if (hand_ != nullptr) FS_DetachDLE(hand_);
    session_.reset();
    close(dir_);
    std::string const command = "rm -rf '" + root_ + "'";
    EXPECT_EQ(std::system(command.c_str()), 0);
  }
  // Opens and reads the object named `c.name`; returns how it ended.
  FS_STATUS read_with(Change const& c) {
    DBLK blk{};
    std::wstring spec(c.name, c.name + std::strlen(c.name));
    EXPECT_EQ(hand_->funcTable->FindFirstObj(hand_, &blk, &spec[0], 0), FS_SUCCESS) << c.name;
    if (c.before_open) c.before_open(dir_);
    _FILE_HAND_STRUCT* obj = nullptr;
    FS_STATUS status = FS_OpenObj(hand_, &obj, &blk, FS_READ);
    bool changed = false;
    unsigned char buffer[kSmallRoom];
    while (status == FS_SUCCESS) {
      unsigned size = kSmallRoom, need = 0;
      STREAM_INFO header{};
      status = FS_ReadObj(obj, buffer, &size, &need, &header);
      if (size > 0 && !changed && c.mid_read) c.mid_read(dir_), changed = true;
    }
    if (obj != nullptr) FS_CloseObj(obj, nullptr, nullptr);
    hand_->funcTable->FindObjClose(hand_, &blk);
    hand_->funcTable->ReleaseBlk(hand_, &blk);
    return status;
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
  Change const changes[] = {
      {"shrinking", nullptr, [](int d) { shrink(d, "shrinking"); },
       FS_STATUS_EXT_ERROR, L"shrank while being read: 65536 of 300000 bytes were read before its end; the copy is incomplete"},
      {"growing", nullptr, [](int d) { append(d, "growing", 5000); }, FS_ERR_OBJ_NO_DATA,
       L"grew from 300000 to 305000 bytes while being read; the first 300000 bytes were kept"},
      {"vanishing", [](int d) { ASSERT_EQ(unlinkat(d, "vanishing", 0), 0); }, nullptr, FS_STATUS_EXT_ERROR,
       L"vanished before it could be read (No such file or directory)"},
      {"unreadable",
       [privileged](int d) {
         ASSERT_EQ(fchmodat(d, "unreadable", 0, 0), 0);
         if (privileged) setfsuid(kNobody);
       },
       nullptr, FS_STATUS_EXT_ERROR, L"could not be opened (Permission denied)"},
  };
  for (Change const& c : changes) {
    messages_.clear();
    EXPECT_EQ(read_with(c), c.end) << c.name;
    if (privileged) setfsuid(0);
    std::wstring const expected = L"/" + std::wstring(c.name, c.name + std::strlen(c.name)) + L": " + c.report;
    EXPECT_TRUE(messages_.has(L"posix: " + expected)) << c.name;
    if (c.end == FS_STATUS_EXT_ERROR) {
      EXPECT_EQ(qbtest::last_message(hand_), expected) << c.name;
    }
  }
  qbtest::WalkTotals totals;
  qbtest::walk(hand_, [&](DBLK* blk) { qbtest::read_object(hand_, blk, nullptr, [](STREAM_INFO const&, unsigned char*, unsigned) { return FS_SUCCESS; }, totals); });
  EXPECT_EQ(totals.objects, 4u);  // shrinking, growing, unreadable and steady: all still walked
  EXPECT_TRUE(totals.failures.empty());  // privileged again, everything reads
}

TEST_F(PosixWalkChanges, EntriesThatVanishAfterListingArePrintedAndPassedOver) {
  DBLK blk{};
  _FUNC_LIST const& t = *hand_->funcTable;
  ASSERT_EQ(t.FindFirstObj(hand_, &blk, nullptr, 0), FS_SUCCESS);
  std::wstring first(static_cast<std::size_t>(t.SizeofOSName(hand_, &blk, false)) / sizeof(wchar_t), L'\0');
  t.GetOSName(hand_, &blk, &first[0], false);
  first.resize(std::wcslen(first.c_str()));
  int gone = 0;
  for (char const* n : {"shrinking", "growing", "vanishing", "unreadable", "steady"}) {
    if (first == std::wstring(n, n + std::strlen(n))) continue;
    ASSERT_EQ(unlinkat(dir_, n, 0), 0);
    ++gone;
  }
  EXPECT_EQ(t.FindNextObj(hand_, &blk), FS_STATUS_NONE);
  std::size_t printed = 0;
  for (std::wstring const& line : messages_.lines())
    printed += line.find(L": vanished after it was listed; passed over (No such file or directory)") != std::wstring::npos;
  EXPECT_EQ(printed, static_cast<std::size_t>(gone));
  t.FindObjClose(hand_, &blk);
  t.ReleaseBlk(hand_, &blk);
}

}  // namespace
