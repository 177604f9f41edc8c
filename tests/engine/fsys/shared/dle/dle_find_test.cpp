// DLE_FindByName and DLE_FindPdiByName.
#include "dle_fixture.h"
#include <qbfsys/gen.h>

namespace {

using qbtest::DleTest;

struct FindCase {
  wchar_t const* element;  // device name of the only element
  std::uint32_t type;
  std::uint32_t subtype;
  wchar_t const* name;  // name searched for
  short wanted;         // requested type
  bool found;
};

class FindOne : public DleTest, public ::testing::WithParamInterface<FindCase> {};

TEST_P(FindOne, Matches) {
  FindCase const& c = GetParam();
  GENERIC_DLE* dle = add(c.element, c.type, c.subtype);
  GENERIC_DLE* out = nullptr;
  FS_STATUS status = DLE_FindByName(head_, c.name, c.wanted, &out, nullptr);
  EXPECT_EQ(status, c.found ? FS_SUCCESS : FS_ERR_NOT_SUPPORTED);
  EXPECT_EQ(out, c.found ? dle : nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, FindOne,
    ::testing::Values(
        FindCase{L"vol", 3, 0, L"VOL", 3, true},           // case-insensitive
        FindCase{L"vol", 3, 0, L"vol", 4, false},          // type filter
        FindCase{L"vol", 3, 0, L"vol", -1, true},          // -1 is any type
        FindCase{L"db", 36, 0, L"db", 21, true},           // 21 stands for 36
        FindCase{L"db", 21, 0, L"db", 36, true},           // and 36 for 21
        FindCase{L"SRV", 5, 4, L"SRV", 5, true},           // share root: itself
        FindCase{L"SRV", 5, 4, L"srv\\share", 5, true},    // and below it
        FindCase{L"SRV", 5, 4, L"SRVX", 5, false},         // not a longer name
        FindCase{L"SRV", 5, 4, L"SR", 5, false},           // nor a shorter one
        FindCase{L"SRV", 5, 3, L"SRV\\share", 5, false},   // other subtypes: exact
        // 21/36 with subtypes 12, 9, 6: server part and the text from '('.
        FindCase{L"host\\x(inst)", 21, 12, L"host\\y(INST)", 21, true},
        FindCase{L"host\\x(inst)", 21, 9, L"host\\y(other)", 21, false},
        FindCase{L"host\\x(inst)", 36, 6, L"host(inst)", 36, false},  // needs a '\'
        FindCase{L"host\\xinst", 36, 6, L"host\\y(inst)", 36, false}, // device needs '('
        FindCase{L"hostA\\x(i)", 21, 12, L"hostB\\x(i)", 21, false},
        // Other subtypes: "name(" prefix, then the backslash parts.
        FindCase{L"srv(inst)", 21, 1, L"SRV(inst)", 21, true},
        FindCase{L"srv(inst)\\db", 21, 1, L"srv(other)\\DB", 21, true},
        FindCase{L"srv(inst)\\db", 21, 1, L"srv(inst)", 21, false},  // only one has '\'
        FindCase{L"srv(inst)\\db", 21, 1, L"srv(inst)\\other", 21, false},
        FindCase{L"srv\\x(inst)", 21, 1, L"srv\\x(inst)", 21, true},  // '\' before '(': exact
        FindCase{L"plain", 21, 1, L"PLAIN", 21, true},
        // A weak 21 is "neither 21 nor 36" by its raw type: compared exactly.
        FindCase{L"srv(inst)", 21 | DLE_WEAK, 1, L"srv(other)", 21, false}));

TEST_F(DleTest, NullNameGivesTheDefaultElement) {
  GENERIC_DLE* out = reinterpret_cast<GENERIC_DLE*>(&out);
  EXPECT_EQ(DLE_FindByName(head_, nullptr, -1, &out, nullptr), FS_ERR_NOT_SUPPORTED);
  EXPECT_EQ(out, nullptr);
  GENERIC_DLE* d = add(L"d", 1);
  head_->default_dle = d;
  EXPECT_EQ(DLE_FindByName(head_, nullptr, 7, &out, nullptr), FS_SUCCESS);
  EXPECT_EQ(out, d);
  EXPECT_EQ(DLE_FindByName(head_, L"d", 1, nullptr, nullptr), FS_SUCCESS);  // out optional
  EXPECT_EQ(DLE_FindByName(nullptr, L"d", 1, &out, nullptr), FS_ERR_NOT_SUPPORTED);
}

TEST_F(DleTest, ChildMatchIsFoundBeforeItsParentAndParentLimitsTheSearch) {
  GENERIC_DLE* parent = add(L"same", 3);
  GENERIC_DLE* child = add(L"same", 3, 0, parent);
  GENERIC_DLE* out = nullptr;
  ASSERT_EQ(DLE_FindByName(head_, L"same", 3, &out, nullptr), FS_SUCCESS);
  EXPECT_EQ(out, child);
  GENERIC_DLE* other = add(L"other", 3);
  EXPECT_EQ(DLE_FindByName(head_, L"same", 3, &out, other), FS_ERR_NOT_SUPPORTED);
  EXPECT_EQ(DLE_FindByName(head_, L"same", 3, &out, parent), FS_SUCCESS);
  EXPECT_EQ(out, child);
}

TEST_F(DleTest, WeakMatchIsProvisionalAndReplacedByALaterStrongOne) {
  GENERIC_DLE* weak = add(L"x", 3 | DLE_WEAK, 0);
  GENERIC_DLE* out = nullptr;
  ASSERT_EQ(DLE_FindByName(head_, L"x", 3, &out, nullptr), FS_SUCCESS);
  EXPECT_EQ(out, weak);  // nothing better: the weak one is the answer
  GENERIC_DLE* parent = add(L"later", 0x9000);  // sorts after the weak element
  GENERIC_DLE* strong = add(L"x", 3, 0, parent);
  ASSERT_EQ(names(head_->dle_q), (std::vector<std::wstring>{L"x", L"later"}));
  ASSERT_EQ(DLE_FindByName(head_, L"x", 3, &out, nullptr), FS_SUCCESS);
  EXPECT_EQ(out, strong);
  // A strong match found first ends the search: a weak one after it is not seen.
  strong->type = 3 | DLE_WEAK;
  weak->type = 3;
  ASSERT_EQ(DLE_FindByName(head_, L"x", 3, &out, nullptr), FS_SUCCESS);
  EXPECT_EQ(out, weak);
}

TEST_F(DleTest, SecondListIsSearchedByBothNames) {
  GENERIC_DLE* out = nullptr;
  EXPECT_EQ(DLE_FindPdiByName(head_, L"a", 0, &out), FS_ERR_NOT_SUPPORTED);
  GENERIC_DLE* a1 = add(L"pdi-holder", 1);  // created at top level, then moved
  RemoveQueueElem(&head_->dle_q, &a1->q);
  a1->top_level_flag = 1;
  ASSERT_EQ(DLE_SetName(a1, DLE_NAME_DEVICE, L"A"), FS_SUCCESS);
  ASSERT_EQ(DLE_SetName(a1, DLE_NAME_SECONDARY, L"one"), FS_SUCCESS);
  EnQueueElem(&head_->pdi_q, &a1->q);
  GENERIC_DLE* a2 = add(L"A", 1);
  RemoveQueueElem(&head_->dle_q, &a2->q);
  a2->top_level_flag = 1;
  ASSERT_EQ(DLE_SetName(a2, DLE_NAME_SECONDARY, L"two"), FS_SUCCESS);
  EnQueueElem(&head_->pdi_q, &a2->q);

  EXPECT_EQ(DLE_FindPdiByName(head_, L"a", 0, &out), FS_SUCCESS);
  EXPECT_EQ(out, a1);
  EXPECT_EQ(DLE_FindPdiByName(head_, L"a", L"TWO", 0, &out), FS_SUCCESS);
  EXPECT_EQ(out, a2);
  EXPECT_EQ(DLE_FindPdiByName(head_, L"a", L"three", 0, &out), FS_ERR_NOT_SUPPORTED);
  EXPECT_EQ(DLE_FindPdiByName(head_, nullptr, 0, &out), FS_ERR_NOT_SUPPORTED);
  // Elements of the second queue are not released with the tree.
  GEN_RemoveDLE(a1);
  GEN_RemoveDLE(a2);
  EXPECT_EQ(head_->pdi_q.q_count, 0);
}

}  // namespace
