// The example module (memfs) driven in one process through the layer's
// public functions, with handles side by side: what a restore does to an
// entry before its object is closed, listings and restores while another
// handle deletes, and dates across a save and a reload of the image.
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <qbfsys/qbfsys.h>

#include "tool_run.h"

namespace {

constexpr unsigned kMemfsIndex = 40;
constexpr std::uint32_t kOtherStream = 0x4B4E494C;  // a stream memfs refuses

std::wstring widen(std::string const& s) { return std::wstring(s.begin(), s.end()); }

// The module loaded with its tree in `image` ("": the sample tree, kept in
// memory only), and handles attached to its element.
class MemfsSession {
 public:
  explicit MemfsSession(std::string const& image) {
    if (image.empty()) unsetenv("QBMEMFS_IMAGE");
    else setenv("QBMEMFS_IMAGE", image.c_str(), 1);
    std::wstring const module = widen(QBFS_MEMFS_PATH);
    wchar_t const* modules[] = {module.c_str(), nullptr};
    cfg_.machine_name = L"session-host";
    ok_ = FS_InitFileSys(&cfg_, ~0ull, modules, 1) == FS_SUCCESS && FS_InitDleList(&head_, &cfg_) == FS_SUCCESS &&
          DLE_FindByName(head_, L"memfs:", static_cast<short>(kMemfsIndex), &dle_, nullptr) == FS_SUCCESS;
  }
  ~MemfsSession() {
    for (FSYS_HAND_STRUCT* hand : hands_) detach(hand);
    FS_DeinitDleList(head_);
    FS_RemoveFileSys();
  }
  MemfsSession(MemfsSession const&) = delete;
  MemfsSession& operator=(MemfsSession const&) = delete;
  bool ok() const { return ok_; }

  FSYS_HAND_STRUCT* attach() {
    FSYS_HAND_STRUCT* hand = nullptr;
    if (!ok_ || FS_AttachToDLE(&hand, dle_, &cfg_, nullptr, nullptr, 0, 0, nullptr, nullptr, 0, nullptr, false) !=
                    FS_SUCCESS)
      return nullptr;
    hands_.push_back(hand);
    return hand;
  }
  // Detaches as a job does: a module's error leaves the handle attached for
  // its message, and a second detach lets go.
  FS_STATUS detach(FSYS_HAND_STRUCT*& hand) {
    if (hand == nullptr) return FS_SUCCESS;
    FS_STATUS const status = FS_DetachDLE(hand);
    if (status == FS_STATUS_EXT_ERROR) FS_DetachDLE(hand);
    for (FSYS_HAND_STRUCT*& h : hands_)
      if (h == hand) h = nullptr;
    hand = nullptr;
    return status;
  }

