// Object I/O: the edge cases of staging, framing and refusal against a
// programmable module, and a seeded property test against the scripted
// object, in process behind an adapter and as a separately built module
// behind its table.
#include <dlfcn.h>

#include <deque>
#include <random>

#include <gtest/gtest.h>

#include "capture.h"
#include "modules/scripted_object.h"
#include "test_adapter.h"
#include <qbfsys/qbfsys.h>

namespace {

using qbtest::ObjectScript;
using qbtest::ScriptEvent;

// ---- a module that answers each call as the test says ------------------------

struct Answer {
  FS_STATUS status = FS_SUCCESS;
  std::uint32_t amount = 0;  // read: bytes delivered; write: bytes taken (kAll: everything)
  std::uint32_t need = 1;
  std::uint32_t header_id = 0;  // read: a header to report
};
constexpr std::uint32_t kAll = 0xFFFFFFFF;

struct Call {
  std::uint32_t size;
  std::uint32_t header_id;
};

std::deque<Answer> g_answers;
std::vector<Call> g_calls;
int g_seeks = 0;

FS_STATUS answer(unsigned char* buffer, unsigned int* size, unsigned int* need, STREAM_INFO* header,
                 bool reading) {
  g_calls.push_back({*size, header != nullptr ? header->id : 0});
  Answer a;
  if (!g_answers.empty()) {
    a = g_answers.front();
    g_answers.pop_front();
  }
  std::uint32_t const amount = a.amount == kAll ? *size : a.amount;
  if (reading) {
    std::memset(buffer, 0x5A, std::min(amount, *size));
    if (a.header_id != 0) header->id = a.header_id;
  }
  *size = amount;
  *need = a.need;
  return a.status;
}

_FUNC_LIST programmable_table() {
  _FUNC_LIST t{};
  t.OpenObj = [](FSYS_HAND_STRUCT* h, _FILE_HAND_STRUCT** out, DBLK*, OPEN_MODE) -> FS_STATUS {
    *out = static_cast<_FILE_HAND_STRUCT*>(std::calloc(1, sizeof(_FILE_HAND_STRUCT)));
    (*out)->fsysHand = h;
    return FS_SUCCESS;
  };
  t.ReadObj = [](_FILE_HAND_STRUCT*, unsigned char* b, unsigned int* s, unsigned int* n, STREAM_INFO* h) {
    return answer(b, s, n, h, true);
  };
  t.WriteObj = [](_FILE_HAND_STRUCT*, unsigned char* b, unsigned int* s, unsigned int* n, STREAM_INFO* h) {
    return answer(b, s, n, h, false);
  };
  t.SeekObj = [](_FILE_HAND_STRUCT*, unsigned int*) -> FS_STATUS { return ++g_seeks, FS_SUCCESS; };
  t.CloseObj = [](_FILE_HAND_STRUCT* o, void**, void**) -> FS_STATUS { return std::free(o), FS_SUCCESS; };
  t.SizeofOSName = [](FSYS_HAND_STRUCT*, DBLK*, bool) -> FS_STATUS { return 16; };
  t.GetOSName = [](FSYS_HAND_STRUCT*, DBLK*, wchar_t* b, bool) -> FS_STATUS {
    std::wcscpy(b, L"a.db");
    return FS_SUCCESS;
  };
  return t;
}

class ObjectIo : public ::testing::Test {
 protected:
  void SetUp() override {
    g_answers.clear();
    g_calls.clear();
    g_seeks = 0;
    ASSERT_EQ(FS_OpenFileSys(&hand_, 3, &cfg_, &table_), FS_SUCCESS);
    ASSERT_EQ(FS_OpenObj(hand_, &obj_, &blk_, FS_READ), FS_SUCCESS);
  }
  void TearDown() override {
    if (obj_ != nullptr) FS_CloseObj(obj_, nullptr, nullptr);
    FS_CloseFileSys(hand_);
  }
  FS_STATUS read(std::uint32_t room, std::uint32_t* got = nullptr) {
    unsigned int size = room, need = 77;
    FS_STATUS const status = FS_ReadObj(obj_, buffer_.data(), &size, &need, &header_);
    EXPECT_EQ(need, 1u);
    if (got != nullptr) *got = size;
    return status;
  }
  FS_STATUS write(std::uint32_t count, std::uint32_t header_id = 0, std::uint32_t* used = nullptr) {
    unsigned int size = count, need = 77;
    STREAM_INFO h{};
    h.id = header_id;
    FS_STATUS const status = FS_WriteObj(obj_, buffer_.data(), &size, &need, &h);
    if (used != nullptr) *used = size;
    return status;
  }

