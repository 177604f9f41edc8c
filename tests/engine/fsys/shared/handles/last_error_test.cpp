// The last-error list and the metadata blob of a handle.
#include <ostream>
#include <string>
#include <vector>

#include "handles_fixture.h"

namespace {

class LastError : public qbtest::HandleTest {
 protected:
  void SetUp() override {
    HandleTest::SetUp();
    ASSERT_EQ(FS_OpenFileSys(&hand_, 3, &cfg_, nullptr), FS_SUCCESS);
  }
  void TearDown() override {
    FS_CloseFileSys(hand_);
    HandleTest::TearDown();
  }
  std::vector<wchar_t> list(int chars) const { return {hand_->lastMsg, hand_->lastMsg + chars}; }
  FSYS_HAND_STRUCT* hand_ = nullptr;
};

TEST_F(LastError, StringsAreListedWithTerminatorsAndAClosingEmptyOne) {
  EXPECT_EQ(FS_AddStringToLastError(hand_, L"abc"), FS_STATUS_EXT_ERROR);
  EXPECT_EQ(FS_AddStringToLastError(hand_, L"de"), FS_STATUS_EXT_ERROR);
  EXPECT_EQ(hand_->lastMsgLen, 7);
  EXPECT_EQ(list(8), (std::vector<wchar_t>{L'a', L'b', L'c', 0, L'd', L'e', 0, 0}));
  EXPECT_EQ(FS_AddStringToLastError(hand_, L""), FS_STATUS_EXT_ERROR);
  EXPECT_EQ(FS_AddStringToLastError(hand_, nullptr), FS_STATUS_EXT_ERROR);
  EXPECT_EQ(hand_->lastMsgLen, 7);
}

TEST_F(LastError, CapacityGrowsByRoomFor256MoreCharacters) {
  EXPECT_EQ(FS_AddStringToLastError(hand_, L"x"), FS_STATUS_EXT_ERROR);
  EXPECT_EQ(hand_->lastMsgCap, 1036);
  wchar_t* const first = hand_->lastMsg;
  std::wstring const long_line(254, L'y');  // 257 characters and the closing one: 1,032 bytes
  FS_AddStringToLastError(hand_, long_line.c_str());
  EXPECT_EQ(hand_->lastMsgCap, 1036);
  EXPECT_EQ(hand_->lastMsg, first);
  FS_AddStringToLastError(hand_, L"z");  // 259 characters: grows
  EXPECT_EQ(hand_->lastMsgLen, 259);
  EXPECT_EQ(hand_->lastMsgCap, 259 * 4 + 1028);
  EXPECT_EQ(hand_->lastMsg[257], L'z');
}

TEST_F(LastError, SetLastErrorReplacesTheRecord) {
  FS_AddStringToLastError(hand_, L"old");
  EXPECT_EQ(FS_SetLastError(hand_, 5, FS_EXT_ERR_ACTION_SKIP, 42, L"new"), FS_STATUS_EXT_ERROR);
  FS_EXT_ERR_ACTION action = FS_EXT_ERR_ACTION_NONE;
  unsigned int extra = 0;
  wchar_t* message = nullptr;
  EXPECT_EQ(GEN_GetExtendedErrorInfo(hand_, &action, &extra, &message), 5u);
  EXPECT_EQ(action, FS_EXT_ERR_ACTION_SKIP);
  EXPECT_EQ(extra, 42u);
  EXPECT_EQ(message, hand_->lastMsg);  // the handle's own list
  EXPECT_STREQ(message, L"new");
  EXPECT_EQ(hand_->lastMsgLen, 4);

  EXPECT_EQ(FS_SetLastError(hand_, -7, FS_EXT_ERR_ACTION_ABORT, 1, nullptr), FS_STATUS_EXT_ERROR);
  EXPECT_EQ(GEN_GetExtendedErrorInfo(hand_, &action, &extra, &message),
            static_cast<FS_STATUS>(-7));
  EXPECT_EQ(message, nullptr);
  EXPECT_EQ(hand_->lastMsgCap, 0);
  EXPECT_EQ(GEN_GetExtendedErrorInfo(hand_, nullptr, nullptr, nullptr), static_cast<FS_STATUS>(-7));
}

TEST_F(LastError, NullHandleIsRefused) {
  EXPECT_EQ(FS_SetLastError(nullptr, 1, FS_EXT_ERR_ACTION_NONE, 0, L"x"), FS_ERR_INVALID_HANDLE);
  EXPECT_EQ(FS_AddStringToLastError(nullptr, L"x"), FS_ERR_INVALID_HANDLE);
  EXPECT_EQ(GEN_GetExtendedErrorInfo(nullptr, nullptr, nullptr, nullptr), FS_ERR_INVALID_HANDLE);
  unsigned char byte = 1;
  EXPECT_EQ(FS_SetMetaDataBlob(nullptr, &byte, 1), 1u);
  EXPECT_EQ(FS_SetMetaDataBlob(nullptr, nullptr, 0), 0u);
  EXPECT_EQ(FS_SetMetaDataBlob(hand_, nullptr, 1), 1u);
  EXPECT_EQ(hand_->metaCap, 2048u);
}

struct BlobCase {
  unsigned int size;
  unsigned int capacity;
  bool same_buffer;
};

void PrintTo(BlobCase const& c, std::ostream* os) { *os << c.size << " bytes"; }

class Blob : public LastError, public ::testing::WithParamInterface<BlobCase> {};

TEST_P(Blob, GrowsInKilobyteUnits) {
  BlobCase const& c = GetParam();
  std::vector<unsigned char> data(c.size);
  for (unsigned i = 0; i < c.size; ++i) data[i] = static_cast<unsigned char>(i * 7);
  unsigned char* const before = hand_->metaBlob;
  EXPECT_EQ(FS_SetMetaDataBlob(hand_, data.data(), c.size), 0u);
  EXPECT_EQ(hand_->metaCap, c.capacity);
  EXPECT_EQ(hand_->metaLen, c.size);
  EXPECT_EQ(hand_->metaBlob == before, c.same_buffer);
  EXPECT_EQ(std::vector<unsigned char>(hand_->metaBlob, hand_->metaBlob + c.size), data);

  EXPECT_EQ(FS_SetMetaDataBlob(hand_, data.data(), 0), 0u);
  EXPECT_EQ(hand_->metaLen, 0u);
  EXPECT_EQ(hand_->metaCap, c.capacity);  // kept
}

INSTANTIATE_TEST_SUITE_P(Sizes, Blob,
                         ::testing::Values(BlobCase{1, 2048, true}, BlobCase{2048, 2048, true},
                                           BlobCase{2049, 3072, false},
                                           BlobCase{3072, 4096, false},
                                           BlobCase{4096, 5120, false}),
                         [](::testing::TestParamInfo<BlobCase> const& info) {
                           return "size" + std::to_string(info.param.size);
                         });

}  // namespace
