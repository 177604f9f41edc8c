// Stream headers and ids, and gathering short streams piece by piece.
#include <vector>

#include "dblk_fixture.h"

namespace {

using qbtest::DblkTest;

TEST(StreamIds, NamesArePaddedToTwentyFiveAndTheFirstRowWins) {
  std::pair<unsigned int, std::wstring> const cases[] = {
      {STRM_INVALID, L"STRM_INVALID             "},
      {STRM_GENERIC_DATA, L"STRM_GENERIC_DATA        "},
      {STRM_VMWARE_DISK_METADATA, L"STRM_VMWARE_DISK_METADATA"},
      {STRM_NT_DFS_JUNCTION, L"STRM_NT_DFS_JUNCTION     "},
      {STRM_NT_DFS_JUNCTION_NEW, L"STRM_NT_DFS_JUNCTION_NEW "},
      {qb_strm_id("FNAM"), L"STRM_FILE_NAME           "},
      {0x12345678, L"Unknown"},
      {STRM_TABLE_END, L"Unknown"},
  };
  for (auto const& [id, name] : cases) EXPECT_EQ(FS_GetStrmIdString(id), name) << std::hex << id;
}

TEST(StreamInfo, InitClearsTheFormatWordsAndKeepsTheTail) {
  STREAM_INFO header;
  std::memset(&header, 0xEE, sizeof header);
  FS_InitStrmInfo(&header, STRM_NT_SPARSE, 0x1234, 0xFFFFFFFF);
  EXPECT_EQ(header.id, STRM_NT_SPARSE);
  EXPECT_EQ(header.fs_attrib, 0x1234);
  EXPECT_EQ(header.tf_attrib, 0);
  EXPECT_EQ(header.size, 0xFFFFFFFFull);
  EXPECT_EQ(header.encr_word, 0);
  EXPECT_EQ(header.cmpr_word, 0u);
  EXPECT_EQ(header.tail[7], 0xEE);
  FS_InitStrmInfo(nullptr, 0, 0, 0);
  EXPECT_EQ(last_stream_size, 0u);
}

class Gather : public DblkTest {
 protected:
  // Offers `offer` bytes and returns {status, taken}.
  std::pair<FS_STATUS, unsigned int> offer(unsigned int offer, STREAM_INFO* header = nullptr) {
    data_.assign(offer, static_cast<unsigned char>(next_++));
    unsigned int len = offer;
    FS_STATUS const status = FS_FillBufferWithStream(hand_, &blk_, data_.data(), &len, header);
    return {status, len};
  }
  STREAM_INFO header(std::uint64_t size, std::uint32_t id = STRM_PATH_NAME) {
    STREAM_INFO h{};
    FS_InitStrmInfo(&h, id, 0, 0);
    h.size = size;
    return h;
  }

  DBLK blk_{};
  std::vector<unsigned char> data_;
  int next_ = 1;
};

struct GatherCase {
  std::uint64_t size;
  std::vector<unsigned int> offers;
  std::vector<unsigned int> taken;
  std::vector<FS_STATUS> statuses;
};

TEST_F(Gather, PiecesAreTakenUpToTheStreamSize) {
  GatherCase const cases[] = {
      {0, {5}, {0}, {FS_BLK_COMPLETE}},
      {10, {4, 0, 4, 4}, {4, 0, 4, 2}, {0, 0, 0, FS_BLK_COMPLETE}},
      {3, {100}, {3}, {FS_BLK_COMPLETE}},
      {0x100000003ull, {2, 2}, {2, 1}, {0, FS_BLK_COMPLETE}},  // sizes compare in 32 bits
      {65535, {65535}, {65535}, {FS_BLK_COMPLETE}},
  };
  for (auto const& c : cases) {
    blk_ = DBLK{};
    STREAM_INFO h = header(c.size);
    unsigned int total = 0;
    for (std::size_t i = 0; i < c.offers.size(); ++i) {
      auto [status, taken] = offer(c.offers[i], i == 0 ? &h : nullptr);
      EXPECT_EQ(status, c.statuses[i]) << "size " << c.size << " call " << i;
      EXPECT_EQ(taken, c.taken[i]) << "size " << c.size << " call " << i;
      if (taken > 0) {
        EXPECT_EQ(hand_->nameBuf[total], data_[0]);
      }
      total += taken;
    }
    EXPECT_EQ(blk_.strm_buffered, total);
    STREAM_INFO* got = nullptr;
    unsigned char* bytes = nullptr;
    FS_GetStreamInfo(hand_, &blk_, &got, &bytes);
    EXPECT_EQ(got, total == 0 ? nullptr : &hand_->currentStream);
    EXPECT_EQ(bytes, total == 0 ? nullptr : hand_->nameBuf);
  }
}

TEST_F(Gather, AHeaderWithIdZeroContinuesTheStream) {
  STREAM_INFO first = header(6, STRM_FILE_NAME);
  offer(3, &first);
  STREAM_INFO cont = header(1000, STRM_INVALID);
  auto [status, taken] = offer(5, &cont);
  EXPECT_EQ(status, FS_BLK_COMPLETE);
  EXPECT_EQ(taken, 3u);
  EXPECT_EQ(hand_->currentStream.id, STRM_FILE_NAME);
}

TEST_F(Gather, HostileRecordsAreRefusedWithNothingTaken) {
  STREAM_INFO longer = header(65536);
  EXPECT_EQ(offer(10, &longer), std::make_pair(FS_ERR_NAME_TOO_LONG, 0u));
  STREAM_INFO h = header(10);
  blk_.strm_buffered = 11;  // more than the stream has
  EXPECT_EQ(offer(1, &h), std::make_pair(FS_ERR_BAD_PARAMETER, 0u));
  blk_.strm_buffered = 4;   // bytes this handle never gathered
  EXPECT_EQ(offer(1, &h), std::make_pair(FS_ERR_BAD_PARAMETER, 0u));
  blk_.strm_buffered = 0;
  unsigned int len = 3;
  EXPECT_EQ(FS_FillBufferWithStream(hand_, &blk_, nullptr, &len, &h), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(len, 0u);
  EXPECT_EQ(FS_FillBufferWithStream(hand_, &blk_, data_.data(), nullptr, &h), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(FS_FillBufferWithStream(nullptr, &blk_, data_.data(), &len, &h), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(FS_FillBufferWithStream(hand_, nullptr, data_.data(), &len, &h), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(blk_.strm_buffered, 0);
  STREAM_INFO* got = &h;
  FS_GetStreamInfo(nullptr, &blk_, &got, nullptr);
  EXPECT_EQ(got, nullptr);
}

}  // namespace
