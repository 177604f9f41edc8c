// Sibling order, walks and simple names.
#include "dle_fixture.h"

namespace {

using qbtest::DleTest;
using Names = std::vector<std::wstring>;

TEST_F(DleTest, DriveLettersOrderByLetterAndNonDrivesByTypeSubtypeName) {
  add(L"D:", 1);
  add(L"C:", 1);
  add(L"vol", 3);
  EXPECT_EQ(names(head_->dle_q), (Names{L"C:", L"D:", L"vol"}));
  add(L"D:", 2);  // an equal letter goes after the existing one, whatever its type
  EXPECT_EQ(names(head_->dle_q), (Names{L"C:", L"D:", L"D:", L"vol"}));
  EXPECT_EQ(reinterpret_cast<GENERIC_DLE*>(head_->dle_q.q_head->q_next->q_next)->type, 2u);

  add(L"beta", 3, 1);
  add(L"Alpha", 3, 1);  // case-insensitive name order
  add(L"zeta", 3, 0);   // smaller subtype first
  EXPECT_EQ(names(head_->dle_q), (Names{L"C:", L"D:", L"D:", L"vol", L"zeta", L"Alpha", L"beta"}));
}

TEST_F(DleTest, NonDriveElementOfSmallerTypeStandsBeforeDriveLetters) {
  add(L"D:", 4);
  add(L"C:", 4);
  add(L"late", 5);
  add(L"other", 3);  // compared by type with the drive elements too: 3 < 4
  EXPECT_EQ(names(head_->dle_q), (Names{L"other", L"C:", L"D:", L"late"}));
  add(L"B:", 9);  // a new drive letter goes before the first non-drive element
  EXPECT_EQ(names(head_->dle_q), (Names{L"B:", L"other", L"C:", L"D:", L"late"}));
}

TEST_F(DleTest, WalksSkipHiddenElementsUnlessAsked) {
  GENERIC_DLE* a = add(L"a", 1);
  GENERIC_DLE* b = add(L"b", 1);
  GENERIC_DLE* c = add(L"c", 1);
  b->hidden = 1;
  GENERIC_DLE* cur = nullptr;
  ASSERT_EQ(DLE_GetFirst(head_, &cur, false), FS_SUCCESS);
  EXPECT_EQ(cur, a);
  ASSERT_EQ(DLE_GetNext(&cur, false), FS_SUCCESS);
  EXPECT_EQ(cur, c);
  ASSERT_EQ(DLE_GetPrev(&cur, false), FS_SUCCESS);
  EXPECT_EQ(cur, a);
  ASSERT_EQ(DLE_GetNext(&cur, true), FS_SUCCESS);
  EXPECT_EQ(cur, b);
  EXPECT_EQ(DLE_GetNext(&cur, true), FS_SUCCESS);
  EXPECT_EQ(DLE_GetNext(&cur, true), FS_STATUS_NO_MORE_DLE);
  EXPECT_EQ(cur, nullptr);

  a->hidden = c->hidden = 1;
  cur = a;
  EXPECT_EQ(DLE_GetFirst(head_, &cur, false), FS_STATUS_NO_MORE_DLE);
  EXPECT_EQ(cur, nullptr);
  EXPECT_EQ(DLE_GetFirst(head_, &cur, true), FS_SUCCESS);
  EXPECT_EQ(cur, a);

  GENERIC_DLE* x = add(L"x", 1, 0, a);
  add(L"y", 1, 0, a)->hidden = 1;
  ASSERT_EQ(DLE_GetFirstChild(a, &cur, false), FS_SUCCESS);
  EXPECT_EQ(cur, x);
  EXPECT_EQ(DLE_GetNext(&cur, false), FS_STATUS_NO_MORE_DLE);
  EXPECT_EQ(DLE_GetFirstChild(x, &cur, true), FS_STATUS_NO_MORE_DLE);
}

TEST_F(DleTest, WalksRefuseNullArguments) {
  GENERIC_DLE* cur = reinterpret_cast<GENERIC_DLE*>(&cur);
  EXPECT_EQ(DLE_GetFirst(nullptr, &cur, true), FS_STATUS_NO_MORE_DLE);
  EXPECT_EQ(cur, nullptr);
  EXPECT_EQ(DLE_GetFirst(head_, nullptr, true), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(DLE_GetNext(nullptr, true), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(DLE_GetPrev(&cur, true), FS_STATUS_NO_MORE_DLE);
  EXPECT_EQ(DLE_GetFirstChild(nullptr, &cur, true), FS_STATUS_NO_MORE_DLE);
  DLE_QueueInsert(nullptr, nullptr);
  DLE_QueueInsert(head_, nullptr);
  EXPECT_EQ(head_->dle_q.q_count, 0);
}

TEST_F(DleTest, SimpleNameIsTheSetOneOrTheTextAfterTheLastDelimiter) {
  GENERIC_DLE* d = add(L"\\\\srv\\share\\dir", 3);
  EXPECT_STREQ(DLE_GetSimpleName(d), L"dir");
  GENERIC_DLE* plain = add(L"plain", 3);
  EXPECT_STREQ(DLE_GetSimpleName(plain), L"plain");
  ASSERT_EQ(DLE_SetName(d, DLE_NAME_SIMPLE, L"short"), FS_SUCCESS);
  EXPECT_STREQ(DLE_GetSimpleName(d), L"short");
  EXPECT_EQ(DLE_GetSimpleName(nullptr), nullptr);
}

TEST_F(DleTest, CreateRefusesBadArgumentsAndLinksChildren) {
  GENERIC_DLE* out = reinterpret_cast<GENERIC_DLE*>(&out);
  EXPECT_EQ(DLE_Create(head_, nullptr, nullptr, 1, 0, L'\\', &out), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(DLE_Create(head_, nullptr, L"", 1, 0, L'\\', &out), FS_ERR_BAD_PARAMETER);
  EXPECT_EQ(DLE_Create(nullptr, nullptr, L"x", 1, 0, L'\\', &out), FS_ERR_BAD_PARAMETER);
  GENERIC_DLE* parent = add(L"parent", 1);
  GENERIC_DLE* child = add(L"child", 1, 0, parent);
  EXPECT_EQ(child->parent, parent);
  EXPECT_EQ(child->head, head_);
  EXPECT_EQ(parent->child_q.q_count, 1);
  EXPECT_EQ(child->device_name_size, 6 * sizeof(wchar_t));
  EXPECT_EQ(DLE_SetName(child, DLE_NAME_DEVICE, nullptr), FS_ERR_BAD_PARAMETER);
  EXPECT_STREQ(child->device_name, L"child");
  EXPECT_EQ(DLE_SetName(child, DLE_NAME_ALTERNATE, L"Child Volume"), FS_SUCCESS);
  child->name_flags = DLE_NAME_FLAG_ALTERNATE;
  EXPECT_STREQ(DLE_DisplayName(child), L"Child Volume");
}

}  // namespace
