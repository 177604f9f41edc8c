// The public road (FS_Hand...): each function reaches the handle's adapter
// when it has one, else the table slot of the same role, else gives the fixed
// answer of an empty slot; a null handle is refused before anything is asked.
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "capture.h"
#include <qbfsys/qbfsys.h>

namespace {

// Every slot of the table answers 0x100 plus its slot number, so a result
// says which slot served it.
constexpr FS_STATUS kSlotAnswer = 0x100;
template <int Slot, typename... Params>
FS_STATUS answer(FSYS_HAND_STRUCT*, Params...) {
  return kSlotAnswer + Slot;
}

_FUNC_LIST answering_table() {
  _FUNC_LIST t{};
  t.DupBlk = answer<13, DBLK*, DBLK*>;
  t.ReleaseBlk = answer<14, DBLK*>;
  t.GetCurrentDDB = answer<18, DBLK*>;
  t.GetCurrentPath = answer<19, wchar_t*, short*>;
  t.ChangeDir = answer<20, wchar_t*, short>;
  t.ChangeDirUp = answer<21>;
  t.CreateObj = answer<22, DBLK*, wchar_t const*, RESTORE_SEMANTICS>;
  t.DeleteObj = answer<28, DBLK*>;
  t.FindFirstObj = answer<30, DBLK*, wchar_t*, unsigned short>;
  t.FindNextObj = answer<31, DBLK*>;
  t.GetOSName = answer<36, DBLK*, wchar_t*, bool>;
  t.GetCDateDBLK = answer<37, DBLK*, _DATE_TIME*>;
  t.GetMDateDBLK = answer<38, DBLK*, _DATE_TIME*>;
  t.ModBDateDBLK = answer<39, int, DBLK*, _DATE_TIME*>;
  t.ModADateDBLK = answer<40, int, DBLK*, _DATE_TIME*>;
  t.GetDisplaySizeDBLK = answer<41, DBLK*>;
  t.GetObjTypeDBLK = answer<45, DBLK*, OBJECT_TYPE*>;
  t.SizeofOSName = answer<47, DBLK*, bool>;
  t.ChangeIntoDDB = answer<55, DBLK*>;
  t.FindObjClose = answer<57, DBLK*>;
  return t;
}

struct Operation {
  char const* name;
  int slot;
  std::function<FS_STATUS(FSYS_HAND_STRUCT*)> call;
  FS_STATUS empty;  // the answer when neither adapter nor slot serves
};

TEST(HandleOps, EachTakesTheAdapterThenTheSlotThenTheEmptyAnswer) {
  static DBLK blk{}, copy{};
  static wchar_t text[64];
  static short size = sizeof text;
  static _DATE_TIME date{};
  static OBJECT_TYPE type{};
  auto status_of_size = [](std::int32_t s) { return static_cast<FS_STATUS>(s); };
  Operation const operations[] = {
      {"FindFirstObj", 30, [](FSYS_HAND_STRUCT* h) { return FS_HandFindFirstObj(h, &blk, text, 0); }, FS_ERR_UNIMPLEMENTED},
      {"FindNextObj", 31, [](FSYS_HAND_STRUCT* h) { return FS_HandFindNextObj(h, &blk); }, FS_ERR_UNIMPLEMENTED},
      {"FindObjClose", 57, [](FSYS_HAND_STRUCT* h) { return FS_HandFindObjClose(h, &blk); }, FS_ERR_UNIMPLEMENTED},
      {"ChangeDir", 20, [](FSYS_HAND_STRUCT* h) { return FS_HandChangeDir(h, text, 4); }, FS_ERR_UNIMPLEMENTED},
      {"ChangeIntoDDB", 55, [](FSYS_HAND_STRUCT* h) { return FS_HandChangeIntoDDB(h, &blk); }, FS_ERR_UNIMPLEMENTED},
      {"ChangeDirUp", 21, [](FSYS_HAND_STRUCT* h) { return FS_HandChangeDirUp(h); }, FS_ERR_UNIMPLEMENTED},
      {"GetCurrentPath", 19, [](FSYS_HAND_STRUCT* h) { return FS_HandGetCurrentPath(h, text, &size); }, FS_ERR_UNIMPLEMENTED},
      {"GetCurrentDDB", 18, [](FSYS_HAND_STRUCT* h) { return FS_HandGetCurrentDDB(h, &blk); }, FS_ERR_UNIMPLEMENTED},
      {"CreateObj", 22, [](FSYS_HAND_STRUCT* h) { return FS_HandCreateObj(h, &blk, nullptr, RESTORE_OVERWRITE); }, FS_ERR_UNIMPLEMENTED},
      {"DeleteObj", 28, [](FSYS_HAND_STRUCT* h) { return FS_HandDeleteObj(h, &blk); }, FS_ERR_UNIMPLEMENTED},
      {"ReleaseBlk", 14, [](FSYS_HAND_STRUCT* h) { return FS_HandReleaseBlk(h, &blk); }, FS_ERR_UNIMPLEMENTED},
      {"DupBlk", 13, [](FSYS_HAND_STRUCT* h) { return FS_HandDupBlk(h, &blk, &copy); }, FS_ERR_UNIMPLEMENTED},
      {"SizeofOSName", 47, [status_of_size](FSYS_HAND_STRUCT* h) { return status_of_size(FS_HandSizeofOSName(h, &blk, false)); }, 0},
      {"GetOSName", 36, [](FSYS_HAND_STRUCT* h) { return FS_HandGetOSName(h, &blk, text, false); }, FS_ERR_UNIMPLEMENTED},
      {"GetObjTypeDBLK", 45, [](FSYS_HAND_STRUCT* h) { return FS_HandGetObjTypeDBLK(h, &blk, &type); }, FS_ERR_UNIMPLEMENTED},
      {"GetCDateDBLK", 37, [](FSYS_HAND_STRUCT* h) { return FS_HandGetCDateDBLK(h, &blk, &date); }, FS_ERR_UNIMPLEMENTED},
      {"GetMDateDBLK", 38, [](FSYS_HAND_STRUCT* h) { return FS_HandGetMDateDBLK(h, &blk, &date); }, FS_ERR_UNIMPLEMENTED},
      {"ModBDateDBLK", 39, [](FSYS_HAND_STRUCT* h) { return FS_HandModBDateDBLK(h, 0, &blk, &date); }, FS_ERR_UNIMPLEMENTED},
      {"ModADateDBLK", 40, [](FSYS_HAND_STRUCT* h) { return FS_HandModADateDBLK(h, 0, &blk, &date); }, FS_ERR_UNIMPLEMENTED},
      {"GetDisplaySizeDBLK", 41, [](FSYS_HAND_STRUCT* h) { return FS_HandGetDisplaySizeDBLK(h, &blk); }, FS_ERR_UNIMPLEMENTED},
  };
  qbtest::MessageCapture messages;  // the generic adapter's "unimplemented" lines
  _FUNC_LIST full = answering_table();
  _FUNC_LIST empty{};
  for (auto const& op : operations) {
    SCOPED_TRACE(op.name);
    FSYS_HAND_STRUCT hand{};
    hand.funcTable = &full;
    EXPECT_EQ(op.call(&hand), kSlotAnswer + static_cast<FS_STATUS>(op.slot)) << "the table's slot serves";
    FS_FshGen adapter;
    hand.adapter = &adapter;
    EXPECT_NE(op.call(&hand), kSlotAnswer + static_cast<FS_STATUS>(op.slot)) << "the adapter comes first";
    hand.adapter = nullptr;
    hand.funcTable = &empty;
    EXPECT_EQ(op.call(&hand), op.empty) << "an empty slot";
    hand.funcTable = nullptr;
    EXPECT_EQ(op.call(&hand), op.empty) << "no table";
    EXPECT_EQ(op.call(nullptr), op.empty == 0 ? 0 : FS_ERR_BAD_PARAMETER) << "no handle";
  }
  FSYS_HAND_STRUCT walker{};
  EXPECT_FALSE(FS_HandCanWalk(nullptr));
  walker.funcTable = &empty;
  EXPECT_FALSE(FS_HandCanWalk(&walker));
  walker.funcTable = &full;
  EXPECT_TRUE(FS_HandCanWalk(&walker));
  _FUNC_LIST half{};
  half.FindFirstObj = full.FindFirstObj;
  walker.funcTable = &half;
  EXPECT_FALSE(FS_HandCanWalk(&walker));  // a search it cannot go on with
  FS_FshGen adapter;
  walker.adapter = &adapter;
  EXPECT_TRUE(FS_HandCanWalk(&walker));
}

}  // namespace
