// Names in blocks (widening, limits, extended-attribute names) and encrypted
// names: hostile name streams, and names that go through the real host
// cipher, framed as name streams and gathered in random pieces.
#include <random>
#include <string>
#include <vector>

#include "dblk_fixture.h"
#include "test_records.h"

namespace {

using qbtest::DblkTest;
using qbtest::fake;

struct SetupCase {
  char const* what;
  std::uint16_t char_type;
  std::vector<unsigned char> name;  // empty: a null name
  std::uint16_t size;
  std::uint16_t alloc;
  FS_STATUS status;
  std::uint16_t element_size;
};

using qbtest::wide_bytes;

TEST_F(DblkTest, NamesAreSetUpWidenedAndBounded) {
  std::vector<unsigned char> const hello = {'h', 'e', 'l', 'l', 'o'};
  std::vector<unsigned char> const big(8192, 'x');
  SetupCase const cases[] = {
      {"narrow 5 bytes", DBLK_NAME_NARROW, hello, 5, 0, FS_SUCCESS, 20},
      {"narrow with room", DBLK_NAME_NARROW, hello, 5, 6, FS_SUCCESS, 24},
      {"wide", DBLK_NAME_WIDE, wide_bytes(L"ab"), 12, 0, FS_SUCCESS, 12},
      {"wide with room", 0, wide_bytes(L"ab"), 12, 40, FS_SUCCESS, 40},
      {"null name", DBLK_NAME_WIDE, {}, 0, 0, FS_SUCCESS, 4},
      {"room smaller than name", DBLK_NAME_WIDE, wide_bytes(L"ab"), 12, 4, FS_ERR_BAD_PARAMETER, 0},
      {"narrow at the limit", DBLK_NAME_NARROW, big, 8191, 0, FS_SUCCESS, 32764},
      {"narrow over the limit", DBLK_NAME_NARROW, big, 8192, 0, FS_ERR_NAME_TOO_LONG, 0},
      {"wide over the limit", DBLK_NAME_WIDE, big, 32768 / 4, 0, FS_SUCCESS, 8192},
  };
  for (auto const& c : cases) {
    DBLK blk = block(DBLK_KIND_FDB);
    blk.name_char_type = c.char_type;
    auto* name = c.name.empty() ? nullptr : const_cast<unsigned char*>(c.name.data());
    ASSERT_EQ(FS_SetupOSPathOrNameInDBLK(hand_, &blk, name, c.size, c.alloc), c.status) << c.what;
    if (c.status != FS_SUCCESS) {
      EXPECT_EQ(blk.os_name, nullptr) << c.what;
      EXPECT_EQ(blk.name_char_type, c.char_type) << c.what;
      continue;
    }
    ASSERT_NE(blk.os_name, nullptr);
    EXPECT_EQ(blk.os_name->size, c.element_size) << c.what;
    if (c.char_type == DBLK_NAME_NARROW) {
      EXPECT_EQ(blk.name_char_type, DBLK_NAME_WIDE);
      auto const* wide = reinterpret_cast<wchar_t const*>(blk.os_name->buffer);
      for (std::uint16_t i = 0; i < c.size; ++i) ASSERT_EQ(wide[i], wchar_t(c.name[i])) << c.what;
    } else if (!c.name.empty()) {
      EXPECT_EQ(std::memcmp(blk.os_name->buffer, c.name.data(), c.size), 0) << c.what;
    }
    for (std::uint32_t i = c.size * (c.char_type == DBLK_NAME_NARROW ? 4u : 1u); i < c.element_size; ++i)
      ASSERT_EQ(blk.os_name->buffer[i], 0) << c.what << " byte " << i;
    FS_ReleaseOSPathOrNameInDBLK(hand_, &blk);
    EXPECT_EQ(blk.os_name, nullptr);
  }
  unsigned char big_wide[32768] = {};
  DBLK blk = block(DBLK_KIND_FDB);
  EXPECT_EQ(FS_SetupOSPathOrNameInDBLK(hand_, &blk, big_wide, 32767, 0), FS_SUCCESS);
  FS_ReleaseOSPathOrNameInDBLK(hand_, &blk);
  EXPECT_EQ(FS_SetupOSPathOrNameInDBLK(hand_, &blk, big_wide, 32768, 0), FS_ERR_NAME_TOO_LONG);
  EXPECT_EQ(FS_SetupOSPathOrNameInDBLK(nullptr, &blk, big_wide, 4, 0), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(QueueCount(&hand_->in_use_name_q), 0);
}

TEST_F(DblkTest, ExtendedAttributeNamesGoToTheirFields) {
  DBLK blk = block(DBLK_KIND_FDB);
  auto name = wide_bytes(L"user.mime");
  auto const size = static_cast<std::uint16_t>(name.size());
  ASSERT_EQ(FS_SetupExtendedAttribNameInGenDBLK(hand_, &blk, name.data(), size, GEN_EA_NAME_1, 0), FS_SUCCESS);
  ASSERT_EQ(FS_SetupExtendedAttribNameInGenDBLK(hand_, &blk, name.data(), size, GEN_EA_NAME_2, 0), FS_SUCCESS);
  EXPECT_NE(blk.area.gen.ext.ea.ea_name1, blk.area.gen.ext.ea.ea_name2);
  EXPECT_EQ(QueueCount(&hand_->in_use_name_q), 2);
  FS_NAME_Q_ELEM* const name1 = blk.area.gen.ext.ea.ea_name1;
  FS_NAME_Q_ELEM* const name2 = blk.area.gen.ext.ea.ea_name2;
  // Another `which` builds an element and drops it: it stays in use, and
  // neither field changes.
  EXPECT_EQ(FS_SetupExtendedAttribNameInGenDBLK(hand_, &blk, name.data(), size, 3, 0), FS_SUCCESS);
  EXPECT_EQ(QueueCount(&hand_->in_use_name_q), 3);
  EXPECT_EQ(blk.area.gen.ext.ea.ea_name1, name1);
  EXPECT_EQ(blk.area.gen.ext.ea.ea_name2, name2);
  EXPECT_EQ(FS_SetupExtendedAttribNameInGenDBLK(hand_, &blk, name.data(), 0, 3, 0), FS_SUCCESS);
  EXPECT_EQ(QueueCount(&hand_->in_use_name_q), 3);  // both sizes 0: nothing built
  FS_ReleaseExtendedAttribNameInGenDBLK(hand_, &blk, GEN_EA_NAME_1);
  FS_ReleaseExtendedAttribNameInGenDBLK(hand_, &blk, 3);
  EXPECT_EQ(blk.area.gen.ext.ea.ea_name1, nullptr);
  ASSERT_EQ(FS_SetupExtendedAttribNameInGenDBLK(hand_, &blk, name.data(), 0, GEN_EA_NAME_2, 0), FS_SUCCESS);
  EXPECT_EQ(blk.area.gen.ext.ea.ea_name2, nullptr);  // both sizes 0: no name, nothing released
  EXPECT_EQ(QueueCount(&hand_->in_use_name_q), 2);
  FS_FreeOSPathOrNameQueueInHand(hand_);  // the still-used elements are reported and freed
  EXPECT_EQ(messages_.lines().size(), 1u);
}

// ---- encrypted names ---------------------------------------------------------

ZYM_ENCRYPTION_CONTEXT* new_cipher() {
  static unsigned char const key[] = "a backup set's name key";
  return ZymCreateContext(key, sizeof key, nullptr, 0);
}

void put_u32(std::vector<unsigned char>& out, std::size_t at, std::uint32_t value) {
  for (std::size_t i = 0; i < 4; ++i) out[at + i] = static_cast<unsigned char>(value >> (8 * i));
}

// A name stream: header, optional IV, payload.
std::vector<unsigned char> frame(std::vector<unsigned char> const& payload, std::uint8_t flags,
                                 std::vector<unsigned char> const& iv) {
  std::size_t const iv_part = flags != 0 ? FS_NAME_STREAM_IV_LENGTH + iv.size() : 0;
  std::vector<unsigned char> out(FS_NAME_STREAM_HEADER + iv_part + payload.size(), 0x5A);
  put_u32(out, FS_NAME_STREAM_LENGTH_AT, static_cast<std::uint32_t>(iv_part + payload.size()));
  out[FS_NAME_STREAM_FLAGS_AT] = flags;
  if (flags != 0) {
    put_u32(out, FS_NAME_STREAM_HEADER, static_cast<std::uint32_t>(iv.size()));
    std::copy(iv.begin(), iv.end(), out.begin() + FS_NAME_STREAM_HEADER + FS_NAME_STREAM_IV_LENGTH);
  }
  std::copy(payload.begin(), payload.end(), out.end() - static_cast<long>(payload.size()));
  return out;
}

std::vector<unsigned char> raw_header(std::uint32_t declared, std::uint8_t flags, std::size_t total) {
  std::vector<unsigned char> out(total, 0);
  put_u32(out, FS_NAME_STREAM_LENGTH_AT, declared);
  out[FS_NAME_STREAM_FLAGS_AT] = flags;
  return out;
}

struct HostileCase {
  char const* what;
  std::vector<unsigned char> stream;
  std::uint32_t capacity;
  FS_STATUS status;
  std::uint32_t out_length;  // 0xFFFFFFFF: untouched
};

TEST(NameStream, HostileLengthsNeverReachPastTheBuffers) {
  auto lying_iv = raw_header(40, FS_NAME_STREAM_IV_V1, 64);
  std::uint32_t const iv_too_long = 1000;
  put_u32(lying_iv, FS_NAME_STREAM_HEADER, iv_too_long);
  auto wrapping_iv = raw_header(40, FS_NAME_STREAM_IV_V2, 64);
  std::uint32_t const iv_wraps = 0xFFFFFFFF;
  put_u32(wrapping_iv, FS_NAME_STREAM_HEADER, iv_wraps);
  HostileCase const cases[] = {
      {"23 bytes", std::vector<unsigned char>(23, 1), 64, FS_SUCCESS, 0xFFFFFFFF},
      {"payload still to come", raw_header(10, 0, 30), 64, FS_SUCCESS, 34},
      {"payload length wraps", raw_header(0xFFFFFFF0, 0, 30), 64, FS_ERR_BAD_PARAMETER, 0xFFFFFFFF},
      {"no room for the IV length", raw_header(3, FS_NAME_STREAM_IV_V1, 27), 64, FS_ERR_BAD_PARAMETER, 0xFFFFFFFF},
      {"IV longer than the stream", lying_iv, 64, FS_ERR_BAD_PARAMETER, 0xFFFFFFFF},
      {"IV length wraps", wrapping_iv, 64, FS_ERR_BAD_PARAMETER, 0xFFFFFFFF},
      {"output too small", raw_header(16, 0, 40), 16, FS_ERR_OBJ_NO_DATA, 0xFFFFFFFF},
      {"output just fits", raw_header(16, 0, 40), 17, FS_BLK_COMPLETE, 16},
      {"empty name", raw_header(0, 0, 24), 1, FS_BLK_COMPLETE, 0},
  };
  ZYM_ENCRYPTION_CONTEXT* cipher = new_cipher();
  for (auto const& c : cases) {
    std::vector<unsigned char> stream = c.stream;  // exact size: ASan sees any overread
    std::vector<unsigned char> out(c.capacity);
    std::uint32_t length = 0xFFFFFFFF;
    EXPECT_EQ(FS_DecryptNameInStream(cipher, stream.data(), static_cast<std::uint32_t>(stream.size()),
                                     out.data(), c.capacity, &length),
              c.status) << c.what;
    EXPECT_EQ(length, c.out_length) << c.what;
  }
  std::uint32_t length = 0;
  auto ok = raw_header(0, 0, 24);
  EXPECT_EQ(FS_DecryptNameInStream(nullptr, ok.data(), 24, ok.data(), 24, &length), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(FS_DecryptNameInStream(cipher, ok.data(), 24, nullptr, 24, &length), FS_ERR_OBJ_NO_DATA);
  ZymDestroyContext(cipher);
}

class EncryptedNames : public DblkTest,
                       public ::testing::WithParamInterface<std::uint8_t> {};

TEST_P(EncryptedNames, RoundTripThroughTheHostCipherInRandomPieces) {
  std::uint8_t const flags = GetParam();
  ZYM_ENCRYPTION_CONTEXT* writer = new_cipher();
  ZYM_ENCRYPTION_CONTEXT* reader = new_cipher();
  ASSERT_EQ(FS_PrepCryptEnv(hand_, reader), ZYM_OK);
  std::mt19937 random(20261123u + flags);
  for (int round = 0; round < 200; ++round) {
    std::wstring name;
    for (int n = 1 + static_cast<int>(random() % 60); n > 0; --n)
      name.push_back(static_cast<wchar_t>(0x20 + random() % 0x3000));
    fake().os_name = name;
    std::vector<unsigned char> iv(random() % 40);
    for (auto& b : iv) b = static_cast<unsigned char>(random());

    ZymResetEncryptionIV(writer);
    if (flags == FS_NAME_STREAM_IV_V1) ZymUpdateEncryptionIV_V1(writer, iv.data(), static_cast<unsigned>(iv.size()));
    if (flags == FS_NAME_STREAM_IV_V2) ZymUpdateEncryptionIV_V2(writer, iv.data(), static_cast<unsigned>(iv.size()));
    DBLK source = block(DBLK_KIND_FDB);
    std::vector<unsigned char> encrypted((name.size() + 1) * sizeof(wchar_t));
    std::uint16_t const length = FS_GetEncryptedNameFromDBLK(hand_, &source, writer, encrypted.data());
    ASSERT_EQ(length, name.size() * sizeof(wchar_t));
    encrypted.resize(length);
    ASSERT_NE(std::memcmp(encrypted.data(), name.data(), length), 0);

    std::vector<unsigned char> const stream = frame(encrypted, flags, iv);
    STREAM_INFO header{};
    FS_InitStrmInfo(&header, STRM_FILE_NAME, 0, static_cast<unsigned>(stream.size()));
    header.tf_attrib = STREAM_TF_ENCRYPTED_NAME;
    DBLK target = block(DBLK_KIND_FDB);
    ZymResetEncryptionIV(reader);
    FS_STATUS status = FS_SUCCESS;
    for (std::size_t at = 0; at < stream.size() && status == FS_SUCCESS;) {
      std::vector<unsigned char> piece(stream.begin() + static_cast<long>(at),
                                       stream.begin() + static_cast<long>(std::min(stream.size(), at + 1 + random() % 24)));
      unsigned int len = static_cast<unsigned int>(piece.size());
      status = FS_FillBufferWithStream(hand_, &target, piece.data(), &len, at == 0 ? &header : nullptr);
      at += len;
    }
    ASSERT_EQ(status, FS_BLK_COMPLETE) << "round " << round;
    STREAM_INFO* got = nullptr;
    unsigned char* text = nullptr;
    FS_GetStreamInfo(hand_, &target, &got, &text);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text, hand_->decryptBuf);
    EXPECT_EQ(got->size, length);
    EXPECT_EQ(std::memcmp(text, name.data(), length), 0) << "round " << round;
    EXPECT_EQ(text[length], 0);

    std::vector<unsigned char> bare(length + 1u);
    EXPECT_EQ(FS_SetDecryptedNameInBuf(hand_, writer, encrypted.data(), length, bare.data(),
                                       length + 1u), length);
    EXPECT_EQ(std::memcmp(bare.data(), name.data(), length), 0);
    EXPECT_EQ(FS_SetDecryptedNameInBuf(hand_, writer, encrypted.data(), length, bare.data(), length), 0);
    EXPECT_EQ(bare[0], 0);
  }
  ZymDestroyContext(writer);
  ZymDestroyContext(reader);
  hand_->cryptContext = nullptr;
}

INSTANTIATE_TEST_SUITE_P(IvVariants, EncryptedNames,
                         ::testing::Values(std::uint8_t{0}, FS_NAME_STREAM_IV_V1, FS_NAME_STREAM_IV_V2));

TEST_F(DblkTest, EncryptingNeedsANameFromTheFileSystem) {
  ZYM_ENCRYPTION_CONTEXT* cipher = new_cipher();
  DBLK blk = block(DBLK_KIND_FDB);
  unsigned char out[64] = {};
  _FUNC_LIST empty{};
  hand_->funcTable = &empty;
  EXPECT_EQ(FS_GetEncryptedNameFromDBLK(hand_, &blk, cipher, out), 0);
  hand_->funcTable = &table_;
  use_adapter();
  fake().os_name = L"abc";
  EXPECT_EQ(FS_GetEncryptedNameFromDBLK(hand_, &blk, cipher, out), 12);
  EXPECT_EQ(fake().adapter_calls, 2);
  EXPECT_EQ(FS_GetEncryptedNameFromDBLK(hand_, &blk, nullptr, out), 0);
  ZymDestroyContext(cipher);
}

}  // namespace