 private:
  QB_CFG cfg_{};
  HEAD_DLE* head_ = nullptr;
  GENERIC_DLE* dle_ = nullptr;
  std::vector<FSYS_HAND_STRUCT*> hands_;
  bool ok_ = false;
};

// The layer's path form: each component ended by a NUL.
FS_STATUS change_dir(FSYS_HAND_STRUCT* hand, std::vector<std::wstring> const& parts) {
  std::wstring path;
  for (std::wstring const& p : parts) path += p + std::wstring(1, L'\0');
  if (path.empty()) path.push_back(L'\0');
  return FS_HandChangeDir(hand, &path[0], static_cast<short>(path.size() * sizeof(wchar_t)));
}

// A block of the current directory's entry `name`; FS_STATUS_NONE when none.
FS_STATUS find(FSYS_HAND_STRUCT* hand, std::wstring name, DBLK& blk) {
  FS_STATUS const status = FS_HandFindFirstObj(hand, &blk, &name[0], 0);
  FS_HandFindObjClose(hand, &blk);
  return status;
}

// A block as a restore builds it: a name, a kind and a modification date.
void describe(FSYS_HAND_STRUCT* hand, DBLK& blk, std::wstring const& name, bool directory,
              _DATE_TIME const* mdate = nullptr) {
  char const kind = directory ? DBLK_KIND_DDB : DBLK_KIND_FDB;
  _CREATE_DBLK req;
  FS_SetDefaultDBLK(hand, kind, 0, &req);
  req.dblk = req.gen.dblk = &blk;
  req.gen.name = name.c_str();
  req.gen.name_size = static_cast<std::uint16_t>((name.size() + 1) * sizeof(wchar_t));
  if (mdate != nullptr) req.gen.mdate = mdate;
  FS_CreateGenDBLK(hand, static_cast<unsigned char>(kind), &req);
}

struct stream {
  std::uint32_t id;
  std::string data;
};

// Opens the object `blk` describes for writing, offers each stream (a
// refused one's data is not offered) and closes it; the close's status.
FS_STATUS write_streams(FSYS_HAND_STRUCT* hand, DBLK& blk, std::vector<stream> const& streams) {
  _FILE_HAND_STRUCT* obj = nullptr;
  FS_STATUS status = FS_OpenObj(hand, &obj, &blk, FS_WRITE);
  if (status != FS_SUCCESS) return status;
  for (stream const& s : streams) {
    STREAM_INFO header{};
    header.id = s.id;
    header.size = s.data.size();
    unsigned size = 0, need = 0;
    if (FS_WriteObj(obj, nullptr, &size, &need, &header) != FS_SUCCESS) continue;
    std::string data = s.data;
    STREAM_INFO none{};
    size = static_cast<unsigned>(data.size());
    if (size > 0) FS_WriteObj(obj, reinterpret_cast<unsigned char*>(&data[0]), &size, &need, &none);
  }
  return FS_CloseObj(obj, nullptr, nullptr);
}

// Creates (or replaces) the file `name` of the current directory with `data`.
FS_STATUS put_file(FSYS_HAND_STRUCT* hand, std::wstring const& name, std::string const& data) {
  DBLK blk{};
  describe(hand, blk, name, false);
  FS_STATUS status = FS_HandCreateObj(hand, &blk, nullptr, RESTORE_OVERWRITE);
  if (status == FS_SUCCESS) status = write_streams(hand, blk, {{STRM_GENERIC_DATA, data}});
  FS_HandReleaseBlk(hand, &blk);
  return status;
}

// The data of the current directory's file `name`; "(none)" when there is
// no such file.
std::string contents(FSYS_HAND_STRUCT* hand, std::wstring const& name) {
  DBLK blk{};
  if (find(hand, name, blk) != FS_SUCCESS) return "(none)";
  _FILE_HAND_STRUCT* obj = nullptr;
  std::string out;
  if (FS_OpenObj(hand, &obj, &blk, FS_READ) == FS_SUCCESS) {
    unsigned char buffer[4096];
    for (;;) {
      unsigned size = sizeof buffer, need = 0;
      STREAM_INFO header{};
      if (FS_ReadObj(obj, buffer, &size, &need, &header) != FS_SUCCESS) break;
      out.append(reinterpret_cast<char const*>(buffer), size);
    }
    FS_CloseObj(obj, nullptr, nullptr);
  }
  FS_HandReleaseBlk(hand, &blk);
  return out;
}

std::vector<std::wstring> names(FSYS_HAND_STRUCT* hand) {
  std::vector<std::wstring> out;
  DBLK blk{};
  for (FS_STATUS s = FS_HandFindFirstObj(hand, &blk, nullptr, 0); s == FS_SUCCESS; s = FS_HandFindNextObj(hand, &blk)) {
    std::vector<wchar_t> name(static_cast<std::size_t>(FS_HandSizeofOSName(hand, &blk, false)) / sizeof(wchar_t) + 1);
    FS_HandGetOSName(hand, &blk, name.data(), false);
    out.emplace_back(name.data());
  }
  FS_HandFindObjClose(hand, &blk);
  FS_HandReleaseBlk(hand, &blk);
  return out;
}

std::wstring last_message(FSYS_HAND_STRUCT* hand) {
  wchar_t* message = nullptr;
  GEN_GetExtendedErrorInfo(hand, nullptr, nullptr, &message);
  return message == nullptr ? std::wstring() : std::wstring(message);
}

// Two handles on one memfs tree (no image): what one does, the other sees.
class TwoHandles : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(session_.ok());
    first_ = session_.attach();
    second_ = session_.attach();
    ASSERT_NE(first_, nullptr);
    ASSERT_NE(second_, nullptr);
  }
  MemfsSession session_{""};
  FSYS_HAND_STRUCT* first_ = nullptr;
  FSYS_HAND_STRUCT* second_ = nullptr;
};

