// The words and names the layer gives its statuses, as a host printing a
// message sees them.
#include <cstring>
#include <set>
#include <string>

#include <gtest/gtest.h>
#include <qbfsys/fs_status.h>

namespace {

struct Listed {
  FS_STATUS code;
  char const* name;
};
#define LISTED_(name, code, words) {name, #name},
constexpr Listed kListed[] = {FS_STATUS_LIST(LISTED_)};
#undef LISTED_

bool listed(FS_STATUS code) {
  for (Listed const& l : kListed)
    if (l.code == code) return true;
  return false;
}

// Two statuses with the same words could not be told apart in a message.
TEST(StatusText, EveryListedCodeHasWordsOfItsOwn) {
  std::set<std::string> seen;
  for (Listed const& l : kListed) {
    char const* words = FS_StatusText(l.code);
    ASSERT_NE(words, nullptr) << l.name;
    EXPECT_GT(std::strlen(words), 0u) << l.name;
    EXPECT_STRNE(words, FS_StatusText(0xE0001234)) << l.name << " reads as an unknown status";
    EXPECT_TRUE(seen.insert(words).second) << l.name << " has the words of another status: " << words;
    ASSERT_NE(FS_StatusName(l.code), nullptr) << l.name;
    EXPECT_STREQ(FS_StatusName(l.code), l.name);
  }
}

// A module's own code, or any other number, gets the one fixed text and no
// name, never a null pointer.
TEST(StatusText, AnUnknownCodeGetsTheFixedText) {
  for (FS_STATUS code : {0x00000001u, 0x2000FE08u, 0xE0001234u, 0xE000FE4Au, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
    ASSERT_FALSE(listed(code)) << std::hex << code;
    ASSERT_NE(FS_StatusText(code), nullptr);
    EXPECT_STREQ(FS_StatusText(code), "unknown status") << std::hex << code;
    EXPECT_EQ(FS_StatusName(code), nullptr) << std::hex << code;
  }
}

}  // namespace
