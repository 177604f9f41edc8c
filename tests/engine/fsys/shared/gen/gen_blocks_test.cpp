// Restore-shaped use of the generic file system: blocks described by
// creation requests, built through FS_CreateGenDBLK on a handle of the
// generic file system (its table behind the FS_FshGeneric adapter that its
// open installs), read back through the accessors, names completed from
// name streams fed in random pieces, duplicated and released, with no name
// element left in use when the handle closes.
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "capture.h"
#include "test_records.h"
#include <fs_property_tree.h>
#include <qbfsys/qbfsys.h>

namespace {

using qbtest::wide_bytes;

struct BlockCase {
  char const* what;
  std::uint8_t kind;
  std::uint8_t subtype;
  std::uint32_t media_attrib;
  std::uint32_t expected_flags;
};

class GenBlocks : public ::testing::Test {
 protected:
  void SetUp() override {
    // The generic table's open installs the FS_FshGeneric adapter, which
    // serves the handle through the table: the road a restore takes.
    ASSERT_EQ(FS_OpenFileSys(&hand_, 3, &cfg_, GetFuncTablePtr_GEN()), FS_SUCCESS);
    ASSERT_NE(dynamic_cast<FS_FshGeneric*>(static_cast<FS_FshGen*>(hand_->adapter)), nullptr);
  }
  void TearDown() override {
    EXPECT_EQ(QueueCount(&hand_->in_use_name_q), 0) << "a name element was left in use";
    FS_CloseFileSys(hand_);
    EXPECT_FALSE(messages_.has_prefix(L"FS_FreeOSPathOrNameQueueInHand: Error."));
  }

