// The block accessors: which kinds are read in place, which ask the file
// system (through the adapter or the table), the flag mapping of attribute
// word 1, OS info and the delimiters.
#include <vector>

#include "dblk_fixture.h"

namespace {

using qbtest::DblkTest;
using qbtest::fake;

struct FlagCase {
  std::uint8_t kind;
  std::uint32_t fs_word;
  std::uint32_t obj_flags;
  std::uint32_t expected;
};

TEST_F(DblkTest, Attrib1MapsObjectFlagsByKind) {
  FlagCase const cases[] = {
      {DBLK_KIND_FDB, 0x1, 0x20 | 0x40, 0x1 | 0x00080000 | 0x00100000},
      {DBLK_KIND_FDB, 0, 0x2, 0},                               // the directory bit means nothing here
      {DBLK_KIND_FDB, 0, 0x08000000, 0x02000000},
      {DBLK_KIND_DDB, 0, 0x2, 0x00080000},
      {DBLK_KIND_DDB, 0, 0x20 | 0x40, 0},                       // the file bits mean nothing here
      {DBLK_KIND_DDB, 0x10, 0x08000000 | 0x2, 0x10 | 0x02000000 | 0x00080000},
  };
  for (auto const& c : cases) {
    for (bool adapter : {false, true}) {
      if (adapter && hand_->adapter == nullptr) use_adapter();
      if (!adapter && hand_->adapter != nullptr) hand_->adapter->CloseSys(hand_);
      fake().attrib[0] = c.fs_word;
      DBLK blk = block(c.kind, c.obj_flags);
      EXPECT_EQ(FS_GetAttrib1FromDBLK(hand_, &blk), c.expected)
          << "kind " << int(c.kind) << " flags " << std::hex << c.obj_flags << " adapter " << adapter;
    }
  }
}

TEST_F(DblkTest, OwnKindsAreReadInPlaceAndOthersReadZeroWithoutAsking) {
  fake().attrib[0] = fake().attrib[1] = 0xFFFF;
  DBLK vcb = block(DBLK_KIND_VCB);
  vcb.area.vcb.attrib1 = 11;
  vcb.area.vcb.attrib2 = 12;
  DBLK cfdb = block(DBLK_KIND_CFDB);
  cfdb.area.cfdb.attrib1 = 21;
  cfdb.area.cfdb.attrib2 = 22;
  EXPECT_EQ(FS_GetAttrib1FromDBLK(hand_, &vcb), 11u);
  EXPECT_EQ(FS_GetAttrib2FromDBLK(hand_, &vcb), 12u);
  EXPECT_EQ(FS_GetAttrib1FromDBLK(hand_, &cfdb), 21u);
  EXPECT_EQ(FS_GetAttrib2FromDBLK(hand_, &cfdb), 22u);
  for (std::uint8_t kind : {DBLK_KIND_UDB, DBLK_KIND_EODB, std::uint8_t{2}, std::uint8_t{255}}) {
    DBLK blk = block(kind, 0xFFFFFFFF);
    EXPECT_EQ(FS_GetAttrib1FromDBLK(hand_, &blk), 0u);
    EXPECT_EQ(FS_GetAttrib2FromDBLK(hand_, &blk), 0u);
    EXPECT_EQ(FS_SetAttrib1FromDBLK(hand_, &blk, 5), 0u);
    EXPECT_EQ(FS_SizeofQbdsInfoInDBLK(hand_, &blk), 0u);
    unsigned char untouched[4] = {9, 9, 9, 9};
    EXPECT_EQ(FS_GetQbdsInfoFromDBLK(hand_, &blk, untouched), FS_SUCCESS);
    EXPECT_EQ(untouched[0], 9);
  }
  EXPECT_EQ(fake().table_calls, 0);
  EXPECT_EQ(FS_GetAttrib1FromDBLK(hand_, nullptr), 0u);
  EXPECT_EQ(FS_GetAttrib1FromDBLK(nullptr, &vcb), 11u);
}

TEST_F(DblkTest, SettersStoreInPlaceOrHandTheWordOverUnmapped) {
  DBLK vcb = block(DBLK_KIND_VCB);
  DBLK cfdb = block(DBLK_KIND_CFDB);
  DBLK file = block(DBLK_KIND_FDB, 0x20);
  EXPECT_EQ(FS_SetAttrib1FromDBLK(hand_, &vcb, 1), 0u);
  EXPECT_EQ(FS_SetAttrib2InDBLK(hand_, &cfdb, 2), 0u);
  EXPECT_EQ(FS_SetAttrib1FromDBLK(hand_, &file, 0x40), 0u);
  EXPECT_EQ(FS_SetAttrib2InDBLK(hand_, &file, 0x50), 0u);
  EXPECT_EQ(vcb.area.vcb.attrib1, 1u);
  EXPECT_EQ(cfdb.area.cfdb.attrib2, 2u);
  EXPECT_EQ(fake().attrib[0], 0x40u);  // no flag bits added on the way in
  EXPECT_EQ(fake().attrib[1], 0x50u);
  EXPECT_EQ(FS_GetAttrib2FromDBLK(hand_, &file), 0x50u);  // and none on word 2
}

TEST_F(DblkTest, AdapterIsAskedBeforeTheTable) {
  use_adapter();
  DBLK file = block(DBLK_KIND_FDB);
  fake().os_info = {1, 2, 3};
  FS_GetAttrib1FromDBLK(hand_, &file);
  FS_SetAttrib2InDBLK(hand_, &file, 1);
  EXPECT_EQ(FS_SizeofOS_InfoInDBLK(hand_, &file), 3u);
  unsigned char buffer[FS_OS_INFO_CAPACITY];
  EXPECT_EQ(FS_GetOS_InfoFromDBLK(hand_, &file, buffer), FS_SUCCESS);
  EXPECT_EQ(fake().adapter_calls, 4);
  EXPECT_EQ(fake().table_calls, 0);
}

TEST_F(DblkTest, OsInfoSizeIsSignExtendedAndTheCopyOffersAKilobyte) {
  DBLK dir = block(DBLK_KIND_DDB);
  fake().os_info.assign(5, 0xAB);
  EXPECT_EQ(FS_SizeofQbdsInfoInDBLK(hand_, &dir), 5u);
  unsigned char buffer[FS_OS_INFO_CAPACITY] = {};
  EXPECT_EQ(FS_GetQbdsInfoFromDBLK(hand_, &dir, buffer), FS_SUCCESS);
  EXPECT_EQ(fake().last_capacity, 1024);
  EXPECT_EQ(buffer[4], 0xAB);
  EXPECT_EQ(FS_GetQbdsInfoFromDBLK(hand_, &dir, nullptr), FS_ERR_BAD_PARAMETER);

  _FUNC_LIST negative{};
  negative.SizeofOSInfo = [](FSYS_HAND_STRUCT*, DBLK*) -> FS_STATUS { return 0x1FFFF; };
  hand_->funcTable = &negative;  // a count of 0xFFFF read as a signed 16-bit -1
  EXPECT_EQ(FS_SizeofOS_InfoInDBLK(hand_, &dir), 0xFFFFFFFFu);
  EXPECT_EQ(FS_GetQbdsInfoFromDBLK(hand_, &dir, buffer), FS_ERR_UNIMPLEMENTED);
  EXPECT_EQ(FS_GetAttrib1FromDBLK(hand_, &dir), 0u);  // an empty slot reads 0
  hand_->funcTable = &table_;
}

TEST(DblkIds, OsIdAndVersionAreWidened) {
  DBLK blk{};
  blk.os_id = 200;
  blk.qbds_id = 7;
  blk.os_ver = 255;
  unsigned short id = 0, ver = 0, data = 0, qbds = 0, qver = 0;
  EXPECT_EQ(FS_GetOSid_verFromDBLK(nullptr, &blk, &id, &ver), FS_SUCCESS);
  FS_GetDataIdQbdsIdQbdsVerFromDBLK(&blk, &data, &qbds, &qver);
  EXPECT_EQ(id, 200);
  EXPECT_EQ(ver, 255);
  EXPECT_EQ(data, 200);
  EXPECT_EQ(qbds, 7);
  EXPECT_EQ(qver, 255);
  EXPECT_EQ(FS_GetOSid_verFromDBLK(nullptr, nullptr, &id, &ver), FS_ERR_BAD_PARAMETER);
  FS_GetDataIdQbdsIdQbdsVerFromDBLK(nullptr, &data, nullptr, nullptr);
  FS_GetDataIdQbdsIdQbdsVerFromDBLK(&blk, nullptr, nullptr, nullptr);
}

// One OS id of each delimiter class, and an id no class lists.
TEST(DblkDelimiters, ByClassWhateverTheVersion) {
  std::pair<unsigned short, unsigned short> const classes[] = {{21, L':'}, {85, L'/'}, {38, 0xF026}, {86, L'\\'}};
  for (auto const& [id, delimiter] : classes)
    for (unsigned short version : {0, 1, 0xFFFF}) EXPECT_EQ(FS_GetDelimiterFromOSID(id, version), delimiter) << "id " << id;
}

}  // namespace