  QB_CFG cfg_{};
  _FUNC_LIST table_ = programmable_table();
  FSYS_HAND_STRUCT* hand_ = nullptr;
  _FILE_HAND_STRUCT* obj_ = nullptr;
  DBLK blk_{};
  STREAM_INFO header_{};
  std::vector<unsigned char> buffer_ = std::vector<unsigned char>(1 << 16);
  qbtest::MessageCapture messages_;
};

TEST_F(ObjectIo, ReadsStageWhenTheModuleWantsMoreThanTheCallerAsks) {
  g_answers = {{FS_SUCCESS, 50, 10000}, {FS_SUCCESS, 10000, 10000}};
  std::uint32_t got = 0;
  EXPECT_EQ(read(100, &got), FS_SUCCESS);  // the first read tells the minimum
  EXPECT_EQ(got, 50u);
  EXPECT_EQ(obj_->stageCap, 12288u);
  EXPECT_EQ(read(100, &got), FS_SUCCESS);  // fetches 10,000 into the stage
  EXPECT_EQ(g_calls.back().size, 10000u);
  EXPECT_EQ(got, 100u);
  for (int i = 0; i < 99; ++i) ASSERT_EQ(read(100, &got), FS_SUCCESS);
  EXPECT_EQ(g_calls.size(), 2u);  // served from the stage
  EXPECT_EQ(got, 100u);
  g_answers = {{qbtest::kEndOfObject, 0, 1}};
  EXPECT_EQ(read(100, &got), qbtest::kEndOfObject);
}

TEST_F(ObjectIo, ReadEdgeCases) {
  std::uint32_t got = 1;
  g_answers = {{FS_SUCCESS, 0, 5000}};
  EXPECT_EQ(read(0, &got), FS_SUCCESS);  // room 0: straight to the module, never repeated
  EXPECT_EQ(g_calls.size(), 1u);
  EXPECT_EQ(g_calls[0].size, 0u);

  g_answers = {{FS_SUCCESS, 3, 1, 0}, {FS_ERR_NO_MEMORY, 0, 1}};
  g_answers.push_front({0xE0001234, 7, 1});  // an error that comes with data waits
  EXPECT_EQ(read(10000, &got), FS_SUCCESS);
  EXPECT_EQ(got, 7u);
  EXPECT_EQ(read(10000, &got), 0xE0001234u);
  EXPECT_EQ(got, 0u);

  g_answers = {{0x20000001, 4, 1}};  // an informational status of a read is success
  EXPECT_EQ(read(10000, &got), FS_SUCCESS);
  EXPECT_EQ(got, 4u);

  g_answers = {{FS_SUCCESS, 20000, 1}};  // more than the room
  EXPECT_EQ(read(10000, &got), FS_ERR_OBJ_OVERRUN);
  EXPECT_EQ(got, 10000u);

  g_answers = {{FS_SUCCESS, 0, 1, STRM_GENERIC_DATA}};
  EXPECT_EQ(read(10000, &got), FS_SUCCESS);
  EXPECT_EQ(header_.id, STRM_GENERIC_DATA);
  header_.id = 99;
  g_answers = {{FS_SUCCESS, 4, 1}};
  EXPECT_EQ(read(10000, &got), FS_SUCCESS);
  EXPECT_EQ(header_.id, 0u);  // a header only when the module reports one
}

TEST_F(ObjectIo, SeekingDropsStagedReadData) {
  g_answers = {{FS_SUCCESS, 10, 8192}, {FS_SUCCESS, 8192, 1}, {FS_SUCCESS, 5, 1}};
  read(100);
  read(100);
  EXPECT_EQ(obj_->stageCount, 8092u);
  unsigned int position = 0;
  EXPECT_EQ(FS_SeekObj(obj_, &position), FS_SUCCESS);
  EXPECT_EQ(g_seeks, 1);
  EXPECT_EQ(obj_->stageCount, 0u);
  std::uint32_t got = 0;
  read(100, &got);
  EXPECT_EQ(got, 5u);
  EXPECT_EQ(g_calls.size(), 3u);
}

TEST_F(ObjectIo, WriteStatuses) {
  std::uint32_t used = 0;
  EXPECT_EQ(write(0), FS_ERR_OBJ_NO_DATA);
  g_answers = {{FS_SUCCESS, 0, 1}};
  EXPECT_EQ(write(10, 0, &used), FS_ERR_OBJ_INCOMPLETE);
  EXPECT_EQ(used, 0u);
  g_answers = {{FS_SUCCESS, 11, 1}};
  EXPECT_EQ(write(10, 0, &used), FS_ERR_OBJ_OVERRUN);
  EXPECT_TRUE(messages_.has(L"FS_WriteObj returned more than expected"));
  g_answers = {{FS_STATUS_OBJ_DEFERRED, kAll, 1}};
  EXPECT_EQ(write(10), FS_STATUS_OBJ_DEFERRED);
  std::size_t const calls = g_calls.size();
  EXPECT_EQ(write(10, 0, &used), FS_SUCCESS);  // swallowed until a header comes
  EXPECT_EQ(used, 10u);
  EXPECT_EQ(g_calls.size(), calls);
  g_answers = {{FS_SUCCESS, 0, 1}};
  EXPECT_EQ(write(0, STRM_PAD), FS_SUCCESS);
  EXPECT_EQ(g_calls.size(), calls + 1);
}

TEST_F(ObjectIo, RefusedObjectsAreNotOpened) {
  struct Case {
    std::uint32_t flags;
    FS_STATUS status;
    bool recorded;
  } const cases[] = {{0x200, FS_ERR_OBJ_ACCESS_DENIED, false},
                     {0xC8000200, FS_STATUS_EXT_ERROR, true},
                     {0xA8000200, FS_ERR_OBJ_ACCESS_DENIED, false},
                     {0xC8000000, FS_SUCCESS, false}};
  for (auto const& c : cases) {
    FS_SetLastError(hand_, 0, FS_EXT_ERR_ACTION_NONE, 0, nullptr);
    DBLK blk{};
    blk.obj_flags = c.flags;
    _FILE_HAND_STRUCT* obj = nullptr;
    EXPECT_EQ(FS_OpenObj(hand_, &obj, &blk, FS_READ), c.status) << std::hex << c.flags;
    EXPECT_EQ(obj != nullptr, c.status == FS_SUCCESS);
    FS_EXT_ERR_ACTION action{};
    unsigned int extra = 0;
    wchar_t* text = nullptr;
    FS_STATUS const error = GEN_GetExtendedErrorInfo(hand_, &action, &extra, &text);
    if (c.recorded) {
      EXPECT_EQ(error, FS_ERR_OBJ_ACCESS_DENIED);
      EXPECT_EQ(extra, 16032u);
      EXPECT_STREQ(text, L"a.db");
    }
    FS_CloseObj(obj, nullptr, nullptr);
  }
}

TEST_F(ObjectIo, StagingBuffersFollowTheirOwners) {
  g_answers = {{FS_SUCCESS, 1, 9000}};
  read(10);
  ASSERT_NE(obj_->stageBuf, nullptr);
  FS_ResetHand(obj_, sizeof(_FILE_HAND_STRUCT));
  EXPECT_NE(obj_->stageBuf, nullptr);  // kept over a reset
  EXPECT_EQ(obj_->needSize, 0u);
  EXPECT_EQ(obj_->fsysHand, nullptr);
  obj_->fsysHand = hand_;  // as the module does when it reuses the record
  hand_->objHand = obj_;
  g_answers = {{FS_SUCCESS, 1, 9000}};
  read(10);
  _FILE_HAND_STRUCT own = *obj_;  // the module releases the record; the buffer stays
  EXPECT_EQ(FS_CloseObj(obj_, nullptr, nullptr), FS_SUCCESS);
  obj_ = nullptr;
  hand_->objHand = &own;
  GENERIC_DLE dle{};
  hand_->dle = &dle;
  dle.attach_count = 1;
  EXPECT_EQ(FS_DetachDLE(hand_), FS_SUCCESS);  // frees the own object handle's buffer
  EXPECT_EQ(own.stageBuf, nullptr);
  EXPECT_EQ(own.stageCap, 0u);
  hand_ = nullptr;
  ASSERT_EQ(FS_OpenFileSys(&hand_, 3, &cfg_, &table_), FS_SUCCESS);  // for TearDown
}

// ---- the property test ------------------------------------------------------

struct ScriptedAdapter : qbtest::TestAdapter {
  ScriptedAdapter(qbtest::TestAdapterControl* c, ObjectScript* s) : TestAdapter(c), script(s) {}
  FS_STATUS OpenObj(FSYS_HAND_STRUCT* h, _FILE_HAND_STRUCT** out, DBLK*, OPEN_MODE) override {
    return qbtest::scripted_open(h, out, script);
  }
  FS_STATUS ReadObj(_FILE_HAND_STRUCT* o, unsigned char* b, unsigned int* s, unsigned int* n,
                    STREAM_INFO* h) override {
    return qbtest::scripted_read(o, b, s, n, h);
  }
  FS_STATUS WriteObj(_FILE_HAND_STRUCT* o, unsigned char* b, unsigned int* s, unsigned int* n,
                     STREAM_INFO* h) override {
    return qbtest::scripted_write(o, b, s, n, h);
  }
  FS_STATUS CloseObj(_FILE_HAND_STRUCT* o, void**, void**) override { return qbtest::scripted_close(o); }
  ObjectScript* script;
};

std::vector<qbtest::ScriptStream> random_streams(std::mt19937& random) {
  std::vector<qbtest::ScriptStream> streams(1 + random() % 5);
  std::uint32_t const ids[] = {STRM_GENERIC_DATA, STRM_NT_SPARSE, STRM_OS_INFO, STRM_PAD};
  for (auto& s : streams) {
    std::size_t const size = random() % 4 == 0 ? 0 : random() % (random() % 8 == 0 ? 300000 : 20000);
    s.data.resize(size);
    for (auto& b : s.data) b = static_cast<unsigned char>(random());
    FS_InitStrmInfo(&s.header, ids[random() % 4], 0, static_cast<unsigned>(size));
  }
  return streams;
}

std::uint32_t random_room(std::mt19937& random) {
  switch (random() % 6) {
    case 0: return 0;
    case 1: return 1 + random() % 100;
    case 2: return 1 + random() % 4096;
    case 3: return 1 + random() % 65536;
    default: return random() % (1u << 20);
  }
}

// Reads the whole object in random rooms; returns what the caller saw.
std::vector<ScriptEvent> read_all(_FILE_HAND_STRUCT* obj, std::mt19937& random, std::string* failure) {
  std::vector<ScriptEvent> seen;
  std::vector<unsigned char> buffer(1u << 20);
  for (int calls = 0; calls < 200000; ++calls) {
    unsigned int size = random_room(random), need = 1;
    std::uint32_t const room = size;
    STREAM_INFO header{};
    FS_STATUS const status = FS_ReadObj(obj, buffer.data(), &size, &need, &header);
    if (size > room) *failure = "delivered more than the room";
    if (header.id != 0) qbtest::add_event(seen, ScriptEvent::header, header.id);
    qbtest::add_event(seen, ScriptEvent::data, 0, buffer.data(), size);
    if (status == qbtest::kEndOfObject) return seen;
    if (status != FS_SUCCESS) qbtest::add_event(seen, ScriptEvent::status, status);
  }
  *failure = "no end of object";
  return seen;
}

void write_all(_FILE_HAND_STRUCT* obj, std::vector<qbtest::ScriptStream> const& streams,
               std::mt19937& random, std::string* failure) {
  for (auto const& s : streams) {
    std::vector<unsigned char> data = s.data;
    std::size_t at = 0;
    bool first = true;
    while (first || at < data.size()) {
      unsigned int size = static_cast<unsigned int>(std::min<std::size_t>(data.size() - at, random_room(random)));
      if (!first && size == 0) continue;
      unsigned int need = 1;
      STREAM_INFO header = first ? s.header : STREAM_INFO{};
      FS_STATUS const status = FS_WriteObj(obj, data.data() + at, &size, &need, &header);
      if (status != FS_SUCCESS) return void(*failure = "write status " + std::to_string(status));
      at += size;
      first = false;
    }
  }
}

// The roads to the module: 0 its in-process adapter, 1 the .so's table,
// 2 the .so's table behind an FS_FshLegacy adapter.
class ObjectIoProperty : public ::testing::TestWithParam<int> {};
constexpr char const* kRoads[] = {" (adapter)", " (module table)", " (legacy adapter over the module table)"};

TEST_P(ObjectIoProperty, BytesAndHeadersPassUnchangedWhateverTheSizes) {
  int const road = GetParam();
  bool const through_module = road != 0;
  void* module = nullptr;
  _FUNC_LIST* table = nullptr;
  void (*set_script)(ObjectScript*) = nullptr;
  _FUNC_LIST empty{};
  if (through_module) {
    module = dlopen(QB_TEST_MODULE_DIR "/libscripted_object_module.so", RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(module, nullptr) << dlerror();
    table = reinterpret_cast<_FUNC_LIST* (*)()>(dlsym(module, "qbtest_scripted_table"))();
    set_script = reinterpret_cast<void (*)(ObjectScript*)>(dlsym(module, "qbtest_set_object_script"));
    ASSERT_NE(set_script, nullptr);
  }
  QB_CFG cfg{};
  int const cases = 1000;
  for (int seed = 1; seed <= cases; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed) + kRoads[road]);
    std::mt19937 random(static_cast<unsigned>(seed));
    ObjectScript script;
    script.random.seed(static_cast<unsigned>(seed) * 7919u);
    script.streams = random_streams(random);
    script.max_need = 1 + static_cast<std::uint32_t>(random() % (256 * 1024));
    script.error_one_in = random() % 3 == 0 ? 5 : 0;

    FSYS_HAND_STRUCT* hand = nullptr;
    qbtest::TestAdapterControl control;
    ASSERT_EQ(FS_OpenFileSys(&hand, 3, &cfg, through_module ? table : &empty), FS_SUCCESS);
    if (through_module) set_script(&script);
    if (road == 0) hand->adapter = new ScriptedAdapter(&control, &script);
    if (road == 2) hand->adapter = new FS_FshLegacy;

    std::string failure;
    DBLK blk{};
    _FILE_HAND_STRUCT* obj = nullptr;
    ASSERT_EQ(FS_OpenObj(hand, &obj, &blk, FS_READ), FS_SUCCESS);
    std::vector<ScriptEvent> const seen = read_all(obj, random, &failure);
    EXPECT_EQ(FS_CloseObj(obj, nullptr, nullptr), FS_SUCCESS);
    ASSERT_EQ(failure, "");
    ASSERT_TRUE(seen == script.log) << "the caller saw " << seen.size() << " events, the module made "
                                    << script.log.size();

    ASSERT_EQ(FS_OpenObj(hand, &obj, &blk, FS_WRITE), FS_SUCCESS);
    write_all(obj, script.streams, random, &failure);
    EXPECT_EQ(FS_CloseObj(obj, nullptr, nullptr), FS_SUCCESS);
    ASSERT_EQ(failure, "");
    ASSERT_EQ(script.violations, std::vector<std::string>{});
    ASSERT_EQ(script.received.size(), script.streams.size());
    for (std::size_t i = 0; i < script.streams.size(); ++i) {
      ASSERT_EQ(script.received[i].header.id, script.streams[i].header.id) << "stream " << i;
      ASSERT_TRUE(script.received[i].data == script.streams[i].data) << "stream " << i;
    }
    EXPECT_EQ(script.opens, 2);
    EXPECT_EQ(script.closes, 2);
    FS_CloseFileSys(hand);
    EXPECT_EQ(control.live, 0);
  }
  if (module != nullptr) dlclose(module);
}

INSTANTIATE_TEST_SUITE_P(ThreeRoads, ObjectIoProperty, ::testing::Values(0, 1, 2));

}  // namespace