  QB_CFG cfg_{};
  FSYS_HAND_STRUCT* hand_ = nullptr;
  qbtest::MessageCapture messages_;
};

TEST_F(GenBlocks, BuiltFromRequestsReadBackDuplicatedAndReleased) {
  BlockCase const cases[] = {
      {"plain file", DBLK_KIND_FDB, 0, DBLK_ATTR1_BIT19 | DBLK_ATTR1_BIT20,
       DBLK_OBJ_FILE_ATTR_BIT19 | DBLK_OBJ_FILE_ATTR_BIT20 | DBLK_OBJ_INDICATOR},
      {"file with attribute names", DBLK_KIND_FDB, DBLK_SUBTYPE_EA_52, DBLK_ATTR1_BIT28,
       DBLK_OBJ_FILE_ATTR_BIT28 | DBLK_OBJ_INDICATOR},
      {"file with the numeric record", DBLK_KIND_FDB, DBLK_SUBTYPE_NUMERIC, 0, DBLK_OBJ_INDICATOR},
      {"directory", DBLK_KIND_DDB, 0, DBLK_ATTR1_BIT19 | DBLK_ATTR1_BIT20,
       DBLK_OBJ_DIR_ATTR_BIT19 | DBLK_OBJ_INDICATOR},
  };
  std::vector<unsigned char> name = wide_bytes(L"restored.dat");
  std::vector<unsigned char> ea1 = wide_bytes(L"user.a");
  unsigned char const value[16] = {1, 2, 3};
  GEN_NUMERIC_RECORD numeric{};
  numeric.value[16] = 99;
  _DATE_TIME const mdate = qbtest::make_date(2026, 1, 2, 3, 4, 5);
  for (auto const& c : cases) {
    DBLK blk{}, copy{};
    _CREATE_DBLK request;
    ASSERT_EQ(FS_SetDefaultDBLK(hand_, static_cast<char>(c.kind), static_cast<char>(c.subtype), &request), FS_SUCCESS);
    request.dblk = &blk;
    request.gen.name = name.data();
    request.gen.name_size = static_cast<std::uint16_t>(name.size());
    request.gen.media_attrib = c.media_attrib;
    request.gen.indicator = 1;
    request.gen.display_size = 4096;
    request.gen.mdate = &mdate;
    request.gen.ea_name1 = ea1.data();
    request.gen.ea_name1_size = static_cast<std::uint16_t>(ea1.size());
    request.gen.ea_value1 = value;
    request.gen.numeric = &numeric;
    request.gen.ext_name = L"long name.dat";
    ASSERT_EQ(FS_CreateGenDBLK(hand_, c.kind, &request), FS_SUCCESS) << c.what;

    EXPECT_EQ(blk.blk_type, c.kind) << c.what;
    EXPECT_EQ(blk.blk_subtype, c.subtype) << c.what;
    EXPECT_EQ(blk.obj_flags, c.expected_flags) << c.what;
    // The word as the media gave it, whatever bits the flags map back.
    EXPECT_EQ(FS_GetAttrib1FromDBLK(hand_, &blk), c.media_attrib) << c.what;
    EXPECT_EQ(GEN_GetDisplaySizeDBLK(hand_, &blk), 4096u);
    EXPECT_EQ(GEN_IsBlkComplete(hand_, &blk), 1u);
    ASSERT_NE(blk.os_name, nullptr);
    EXPECT_EQ(std::memcmp(blk.os_name->buffer, name.data(), name.size()), 0);
    ASSERT_NE(blk.area.gen.ext_name, nullptr) << c.what;
    bool const ea = c.subtype == DBLK_SUBTYPE_EA_52;
    EXPECT_EQ(blk.area.gen.ext.ea.ea_name1 != nullptr, ea) << c.what;
    if (ea) {
      EXPECT_EQ(blk.area.gen.ext.ea.ea_value1[2], 3);
    }
    if (c.subtype == DBLK_SUBTYPE_NUMERIC) {
      EXPECT_EQ(blk.area.gen.ext.numeric.value[16], 99u);
    }

    fs_property_tree_ptr tree = fs_property_tree_create("block");
    ASSERT_EQ(hand_->adapter->GetDblkExtendedProperties(hand_, &blk, *tree), FS_SUCCESS) << c.what;
    EXPECT_STREQ(tree->get_property("kind_name").at(0).get_str_val(),
                 c.kind == DBLK_KIND_FDB ? L"FDB" : L"DDB");
    EXPECT_EQ(tree->get_property("subtype").at(0).get_uint32_val(), c.subtype);
    EXPECT_STREQ(tree->get_property("name").at(0).get_str_val(), L"restored.dat");
    EXPECT_EQ(tree->get_property("display_size").at(0).get_uint64_val(), 4096u);
    EXPECT_STREQ(tree->get_property("mdate").at(0).get_str_val(), L"2026-01-02 03:04:05.0000000");

    ASSERT_EQ(hand_->adapter->DupBlk(hand_, &blk, &copy), FS_SUCCESS);
    EXPECT_NE(copy.os_name, blk.os_name);
    EXPECT_NE(copy.area.gen.ext_name, blk.area.gen.ext_name);
    EXPECT_EQ(std::memcmp(copy.os_name->buffer, name.data(), name.size()), 0);
    EXPECT_EQ(hand_->adapter->ReleaseBlk(hand_, &blk), FS_SUCCESS);
    EXPECT_EQ(GEN_ReleaseBlk(hand_, &copy), FS_SUCCESS);
    EXPECT_EQ(QueueCount(&hand_->in_use_name_q), 0) << c.what;
  }
  EXPECT_EQ(GEN_CreateDBLK(hand_, DBLK_KIND_CFDB, nullptr), FS_ERR_BAD_PARAMETER);
  _CREATE_DBLK other{};
  EXPECT_EQ(GEN_CreateDBLK(hand_, DBLK_KIND_CFDB, &other), 1u);  // not a GEN object kind
}

// An OS name that cannot be set up fails the creation, but the block still
// gets every other part the media described, and releasing it gives all back.
TEST_F(GenBlocks, AFailedNameStillBuildsTheRestOfTheBlock) {
  std::vector<unsigned char> const too_long(8192, 'n');  // narrow: 32,768 bytes once widened
  std::vector<unsigned char> ea1 = wide_bytes(L"user.a");
  std::vector<unsigned char> ea2 = wide_bytes(L"user.b");
  DBLK blk{};
  _CREATE_DBLK request;
  ASSERT_EQ(FS_SetDefaultDBLK(hand_, DBLK_KIND_FDB, DBLK_SUBTYPE_EA_52, &request), FS_SUCCESS);
  request.dblk = &blk;
  request.gen.name_char_type = DBLK_NAME_NARROW;
  request.gen.name = too_long.data();
  request.gen.name_size = static_cast<std::uint16_t>(too_long.size());
  request.gen.ea_name1 = ea1.data();
  request.gen.ea_name1_size = static_cast<std::uint16_t>(ea1.size());
  request.gen.ea_name2 = ea2.data();
  request.gen.ea_name2_size = static_cast<std::uint16_t>(ea2.size());
  request.gen.ext_name = L"long name.dat";
  EXPECT_EQ(GEN_CreateDBLK(hand_, DBLK_KIND_FDB, &request), FS_ERR_NAME_TOO_LONG);
  EXPECT_EQ(blk.os_name, nullptr);
  ASSERT_NE(blk.area.gen.ext.ea.ea_name1, nullptr);
  ASSERT_NE(blk.area.gen.ext.ea.ea_name2, nullptr);
  ASSERT_NE(blk.area.gen.ext_name, nullptr);
  EXPECT_EQ(std::memcmp(blk.area.gen.ext.ea.ea_name2->buffer, ea2.data(), ea2.size()), 0);
  EXPECT_EQ(GEN_ReleaseBlk(hand_, &blk), FS_SUCCESS);
}

// The name arrives as a stream encrypted by the host cipher: the block stays
// incomplete until the last piece, then holds the decrypted name.
TEST_F(GenBlocks, AnEncryptedNameCompletesFromItsStreamInRandomPieces) {
  static unsigned char const key[] = "a backup set's name key";
  ZYM_ENCRYPTION_CONTEXT* writer = ZymCreateContext(key, sizeof key, nullptr, 0);
  ZYM_ENCRYPTION_CONTEXT* reader = ZymCreateContext(key, sizeof key, nullptr, 0);
  ASSERT_EQ(FS_PrepCryptEnv(hand_, reader), ZYM_OK);
  std::mt19937 random(11);
  std::vector<unsigned char> const name = wide_bytes(L"from the stream");
  for (int round = 0; round < 50; ++round) {
    ZymResetEncryptionIV(writer);
    ZymResetEncryptionIV(reader);
    std::vector<unsigned char> stream(FS_NAME_STREAM_HEADER + name.size(), 0);
    unsigned int produced = 0;
    ASSERT_EQ(ZymEncrypt(writer, name.data(), static_cast<unsigned int>(name.size()),
                         stream.data() + FS_NAME_STREAM_HEADER, static_cast<unsigned int>(name.size()),
                         &produced), ZYM_OK);
    ASSERT_NE(std::memcmp(stream.data() + FS_NAME_STREAM_HEADER, name.data(), name.size()), 0);
    ASSERT_EQ(produced, name.size());
    stream[FS_NAME_STREAM_LENGTH_AT] = static_cast<unsigned char>(name.size());

    DBLK blk{};
    _CREATE_DBLK request;
    FS_SetDefaultDBLK(hand_, DBLK_KIND_FDB, 0, &request);
    request.dblk = &blk;
    request.gen.media_attrib = DBLK_ATTR1_NAME_ENCRYPTED;  // the name comes later
    ASSERT_EQ(FS_CreateGenDBLK(hand_, DBLK_KIND_FDB, &request), FS_SUCCESS);
    EXPECT_EQ(GEN_IsBlkComplete(hand_, &blk), 0u);

    STREAM_INFO header{};
    FS_InitStrmInfo(&header, STRM_FILE_NAME, 0, static_cast<unsigned>(stream.size()));
    header.tf_attrib = STREAM_TF_ENCRYPTED_NAME;
    std::size_t at = 0;
    while (GEN_IsBlkComplete(hand_, &blk) == 0) {
      ASSERT_LT(at, stream.size()) << "round " << round << ": the stream ended, the block is still incomplete";
      std::vector<unsigned char> piece(stream.begin() + static_cast<long>(at),
                                       stream.begin() + static_cast<long>(std::min(stream.size(), at + 1 + random() % 9)));
      unsigned int len = static_cast<unsigned int>(piece.size());
      // Each piece answers 0: more wanted, or, for the last, the name set up.
      STREAM_INFO continued{};  // id 0: the same stream goes on
      ASSERT_EQ(hand_->adapter->CompleteBLK(hand_, &blk, piece.data(), &len, at == 0 ? &header : &continued),
                FS_SUCCESS);
      at += len;
    }
    EXPECT_EQ(at, stream.size());
    ASSERT_EQ(GEN_IsBlkComplete(hand_, &blk), 1u);
    EXPECT_EQ(std::memcmp(blk.os_name->buffer, name.data(), name.size()), 0) << "round " << round;
    GEN_ReleaseBlk(hand_, &blk);
  }
  hand_->cryptContext = nullptr;
  ZymDestroyContext(writer);
  ZymDestroyContext(reader);
}

TEST(GenOpenSys, InstallsTheGenericAdapterOnceAndSaysWhenThereIsNoHandle) {
  qbtest::MessageCapture messages;
  EXPECT_EQ(GEN_OpenSys(nullptr), FS_SUCCESS);
  EXPECT_TRUE(messages.has(L"FS_FshGen: Bad Parameter at line number 76"));
  FSYS_HAND_STRUCT hand{};
  EXPECT_EQ(GEN_OpenSys(&hand), FS_SUCCESS);
  FS_FshBase* const first = hand.adapter;
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(GEN_OpenSys(&hand), FS_SUCCESS);
  EXPECT_EQ(hand.adapter, first);  // an adapter the handle has is kept
  EXPECT_EQ(first->CloseSys(&hand), FS_SUCCESS);
  EXPECT_EQ(hand.adapter, nullptr);
}

TEST(GenMarks, MarkerBlocksCarryTheirFormatWords) {
  DBLK blk;
  std::memset(&blk, 0xAB, sizeof blk);
  _CREATE_DBLK request{};
  request.dblk = &blk;
  request.cfdb = {1, 2, 3, 4, 5, 6, 7};
  EXPECT_EQ(FS_CreateGenCFDB(nullptr, &request), 1u);
  EXPECT_EQ(blk.blk_type, DBLK_KIND_CFDB);
  EXPECT_EQ(FS_GetAttrib1FromDBLK(nullptr, &blk), 4u);
  EXPECT_EQ(FS_GetAttrib2FromDBLK(nullptr, &blk), 5u);
  EXPECT_EQ(blk.area.cfdb.value2, 7u);
  EXPECT_EQ(blk.reserved83[0], 0);  // cleared first
  request.mark = {8, 9, 10};
  EXPECT_EQ(FS_CreateGenEODB(nullptr, &request), 1u);
  EXPECT_EQ(blk.blk_type, DBLK_KIND_EODB);
  EXPECT_EQ(blk.format_position, 10u);
  EXPECT_EQ(FS_GetAttrib1FromDBLK(nullptr, &blk), 0u);
  EXPECT_EQ(FS_CreateGenUDB(nullptr, nullptr), FS_ERR_BAD_PARAMETER);
}

}  // namespace
