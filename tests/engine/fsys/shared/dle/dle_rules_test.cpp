// Exclusion and agent-warning rules: which rule gives the reason, and how
// an object's path is built from a handle's current path and its name.
#include <locale.h>

#include <cstdlib>
#include <memory>
#include <random>
#include <type_traits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "test_records.h"
#include <qbfsys/qbfsys.h>

namespace {

// A path in component form with its byte count (terminator included).
struct Path {
  std::vector<wchar_t> text;
  short bytes() const { return static_cast<short>(text.size() * sizeof(wchar_t)); }
};
Path components(std::wstring const& slashed) {
  Path p;
  for (wchar_t c : slashed) p.text.push_back(c == L'/' ? L'\0' : c);
  p.text.push_back(L'\0');
  return p;
}

class DleRules : public ::testing::Test {
 protected:
  void SetUp() override {
    head_ = qbtest::new_empty_head();
    ASSERT_EQ(DLE_Create(head_, nullptr, L"/srv", 7, 2, L'/', &dle_), FS_SUCCESS);
  }
  void TearDown() override {
    GEN_RemoveDLE(dle_);  // frees the rules with the DLE (the leak check proves it)
    FS_DeinitDleList(head_);
  }

  HEAD_DLE* head_ = nullptr;
  GENERIC_DLE* dle_ = nullptr;
};

TEST_F(DleRules, ExactPathsWinThenTheFirstPattern) {
  ASSERT_EQ(DLE_AddSpecObj(dle_, L"*.tmp", DLE_RULE_PATTERN, 1), FS_SUCCESS);
  ASSERT_EQ(DLE_AddSpecObj(dle_, L"var/*", DLE_RULE_PATTERN, 2), FS_SUCCESS);
  ASSERT_EQ(DLE_AddSpecObj(dle_, L"/var/x.tmp", DLE_RULE_PATH, 3), FS_SUCCESS);  // leading '/' ignored
  ASSERT_EQ(DLE_AddSpecObj(dle_, L"home/a", DLE_RULE_PATH, 4), FS_SUCCESS);
  struct Case {
    std::wstring path;
    std::uint32_t reason;
  } const cases[] = {
      {L"var/x.tmp", 3},   // the exact path beats both patterns
      {L"var/y.tmp", 2},   // "var/*" comes second but "*.tmp" stays in one component
      {L"y.tmp", 1},
      {L"home/a", 4},
      {L"home/a/b", 0},
      {L"HOME/A", 0},      // exact paths compare exactly
      {L"Y.TMP", 1},       // patterns do not care about case
  };
  for (auto const& c : cases) {
    Path const p = components(c.path);
    EXPECT_EQ(DLE_GetExcludeReason(dle_, p.text.data(), p.bytes()), c.reason) << std::string(c.path.begin(), c.path.end());
  }
  wchar_t const delimited[] = L"var/x.tmp";  // the DLE's delimiter also separates
  EXPECT_EQ(DLE_GetExcludeReason(dle_, delimited, sizeof delimited), 3u);
  wchar_t const terminator[] = L"";
  EXPECT_EQ(DLE_GetExcludeReason(dle_, terminator, 4), 0u);
  EXPECT_EQ(DLE_GetExcludeReason(nullptr, delimited, sizeof delimited), 0u);
  EXPECT_EQ(DLE_AddSpecObj(dle_, L"", DLE_RULE_PATH, 1), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(DLE_AddSpecObj(dle_, L"x", static_cast<DLE_RULE_KIND>(7), 1), FS_ERR_BAD_PARAMETER);
  DLE_RemoveSpecObjs(dle_);
  EXPECT_EQ(DLE_GetExcludeReason(dle_, delimited, sizeof delimited), 0u);
}

TEST_F(DleRules, WarningRulesLiveApart) {
  wchar_t const db[] = L"db/live.db";
  EXPECT_EQ(DLE_GetWarningReason(dle_, db, sizeof db), 0u);
  ASSERT_EQ(DLE_AddAgentWarningObj(dle_, L"db/*.db", DLE_RULE_PATTERN, 9), FS_SUCCESS);
  ASSERT_EQ(DLE_AddAgentWarningObj(dle_, L"db/live.db", DLE_RULE_PATH, 8), FS_SUCCESS);
  EXPECT_EQ(DLE_GetWarningReason(dle_, db, sizeof db), 8u);
  wchar_t const other[] = L"db/old.db";
  EXPECT_EQ(DLE_GetWarningReason(dle_, other, sizeof other), 9u);
  EXPECT_EQ(DLE_GetExcludeReason(dle_, other, sizeof other), 0u);
  DLE_RemoveAgentWarningObjs(dle_);
  EXPECT_EQ(DLE_GetWarningReason(dle_, other, sizeof other), 0u);
  ASSERT_EQ(DLE_AddAgentWarningObj(dle_, L"x", DLE_RULE_PATH, 1), FS_SUCCESS);  // freed with the DLE
}

// A path of 5 to 7 bytes holds no whole character: it is the empty path,
// and a rule for "" (which modules can put in the maps themselves) answers it.
TEST_F(DleRules, APathOfFiveToSevenBytesIsTheEmptyPath) {
  ASSERT_EQ(DLE_AddSpecObj(dle_, L"keep", DLE_RULE_PATH, 1), FS_SUCCESS);
  ASSERT_EQ(DLE_AddAgentWarningObj(dle_, L"keep", DLE_RULE_PATH, 1), FS_SUCCESS);
  (*dle_->exclude_paths)[L""] = 42;
  dle_->agent_warnings->paths[L""] = 43;
  wchar_t const path[2] = {L'\0', L'\0'};
  struct Case {
    short bytes;
    std::uint32_t reason;  // exclusion; the warning is this + 1 when set
  } const cases[] = {{3, 0}, {4, 0}, {5, 42}, {6, 42}, {7, 42}};
  for (auto const& c : cases) {
    EXPECT_EQ(DLE_GetExcludeReason(dle_, path, c.bytes), c.reason) << c.bytes << " bytes";
    EXPECT_EQ(DLE_GetWarningReason(dle_, path, c.bytes), c.reason == 0 ? 0 : c.reason + 1) << c.bytes << " bytes";
  }
}

// Modules can reach the pattern lists of a DLE and change them without the
// rule API. A lookup must answer by the list as it is now, not by the index
// it built from the list as it was.
DLE_SPEC_PATTERN* new_entry(std::wstring const& text, std::uint32_t reason) {
  std::size_t const bytes = (text.size() + 1) * sizeof(wchar_t);
  auto* entry = static_cast<DLE_SPEC_PATTERN*>(std::calloc(1, sizeof(DLE_SPEC_PATTERN) + bytes));
  entry->reason = reason;
  entry->size = static_cast<std::int16_t>(bytes);
  std::copy(text.c_str(), text.c_str() + text.size() + 1, entry->pattern);
  return entry;
}

TEST_F(DleRules, LookupsFollowPatternListsChangedBehindTheRuleApi) {
  struct Edit {
    char const* what;
    void (*change)(GENERIC_DLE* dle);
    wchar_t const* path;
    std::uint32_t exclusion;
    std::uint32_t warning;
  } const edits[] = {
      {"an entry linked at the head", [](GENERIC_DLE* d) {
         DLE_SPEC_PATTERN* e = new_entry(L"*.log", 7);
         e->next = d->exclude_patterns;
         d->exclude_patterns = e;
         d->agent_warnings->patterns.insert(d->agent_warnings->patterns.begin(), {L"*.log", 7});
       }, L"a.log", 7, 7},
      {"an entry linked at the tail", [](GENERIC_DLE* d) {
         DLE_SPEC_PATTERN** tail = &d->exclude_patterns;
         while (*tail != nullptr) tail = &(*tail)->next;
         *tail = new_entry(L"*.bak", 8);
         d->agent_warnings->patterns.push_back({L"*.bak", 8});
       }, L"a.bak", 8, 8},
      {"the first entry unlinked", [](GENERIC_DLE* d) {
         DLE_SPEC_PATTERN* first = d->exclude_patterns;
         d->exclude_patterns = first->next;
         std::free(first);
         d->agent_warnings->patterns.erase(d->agent_warnings->patterns.begin());
       }, L"a.log", 0, 0},
      {"a reason changed in place", [](GENERIC_DLE* d) {
         d->exclude_patterns->reason = 9;
         d->agent_warnings->patterns.front().second = 9;
       }, L"a.tmp", 9, 9},
      {"an entry replaced by another", [](GENERIC_DLE* d) {
         DLE_SPEC_PATTERN* old = d->exclude_patterns;
         DLE_SPEC_PATTERN* fresh = new_entry(L"*.tmq", 10);
         fresh->next = old->next;
         d->exclude_patterns = fresh;
         std::free(old);
         d->agent_warnings->patterns.front() = {L"*.tmq", 10};
       }, L"a.tmq", 10, 10},
  };
  ASSERT_EQ(DLE_AddSpecObj(dle_, L"*.tmp", DLE_RULE_PATTERN, 1), FS_SUCCESS);
  ASSERT_EQ(DLE_AddAgentWarningObj(dle_, L"*.tmp", DLE_RULE_PATTERN, 1), FS_SUCCESS);
  for (auto const& e : edits) {
    Path const p = components(e.path);
    // A lookup first, so that an index over the list as it was exists.
    DLE_GetExcludeReason(dle_, p.text.data(), p.bytes());
    DLE_GetWarningReason(dle_, p.text.data(), p.bytes());
    e.change(dle_);
    EXPECT_EQ(DLE_GetExcludeReason(dle_, p.text.data(), p.bytes()), e.exclusion) << e.what;
    EXPECT_EQ(DLE_GetWarningReason(dle_, p.text.data(), p.bytes()), e.warning) << e.what;
  }
}

// A file system whose current directory and object name the test sets.
std::vector<wchar_t> g_current;  // component form, with the final terminator
std::wstring g_name;
int g_name_size_override = -1;
int g_name_size_calls = 0;

_FUNC_LIST path_table() {
  _FUNC_LIST t{};
  t.GetCurrentPath = [](FSYS_HAND_STRUCT*, wchar_t* out, short* size) -> FS_STATUS {
    short const bytes = static_cast<short>(g_current.size() * sizeof(wchar_t));
    if (bytes > *size) return FS_ERR_OBJ_NO_DATA;
    std::copy(g_current.begin(), g_current.end(), out);
    *size = bytes;
    return FS_SUCCESS;
  };
  t.SizeofOSName = [](FSYS_HAND_STRUCT*, DBLK*, bool) -> FS_STATUS {
    ++g_name_size_calls;
    if (g_name_size_override >= 0) return static_cast<FS_STATUS>(g_name_size_override);
    return static_cast<FS_STATUS>((g_name.size() + 1) * sizeof(wchar_t));
  };
  t.GetOSName = [](FSYS_HAND_STRUCT*, DBLK*, wchar_t* out, bool) -> FS_STATUS {
    std::copy(g_name.c_str(), g_name.c_str() + g_name.size() + 1, out);
    return FS_SUCCESS;
  };
  return t;
}

TEST_F(DleRules, ObjectsAreLookedUpByTheirPathAndMarkedOnce) {
  ASSERT_EQ(DLE_AddSpecObj(dle_, L"*.o", DLE_RULE_PATTERN, 0x100), FS_SUCCESS);
  ASSERT_EQ(DLE_AddSpecObj(dle_, L"build", DLE_RULE_PATH, 0x200), FS_SUCCESS);
  ASSERT_EQ(DLE_AddSpecObj(dle_, L"src/main.o", DLE_RULE_PATH, 0x400), FS_SUCCESS);
  ASSERT_EQ(DLE_AddSpecObj(dle_, L"**.obj", DLE_RULE_PATTERN, 0x800), FS_SUCCESS);
  _FUNC_LIST table = path_table();
  QB_CFG cfg{};
  FSYS_HAND_STRUCT* hand = nullptr;
  ASSERT_EQ(FS_OpenFileSys(&hand, 7, &cfg, &table), FS_SUCCESS);
  hand->dle = dle_;
  struct Case {
    std::uint8_t kind;
    std::vector<wchar_t> current;
    std::wstring name;
    int name_size;  // -1: the name's own
    std::uint32_t flags_before;
    std::uint32_t flags_after;
  } const cases[] = {
      {DBLK_KIND_FDB, {L's', L'r', L'c', 0}, L"main.o", -1, 0, 0x400},
      {DBLK_KIND_FDB, {0}, L"a.o", -1, 0, 0x100},                 // in the root: the name alone
      {DBLK_KIND_FDB, {L's', 0}, L"a.o", -1, 0, 0},               // one '*' stays in one component
      {DBLK_KIND_FDB, {L's', 0}, L"a.obj", -1, 0, 0x800},         // "**" crosses them
      {DBLK_KIND_DDB, {L'x', 0}, L"build", -1, 0, 0x200},         // a directory: its name alone
      {DBLK_KIND_FDB, {0}, L"a.o", -1, 0x08000000, 0x08000000},   // marked already
      {DBLK_KIND_FDB, {0}, L"a.o", -1, 0x10000000, 0x10000000},
      {DBLK_KIND_FDB, {0}, L"a.o", 1020, 0, 0},                   // name too long for a file
      {DBLK_KIND_DDB, {0}, L"build", 1040, 0, 0},                 // ... and for a directory
      {DBLK_KIND_CFDB, {0}, L"a.o", -1, 0, 0},
  };
  for (auto const& c : cases) {
    g_current = c.current;
    g_name = c.name;
    g_name_size_override = c.name_size;
    DBLK blk{};
    blk.blk_type = c.kind;
    blk.obj_flags = c.flags_before;
    g_name_size_calls = 0;
    FS_GetSpecialAttribs(hand, &blk);
    EXPECT_EQ(blk.obj_flags, c.flags_after) << std::string(c.name.begin(), c.name.end());
    // Neither a file nor a directory: the file system is not asked at all.
    if (c.kind != DBLK_KIND_FDB && c.kind != DBLK_KIND_DDB) {
      EXPECT_EQ(g_name_size_calls, 0);
    }
  }
  g_name_size_override = -1;
  hand->dle = nullptr;
  FS_CloseFileSys(hand);
}

TEST_F(DleRules, TheWarningCacheAnswersTwoWays) {
  _FUNC_LIST table = path_table();
  QB_CFG cfg{};
  FSYS_HAND_STRUCT* hand = nullptr;
  ASSERT_EQ(FS_OpenFileSys(&hand, 7, &cfg, &table), FS_SUCCESS);
  hand->dle = dle_;
  DBLK blk{};
  blk.blk_type = DBLK_KIND_FDB;
  unsigned int flag = 77;
  EXPECT_EQ(FS_GetAgentWarningFlag(hand, &blk, &flag), FS_ERR_NOT_SUPPORTED);  // no rules
  EXPECT_EQ(flag, 0u);
  ASSERT_EQ(DLE_AddAgentWarningObj(dle_, L"*.db", DLE_RULE_PATTERN, 5), FS_SUCCESS);
  g_current = {0};
  g_name = L"notes.txt";
  EXPECT_EQ(FS_GetAgentWarningFlag(hand, &blk, &flag), FS_ERR_NOT_SUPPORTED);  // looked, nothing
  EXPECT_EQ(blk.agent_warning, DBLK_WARNING_CACHED);
  EXPECT_EQ(FS_GetAgentWarningFlag(hand, &blk, &flag), FS_SUCCESS);  // the cached answer
  EXPECT_EQ(flag, 0u);
  DBLK db{};
  db.blk_type = DBLK_KIND_FDB;
  g_name = L"live.db";
  EXPECT_EQ(FS_GetAgentWarningFlag(hand, &db, &flag), FS_SUCCESS);
  EXPECT_EQ(flag, 5u);
  EXPECT_EQ(db.agent_warning, DBLK_WARNING_CACHED | 5u);
  // A path that cannot be built gives no answer: `*flag` keeps what the
  // caller put there, and another kind stops before the name is asked for.
  struct Stop {
    std::uint8_t kind;
    int name_size;
    int name_size_calls;
  } const stops[] = {{DBLK_KIND_FDB, 1020, 1}, {DBLK_KIND_DDB, 1040, 1}, {DBLK_KIND_CFDB, -1, 0}};
  for (auto const& stop : stops) {
    DBLK other{};
    other.blk_type = stop.kind;
    g_name_size_override = stop.name_size;
    g_name_size_calls = 0;
    flag = 77;
    EXPECT_EQ(FS_GetAgentWarningFlag(hand, &other, &flag), FS_ERR_NOT_SUPPORTED);
    EXPECT_EQ(flag, 77u) << int(stop.kind);
    EXPECT_EQ(other.agent_warning, 0u);
    EXPECT_EQ(g_name_size_calls, stop.name_size_calls) << int(stop.kind);
  }
  g_name_size_override = -1;
  hand->dle = nullptr;
  FS_CloseFileSys(hand);
}

// The patterns are found through an index; its answer must be the plain
// walk's, the first pattern in list order that FS_CompareFileSpec accepts,
// for every rule list and path, under any locale, and after the rules change.
TEST_F(DleRules, IndexedLookupAgreesWithThePlainWalk) {
  char const* seed_text = std::getenv("QB_TEST_SEED");
  unsigned const seed = seed_text != nullptr ? static_cast<unsigned>(std::atoi(seed_text)) : 20261123u;
  SCOPED_TRACE("QB_TEST_SEED=" + std::to_string(seed));
  std::mt19937 rng(seed);
  wchar_t const alphabet[] = L"aAbB.c/*?~";
  auto random_text = [&](std::size_t most, std::size_t kinds) {
    std::wstring text(1 + rng() % most, L'a');
    for (wchar_t& c : text) c = alphabet[rng() % kinds];
    return text;
  };
  std::unique_ptr<std::remove_pointer_t<locale_t>, void (*)(locale_t)> const utf8(
      newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(nullptr)), [](locale_t l) {
        uselocale(LC_GLOBAL_LOCALE);
        if (l != static_cast<locale_t>(nullptr)) freelocale(l);
      });
  std::vector<std::pair<std::wstring, std::uint32_t>> rules;  // component form
  int matched = 0;
  for (int round = 0; round < 40; ++round) {
    if (round % 10 == 0) {
      DLE_RemoveSpecObjs(dle_);
      DLE_RemoveAgentWarningObjs(dle_);
      rules.clear();
    }
    for (int i = 0, n = 1 + static_cast<int>(rng() % 30); i < n; ++i) {
      std::wstring rule = random_text(8, 10);
      std::uint32_t const reason = 1 + static_cast<std::uint32_t>(rules.size());
      if (DLE_AddSpecObj(dle_, rule.c_str(), DLE_RULE_PATTERN, reason) != FS_SUCCESS) continue;
      ASSERT_EQ(DLE_AddAgentWarningObj(dle_, rule.c_str(), DLE_RULE_PATTERN, reason), FS_SUCCESS);
      while (!rule.empty() && rule.front() == L'/') rule.erase(0, 1);
      for (wchar_t& c : rule) c = c == L'/' ? L'\0' : c;
      rules.emplace_back(rule + L'\0', reason);
    }
    if (utf8 != nullptr) uselocale(round % 2 ? utf8.get() : LC_GLOBAL_LOCALE);
    for (int i = 0; i < 500; ++i) {
      Path path = components(random_text(12, 8));
      // Exclusion patterns are compared with their terminator, warning
      // patterns (held as strings) without it.
      auto first_match = [&](std::size_t terminator) -> std::uint32_t {
        for (auto& [pattern, reason] : rules) {
          if (FS_CompareFileSpec(path.text.data(), static_cast<short>(path.text.size()), pattern.data(),
                                 static_cast<short>(pattern.size() - 1 + terminator), 0, 0, 0) == FS_SPEC_MATCH)
            return reason;
        }
        return 0;
      };
      std::uint32_t const expected = first_match(1);
      matched += expected != 0;
      ASSERT_EQ(DLE_GetExcludeReason(dle_, path.text.data(), path.bytes()), expected)
          << "round " << round << " path " << std::wstring(path.text.begin(), path.text.end()).c_str();
      ASSERT_EQ(DLE_GetWarningReason(dle_, path.text.data(), path.bytes()), first_match(0));
    }
  }
  EXPECT_GT(matched, 1000);  // the draw must exercise matches, not only misses
}

}  // namespace