// ---- replacing a file ------------------------------------------------------------

// Each case replaces a file "old" by a restore of `streams`; a damaged
// object is then deleted, as a restore does with an object it reports failed.
struct replace_case {
  char const* what;
  std::vector<stream> streams;
  bool deleted_after;
  char const* left;  // the file's contents afterwards
};

TEST_F(TwoHandles, AReplacedFileChangesOnlyWhenItsObjectClosesWithoutFailure) {
  FSYS_HAND_STRUCT* const writer = first_;
  FSYS_HAND_STRUCT* const reader = second_;
  replace_case const cases[] = {
      {"a data stream", {{STRM_GENERIC_DATA, "new"}}, false, "new"},
      {"no stream (an empty file)", {}, false, ""},
      {"a refused stream, then deleted", {{kOtherStream, "link"}}, true, "old"},
      {"a refused stream, then a data stream, then deleted", {{kOtherStream, "link"}, {STRM_GENERIC_DATA, "new"}},
       true, "old"},
      {"a refused stream, then a data stream", {{kOtherStream, "link"}, {STRM_GENERIC_DATA, "new"}}, false, "old"},
  };
  int n = 0;
  for (replace_case const& c : cases) {
    std::wstring const name = L"f" + std::to_wstring(n++);
    ASSERT_EQ(put_file(writer, name, "old"), FS_SUCCESS) << c.what;
    DBLK blk{};
    describe(writer, blk, name, false);
    ASSERT_EQ(FS_HandCreateObj(writer, &blk, nullptr, RESTORE_OVERWRITE), FS_SUCCESS) << c.what;
    EXPECT_EQ(contents(reader, name), "old") << c.what << ": another handle saw the file before it was written";
    write_streams(writer, blk, c.streams);
    if (c.deleted_after) {
      EXPECT_EQ(FS_HandDeleteObj(writer, &blk), FS_SUCCESS) << c.what;
    }
    FS_HandReleaseBlk(writer, &blk);
    EXPECT_EQ(contents(reader, name), c.left) << c.what;
  }
  // A file restored anew and failed leaves nothing behind.
  DBLK blk{};
  describe(writer, blk, L"fresh", false);
  ASSERT_EQ(FS_HandCreateObj(writer, &blk, nullptr, RESTORE_OVERWRITE), FS_SUCCESS);
  write_streams(writer, blk, {{kOtherStream, "x"}});
  EXPECT_EQ(FS_HandDeleteObj(writer, &blk), FS_SUCCESS);
  FS_HandReleaseBlk(writer, &blk);
  EXPECT_EQ(contents(reader, L"fresh"), "(none)");
}

// ---- another handle deletes ------------------------------------------------------

TEST_F(TwoHandles, AListingGoesOnPastAnEntryAnotherHandleDeletes) {
  FSYS_HAND_STRUCT* const lister = first_;
  FSYS_HAND_STRUCT* const deleter = second_;
  for (wchar_t const* name : {L"a", L"b", L"c", L"d"}) ASSERT_EQ(put_file(deleter, name, name[0] == L'a' ? "1" : "2"), FS_SUCCESS);
  std::vector<std::wstring> const before = names(lister);
  ASSERT_GE(before.size(), 4u);

  std::vector<std::wstring> seen;
  DBLK blk{};
  for (FS_STATUS s = FS_HandFindFirstObj(lister, &blk, nullptr, 0); s == FS_SUCCESS; s = FS_HandFindNextObj(lister, &blk)) {
    std::vector<wchar_t> name(static_cast<std::size_t>(FS_HandSizeofOSName(lister, &blk, false)) / sizeof(wchar_t) + 1);
    FS_HandGetOSName(lister, &blk, name.data(), false);
    seen.emplace_back(name.data());
    if (seen.size() == 1) {  // the entry just handed out goes
      DBLK gone{};
      ASSERT_EQ(find(deleter, seen.front(), gone), FS_SUCCESS);
      EXPECT_EQ(FS_HandDeleteObj(deleter, &gone), FS_SUCCESS);
      FS_HandReleaseBlk(deleter, &gone);
    }
  }
  FS_HandFindObjClose(lister, &blk);
  FS_HandReleaseBlk(lister, &blk);
  EXPECT_EQ(seen, before);
  EXPECT_EQ(names(lister).size(), before.size() - 1);
}

