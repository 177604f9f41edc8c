// Paths, blocks and streams that a caller or damaged media may hand the
// posix module: each gets a clear status, nothing outside the attached
// root is touched, and the handle stays usable.
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "capture.h"
#include "posix_layer.h"
#include "posix_name_codec.h"
#include "posix_streams.h"

namespace {

// The layer's path form: terminated components; the root is one empty one.
std::wstring run(std::initializer_list<std::wstring> parts) {
  std::wstring r;
  for (auto const& p : parts) r += p + std::wstring(1, L'\0');
  return parts.size() == 0 ? std::wstring(1, L'\0') : r;
}
short bytes(std::wstring const& r) { return static_cast<short>(r.size() * sizeof(wchar_t)); }

class PosixBadInput : public ::testing::Test {
 protected:
  void SetUp() override {
    char templ[] = "/tmp/qbposix-bad-XXXXXX";
    ASSERT_NE(mkdtemp(templ), nullptr);
    root_ = templ;
    ASSERT_EQ(mkdir((root_ + "/\xff\xfe-dir").c_str(), 0755), 0);
    ASSERT_EQ(symlink("/etc", (root_ + "/to-etc").c_str()), 0);
    session_ = std::make_unique<qbtest::PosixSession>(QB_TEST_MODULE_DIR, std::vector<std::string>{root_});
    ASSERT_NE(hand_ = session_->attach(root_), nullptr);
  }
  void TearDown() override {
    FS_DetachDLE(hand_);
    session_.reset();
    EXPECT_EQ(std::system(("rm -rf '" + root_ + "'").c_str()), 0);
  }
  std::string root_;
  std::unique_ptr<qbtest::PosixSession> session_;
  FSYS_HAND_STRUCT* hand_ = nullptr;
  qbtest::MessageCapture messages_;
};

TEST_F(PosixBadInput, ChangeDirRefusesMalformedPathsAndNeverLeavesTheRoot) {
  _FUNC_LIST const& t = *hand_->funcTable;
  std::wstring const odd = qbposix::posix_decode_name(std::string("\xff\xfe-dir"));
  struct {
    char const* what;
    std::wstring path;
    short size;  // 0: the run's own size
    FS_STATUS status;
  } const cases[] = {
      {"no terminator", L"abc", 0, FS_ERR_BAD_PARAMETER}, {"odd size", run({L"a"}), 5, FS_ERR_BAD_PARAMETER},
      {"parent", run({L".."}), 0, FS_ERR_BAD_PARAMETER}, {"slash in a name", run({L"a/b"}), 0, FS_ERR_BAD_PARAMETER},
      {"empty component", run({odd, L""}), 0, FS_ERR_BAD_PARAMETER}, {"lone surrogate", run({L"\xD800"}), 0, FS_ERR_BAD_PARAMETER},
      {"symbolic link", run({L"to-etc"}), 0, FS_STATUS_EXT_ERROR}, {"missing", run({L"nope"}), 0, FS_STATUS_EXT_ERROR},
      {"root", run({}), 0, FS_SUCCESS}, {"name that is not UTF-8", run({odd}), 0, FS_SUCCESS},
  };
  for (auto const& c : cases) {
    std::wstring path = c.path;
    EXPECT_EQ(t.ChangeDir(hand_, &path[0], c.size ? c.size : bytes(path)), c.status) << c.what;
  }
  EXPECT_EQ(t.ChangeDir(hand_, nullptr, 4), FS_ERR_BAD_PARAMETER);
  EXPECT_TRUE(messages_.has_prefix(L"posix: /to-etc: directory could not be entered ("));
  wchar_t current[64];
  short size = 4;
  EXPECT_EQ(t.GetCurrentPath(hand_, current, &size), FS_ERR_OBJ_NO_DATA);
  EXPECT_EQ(size, bytes(run({odd})));
  EXPECT_EQ(t.GetCurrentPath(hand_, current, &size), FS_SUCCESS);
  EXPECT_EQ(std::wstring(current, static_cast<std::size_t>(size) / sizeof(wchar_t)), run({odd}));
  EXPECT_EQ(t.ChangeDirUp(hand_), FS_SUCCESS);
  EXPECT_EQ(t.ChangeDirUp(hand_), FS_ERR_NOT_SUPPORTED);
}

TEST_F(PosixBadInput, RestoreRefusesBlocksAndStreamsItCannotTrust) {
  _FUNC_LIST const& t = *hand_->funcTable;
  qbposix::POSIX_OS_INFO info{};
  info.version = qbposix::POSIX_OS_INFO_VERSION;
  info.mode = S_IFREG | 0644;
  DBLK blk{};
  auto describe = [&](void* os_info, std::uint16_t os_info_size) {
    _CREATE_DBLK req;
    FS_SetDefaultDBLK(hand_, DBLK_KIND_FDB, 0, &req);
    req.dblk = req.gen.dblk = &blk;
    req.gen.name = L"victim";
    req.gen.name_size = sizeof L"victim";
    req.gen.os_id = qbposix::POSIX_OS_ID;  // claims to be this module's
    req.gen.os_info = os_info;
    req.gen.os_info_size = os_info_size;
    ASSERT_EQ(FS_CreateGenDBLK(hand_, DBLK_KIND_FDB, &req), 0);
  };
  describe(nullptr, 0);
  EXPECT_EQ(t.CreateObj(hand_, &blk, nullptr, RESTORE_OVERWRITE), FS_STATUS_EXT_ERROR);
  EXPECT_EQ(qbtest::last_message(hand_), L"/victim: block carries no stat record to restore from (Invalid argument)");
  EXPECT_EQ(t.CreateObj(hand_, &blk, L"../escape", RESTORE_OVERWRITE), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(t.CreateObj(hand_, nullptr, nullptr, RESTORE_OVERWRITE), FS_ERR_BAD_PARAMETER);
  t.ReleaseBlk(hand_, &blk);

  describe(&info, sizeof info);
  ASSERT_EQ(t.CreateObj(hand_, &blk, nullptr, RESTORE_OVERWRITE), FS_SUCCESS);
  struct {
    std::uint32_t id;
    std::string bytes;
    wchar_t const* report;
  } const streams[] = {
      {qbposix::POSIX_STRM_XATTRS, std::string("\x05\0\0\0\x01\0\0\0ab", 10), L"extended-attribute stream is malformed"},
      {qbposix::POSIX_STRM_SPARSE_MAP, std::string(17, '\x01'), L"sparse map is malformed"},
      {qbposix::POSIX_STRM_HARDLINK, "../../etc/passwd", L"hard link target is malformed"},
      {qbposix::POSIX_STRM_HARDLINK, "to-etc/passwd", L"hard link target's directory could not be opened"},
  };
  for (auto const& s : streams) {
    _FILE_HAND_STRUCT* obj = nullptr;
    ASSERT_EQ(FS_OpenObj(hand_, &obj, &blk, FS_WRITE), FS_SUCCESS);
    STREAM_INFO header{};
    header.id = s.id;
    header.size = s.bytes.size();
    unsigned size = static_cast<unsigned>(s.bytes.size()), need = 0;
    std::string data = s.bytes;
    EXPECT_EQ(FS_WriteObj(obj, reinterpret_cast<unsigned char*>(&data[0]), &size, &need, &header), FS_STATUS_EXT_ERROR);
    EXPECT_EQ(qbtest::last_message(hand_).find(std::wstring(L"/victim: ") + s.report), 0u) << qbtest::last_message(hand_);
    EXPECT_EQ(FS_CloseObj(obj, nullptr, nullptr), FS_STATUS_EXT_ERROR);
  }
  struct stat st {};
  ASSERT_EQ(lstat((root_ + "/victim").c_str(), &st), 0);
  EXPECT_TRUE(S_ISREG(st.st_mode) && st.st_nlink == 1u);  // never a link to anything outside
  t.ReleaseBlk(hand_, &blk);
}

// A block whose kind and stat record disagree is neither made nor opened:
// a host keeps or deletes an object by its block's kind.
TEST_F(PosixBadInput, RestoreRefusesABlockWhoseKindAndStatRecordDisagree) {
  _FUNC_LIST const& t = *hand_->funcTable;
  struct {
    char kind;
    std::uint32_t mode;
  } const cases[] = {{DBLK_KIND_DDB, S_IFREG | 0644}, {DBLK_KIND_DDB, S_IFLNK | 0777}, {DBLK_KIND_FDB, S_IFDIR | 0755}};
  for (auto const& c : cases) {
    SCOPED_TRACE("kind " + std::to_string(c.kind) + ", mode " + std::to_string(c.mode));
    qbposix::POSIX_OS_INFO info{};
    info.version = qbposix::POSIX_OS_INFO_VERSION;
    info.mode = c.mode;
    DBLK blk{};
    _CREATE_DBLK req;
    FS_SetDefaultDBLK(hand_, c.kind, 0, &req);
    req.dblk = req.gen.dblk = &blk;
    req.gen.name = L"mixed";
    req.gen.name_size = sizeof L"mixed";
    req.gen.os_info = &info;
    req.gen.os_info_size = sizeof info;
    ASSERT_EQ(FS_CreateGenDBLK(hand_, c.kind, &req), 0);
    EXPECT_EQ(t.CreateObj(hand_, &blk, nullptr, RESTORE_OVERWRITE), FS_STATUS_EXT_ERROR);
    std::wstring const said = qbtest::last_message(hand_);
    EXPECT_EQ(said.find(L"/mixed: its block says one kind of object and its stat record another"), 0u) << said;
    struct stat st {};
    EXPECT_NE(lstat((root_ + "/mixed").c_str(), &st), 0) << "made";
    _FILE_HAND_STRUCT* obj = nullptr;
    EXPECT_EQ(FS_OpenObj(hand_, &obj, &blk, FS_WRITE), FS_STATUS_EXT_ERROR);
    EXPECT_EQ(obj, nullptr);
    t.ReleaseBlk(hand_, &blk);
  }
}

}  // namespace

namespace {

// /proc is always a file system of its own below "/".
TEST(PosixMountPoints, AWalkStaysOnTheAttachedFileSystem) {
  qbtest::MessageCapture messages;
  qbtest::PosixSession session(QB_TEST_MODULE_DIR, {"/"});
  FSYS_HAND_STRUCT* hand = session.attach("/");
  ASSERT_NE(hand, nullptr);
  std::wstring path = run({L"proc"});
  EXPECT_EQ(hand->funcTable->ChangeDir(hand, &path[0], bytes(path)), FS_STATUS_NONE);
  DBLK blk{};
  ASSERT_EQ(hand->funcTable->FindFirstObj(hand, &blk, const_cast<wchar_t*>(L"proc"), 0), FS_SUCCESS);
  EXPECT_EQ(hand->funcTable->ChangeIntoDDB(hand, &blk), FS_STATUS_NONE);
  EXPECT_EQ(messages.count(L"posix: /proc: another file system is mounted here; it is an element of its own and is not walked"), 2u);
  hand->funcTable->ReleaseBlk(hand, &blk);
  FS_DetachDLE(hand);
}

}  // namespace

namespace {

// Another module's objects restore from the generic fields of their blocks:
// a regular file or a directory with ordinary permissions, the restoring
// user as owner, and the block's modification date.
TEST_F(PosixBadInput, AnotherModulesBlockRestoresFromItsGenericFields) {
  constexpr std::uint8_t kOtherOsId = 99;
  unsigned char other_info[] = {'m', 'e', 'm', 'f', 's'};
  _DATE_TIME const mdate = {1, 2024, 2, 29, 13, 14, 15, 0, 0, 1234567};
  struct Case {
    char kind;
    wchar_t const* name;
    std::uint32_t type;
    std::uint32_t permissions;
  } const cases[] = {{DBLK_KIND_FDB, L"note.txt", S_IFREG, 0644}, {DBLK_KIND_DDB, L"folder", S_IFDIR, 0755}};
  for (auto const& c : cases) {
    SCOPED_TRACE(std::string(1, '0' + c.kind));
    DBLK blk{};
    _CREATE_DBLK req;
    FS_SetDefaultDBLK(hand_, c.kind, 0, &req);
    req.dblk = req.gen.dblk = &blk;
    req.gen.name = c.name;
    req.gen.name_size = static_cast<std::uint16_t>((std::wcslen(c.name) + 1) * sizeof(wchar_t));
    req.gen.os_id = kOtherOsId;
    req.gen.os_info = other_info;
    req.gen.os_info_size = sizeof other_info;
    req.gen.mdate = &mdate;
    hand_->dle->date_conversion_off = 1;  // the date is taken as the media gives it (UTC)
    ASSERT_EQ(FS_CreateGenDBLK(hand_, c.kind, &req), 0);
    ASSERT_EQ(FS_HandCreateObj(hand_, &blk, nullptr, RESTORE_OVERWRITE), FS_SUCCESS) << qbtest::last_message(hand_);
    _FILE_HAND_STRUCT* obj = nullptr;
    ASSERT_EQ(FS_OpenObj(hand_, &obj, &blk, FS_WRITE), FS_SUCCESS) << qbtest::last_message(hand_);
    if (c.kind == DBLK_KIND_FDB) {
      STREAM_INFO header{};
      header.id = qbposix::POSIX_STRM_DATA;
      std::string data = "held in memory";
      header.size = data.size();
      unsigned size = static_cast<unsigned>(data.size()), need = 0;
      ASSERT_EQ(FS_WriteObj(obj, reinterpret_cast<unsigned char*>(&data[0]), &size, &need, &header), FS_SUCCESS);
    }
    ASSERT_EQ(FS_CloseObj(obj, nullptr, nullptr), FS_SUCCESS) << qbtest::last_message(hand_);
    FS_HandReleaseBlk(hand_, &blk);
  }
  FS_DetachDLE(hand_);  // directories get their metadata at detach
  hand_ = session_->attach(root_);
  for (auto const& c : cases) {
    std::wstring const wide = c.name;
    struct stat st {};
    ASSERT_EQ(lstat((root_ + "/" + std::string(wide.begin(), wide.end())).c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & S_IFMT, c.type);
    EXPECT_EQ(st.st_mode & 07777, c.permissions);
    EXPECT_EQ(st.st_uid, geteuid());
    EXPECT_EQ(st.st_mtim.tv_sec, 1709212455);  // 2024-02-29 13:14:15 UTC
    EXPECT_EQ(st.st_mtim.tv_nsec, 123456700);
    if (c.kind == DBLK_KIND_FDB) {
      EXPECT_EQ(st.st_size, 14);
    }
  }
}

}  // namespace
