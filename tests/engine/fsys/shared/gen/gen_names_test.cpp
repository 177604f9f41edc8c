// Names of the generic file system: prefixed block names, restore paths,
// device display names and the set-copy blob.
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "capture.h"
#include <qbfsys/qbfsys.h>

namespace {

TEST(GenMakePath, RootOneComponentAndTheSizeLimits) {
  GENERIC_DLE dle{};
  wchar_t device[] = L"C:";
  dle.device_name = device;
  wchar_t const root[] = {L'\0'};
  wchar_t const one[] = {L'a', L'\0'};
  wchar_t const two[] = {L'a', L'\0', L'b', L'c', L'\0'};
  struct Case {
    wchar_t const* path;
    short path_size;
    wchar_t const* name;
    GENERIC_DLE* dle;
    std::wstring expected;
  } const cases[] = {
      {root, 4, L"x", &dle, L"C:\\x"},
      {one, 8, L"x", &dle, L"C:\\a\\x"},
      {two, 20, L"f.txt", &dle, L"C:\\a\\bc\\f.txt"},
      {two, 20, nullptr, nullptr, L"\\a\\bc\\"},
  };
  for (auto const& c : cases) {
    std::vector<wchar_t> out(64, L'#');
    ASSERT_EQ(GEN_MakePath(out.data(), static_cast<short>(out.size() * sizeof(wchar_t)), c.dle, c.path,
                           c.path_size, c.name),
              FS_SUCCESS);
    EXPECT_EQ(std::wstring(out.data()), c.expected);
    // A buffer one character short of the result is refused; it is exact,
    // so the sanitizer would see any write past it.
    std::size_t const chars = c.expected.size();
    std::vector<wchar_t> shorter(chars);
    EXPECT_EQ(GEN_MakePath(shorter.data(), static_cast<short>(chars * sizeof(wchar_t)), c.dle, c.path,
                           c.path_size, c.name),
              FS_ERR_OBJ_NO_DATA);
  }
  wchar_t const unterminated[] = {L'a', L'b'};
  wchar_t out[16];
  EXPECT_EQ(GEN_MakePath(out, sizeof out, &dle, unterminated, 8, nullptr), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(GEN_MakePath(out, sizeof out, &dle, root, -4, nullptr), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(GEN_MakePath(out, sizeof out, &dle, root, 6, nullptr), FS_ERR_BAD_PARAMETER);
}

TEST(GenDeviceNames, DisplayNameLimitsAndAlternateNames) {
  GENERIC_DLE dle{};
  wchar_t device[] = L"/srv/data";
  wchar_t alternate[] = L"data";
  dle.device_name = device;
  dle.alt_name = alternate;
  wchar_t buffer[16];
  EXPECT_EQ(GEN_DeviceDispName(&dle, buffer, 23), FS_ERR_OBJ_NO_DATA);
  ASSERT_EQ(GEN_DeviceDispName(&dle, buffer, 24), FS_SUCCESS);
  EXPECT_EQ(std::wstring(buffer), L"/srv/");  // five characters and the terminator
  EXPECT_EQ(GEN_SizeofDevName(&dle), (9u + 1) * 4);
  dle.name_flags = DLE_NAME_FLAG_ALTERNATE;
  ASSERT_EQ(GEN_GetVolName(&dle, buffer), FS_SUCCESS);
  EXPECT_EQ(std::wstring(buffer), L"data");
  EXPECT_EQ(GEN_SizeofVolName(&dle), (4u + 1) * 4);
}

TEST(GenBlockNames, PrefixedNamesAndTheirBounds) {
  QB_CFG cfg{};
  FSYS_HAND_STRUCT* hand = nullptr;
  ASSERT_EQ(FS_OpenFileSys(&hand, 3, &cfg, GetFuncTablePtr_GEN()), FS_SUCCESS);
  qbtest::MessageCapture messages;
  // A 16-bit length 5, padding to byte 8, then the name proper.
  std::vector<unsigned char> prefixed(8, 0);
  prefixed[0] = 5;
  std::wstring const proper = L"name";
  auto const* p = reinterpret_cast<unsigned char const*>(proper.c_str());
  prefixed.insert(prefixed.end(), p, p + (proper.size() + 1) * sizeof(wchar_t));
  struct Case {
    std::uint32_t subtype;
    std::uint8_t os_id, os_ver;
    std::uint8_t length_word;
    FS_STATUS size;
    bool printed;
  } const cases[] = {
      {9, 32, 1, 5, 20, false},   // prefixed: the element less 8 bytes
      {9, 81, 1, 5, 20, false},
      {9, 81, 0, 5, 28, false},   // version 0: not prefixed
      {8, 32, 1, 5, 28, false},
      {9, 32, 1, 200, 0, true},   // a length word that points past the element
  };
  for (auto const& c : cases) {
    messages.clear();
    DBLK blk{};
    blk.blk_type = DBLK_KIND_FDB;
    blk.blk_subtype = c.subtype;
    blk.os_id = c.os_id;
    blk.os_ver = c.os_ver;
    prefixed[0] = c.length_word;
    ASSERT_EQ(FS_SetupOSPathOrNameInDBLK(hand, &blk, prefixed.data(), static_cast<std::uint16_t>(prefixed.size()), 0),
              FS_SUCCESS);
    EXPECT_EQ(GEN_SizeofName(hand, &blk, false), c.size);
    wchar_t name[16] = {};
    short room = sizeof name;
    EXPECT_EQ(GEN_ModName(hand, 0, &blk, name, &room), FS_SUCCESS);
    EXPECT_EQ(messages.has_prefix(L"File name: "), c.printed);
    if (c.size == 20) {
      EXPECT_EQ(std::wstring(name), L"name");
    }
    EXPECT_EQ(GEN_ModName(hand, 1, &blk, name, &room), FS_ERR_BAD_PARAMETER);  // never written
    short small = 4;
    EXPECT_EQ(GEN_ModName(hand, 0, &blk, name, &small), FS_ERR_OBJ_NO_DATA);
    FS_ReleaseOSPathOrNameInDBLK(hand, &blk);
  }
  DBLK none{};
  EXPECT_EQ(GEN_SizeofName(hand, &none, false), 0xFFFFFFFFu);
  FS_CloseFileSys(hand);
}

TEST(GenSetCopyBlob, GrowsWithSpareAndKeepsItsBufferForEmptyLoads) {
  SET_COPY_BLOB blob{};
  std::vector<unsigned char> data(1000, 7);
  ASSERT_EQ(GEN_LoadSetCopyBlob(1000, data.data(), &blob), FS_SUCCESS);
  EXPECT_EQ(blob.capacity, 1512u);
  unsigned char* const first = blob.data;
  ASSERT_EQ(GEN_LoadSetCopyBlob(1500, std::vector<unsigned char>(1500, 8).data(), &blob), FS_SUCCESS);
  EXPECT_EQ(blob.data, first);  // fits the spare
  EXPECT_EQ(blob.data[1499], 8);
  ASSERT_EQ(GEN_LoadSetCopyBlob(0, nullptr, &blob), FS_SUCCESS);
  EXPECT_EQ(blob.length, 0u);
  EXPECT_EQ(blob.data, first);
  EXPECT_EQ(GEN_LoadSetCopyBlob(5, nullptr, &blob), FS_ERR_BAD_PARAMETER);
  std::free(blob.data);
}

}  // namespace