TEST_F(TwoHandles, ADirectoryRemovedByAnotherHandleTakesNoNewEntries) {
  FSYS_HAND_STRUCT* const inside = first_;
  FSYS_HAND_STRUCT* const other = second_;
  ASSERT_EQ(change_dir(inside, {L"docs", L"empty"}), FS_SUCCESS);
  ASSERT_EQ(change_dir(other, {L"docs"}), FS_SUCCESS);
  DBLK empty{};
  ASSERT_EQ(find(other, L"empty", empty), FS_SUCCESS);
  ASSERT_EQ(FS_HandDeleteObj(other, &empty), FS_SUCCESS);
  FS_HandReleaseBlk(other, &empty);

  struct {
    wchar_t const* name;
    bool directory;
  } const cases[] = {{L"sub", true}, {L"file", false}};
  for (auto const& c : cases) {
    DBLK blk{};
    describe(inside, blk, c.name, c.directory);
    EXPECT_EQ(FS_HandCreateObj(inside, &blk, nullptr, RESTORE_OVERWRITE), FS_STATUS_EXT_ERROR) << c.directory;
    EXPECT_EQ(last_message(inside), L"memfs: '" + std::wstring(c.name) + L"': the directory it would go into was removed");
    FS_HandReleaseBlk(inside, &blk);
  }
  EXPECT_EQ(names(inside), std::vector<std::wstring>{});
}

// ---- dates across a reload -------------------------------------------------------

TEST(MemfsHandles, DatesReadTheSameAfterTheImageIsReloaded) {
  qbtest::ScratchDir s;
  std::string const image = s.dir + "/memfs.img";
  // Weekdays as a calendar gives them; the reserved word as the layer sets it.
  struct {
    wchar_t const* name;
    _DATE_TIME date;
  } const cases[] = {
      {L"saturday", {1, 2001, 2, 3, 4, 5, 6, 6, 0, 0}},
      {L"leap-day", {1, 2024, 2, 29, 12, 0, 0, 4, 0, 1234560}},
      {L"first-day", {1, 1601, 1, 1, 0, 0, 0, 1, 0, 0}},
      {L"not-leap", {1, 2100, 3, 1, 23, 59, 59, 1, 0, 9999990}},
  };
  {
    MemfsSession session(image);
    ASSERT_TRUE(session.ok());
    FSYS_HAND_STRUCT* hand = session.attach();
    ASSERT_NE(hand, nullptr);
    for (auto const& c : cases) {
      DBLK blk{};
      describe(hand, blk, c.name, false, &c.date);
      ASSERT_EQ(FS_HandCreateObj(hand, &blk, nullptr, RESTORE_OVERWRITE), FS_SUCCESS);
      ASSERT_EQ(write_streams(hand, blk, {{STRM_GENERIC_DATA, "x"}}), FS_SUCCESS);
      FS_HandReleaseBlk(hand, &blk);
    }
    ASSERT_EQ(session.detach(hand), FS_SUCCESS);
  }
  MemfsSession session(image);
  ASSERT_TRUE(session.ok());
  FSYS_HAND_STRUCT* hand = session.attach();
  ASSERT_NE(hand, nullptr);
  for (auto const& c : cases) {
    DBLK blk{};
    ASSERT_EQ(find(hand, c.name, blk), FS_SUCCESS);
    _DATE_TIME got{};
    ASSERT_EQ(FS_HandGetMDateDBLK(hand, &blk, &got), FS_SUCCESS);
    FS_HandReleaseBlk(hand, &blk);
    EXPECT_EQ(std::memcmp(&got, &c.date, sizeof got), 0)
        << static_cast<char>(c.name[0]) << ": weekday " << int(got.day_of_week) << ", wanted " << int(c.date.day_of_week)
        << "; ticks " << got.ticks << ", reserved " << got.reserved << ", second " << int(got.second);
  }
}

}  // namespace
