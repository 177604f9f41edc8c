// Creation requests: the defaults, and the dates FS_CreateGenDBLK hands the
// file system (converted under several zones, across a summer-time change,
// checked against offsets worked out by hand; the caller's pointers back).
#include <cstdlib>
#include <string>

#include "dblk_fixture.h"
#include "test_records.h"

namespace {

using qbtest::DblkTest;
using qbtest::fake;
using qbtest::make_date;

constexpr char kZoneUtc[] = "UTC0";
constexpr char kZoneEast[] = "JST-9";                   // nine hours east, no summer time
constexpr char kZoneSummer[] = "EST5EDT,M3.2.0,M11.1.0";  // summer time from 2026-03-08 07:00 UTC

class ZoneGuard {
 public:
  explicit ZoneGuard(char const* zone) {
    if (char const* old = std::getenv("TZ")) old_ = old, had_ = true;
    setenv("TZ", zone, 1);
    tzset();
  }
  ~ZoneGuard() {
    if (had_) setenv("TZ", old_.c_str(), 1);
    else unsetenv("TZ");
    tzset();
  }

 private:
  std::string old_;
  bool had_ = false;
};

class CreateDblk : public DblkTest {
 protected:
  void SetUp() override {
    DblkTest::SetUp();
    hand_->dle = &dle_;
    FS_SetDefaultDBLK(hand_, DBLK_KIND_FDB, 0, &request_);
    request_.dblk = &blk_;
  }
  void TearDown() override {
    hand_->dle = nullptr;
    DblkTest::TearDown();
  }
  void set_all_dates(_DATE_TIME const* date) {
    request_.gen.cdate = request_.gen.mdate = request_.gen.bdate = request_.gen.adate = date;
    request_.gen.ext_date1 = request_.gen.ext_date2 = date;
  }
  void expect_all_dates(_DATE_TIME const* date) const {
    _DATE_TIME const* now[6] = {request_.gen.cdate, request_.gen.mdate, request_.gen.bdate,
                                request_.gen.adate, request_.gen.ext_date1, request_.gen.ext_date2};
    for (auto const* p : now) EXPECT_EQ(p, date);
  }

  GENERIC_DLE dle_{};
  DBLK blk_{};
  _CREATE_DBLK request_{};
};

struct ZoneCase {
  char const* zone;
  _DATE_TIME in;
  _DATE_TIME expected;
};

TEST_F(CreateDblk, DatesAreConvertedByTheZoneOffsetAtThatInstant) {
  ZoneCase const cases[] = {
      {kZoneUtc, make_date(2026, 1, 15, 10, 20, 30, 9999999), make_date(2026, 1, 15, 10, 20, 30, 9999990)},
      {kZoneEast, make_date(2026, 1, 15, 10, 20, 30, 15), make_date(2026, 1, 15, 19, 20, 30, 10)},
      {kZoneEast, make_date(2026, 12, 31, 20, 0, 0), make_date(2027, 1, 1, 5, 0, 0)},
      {kZoneSummer, make_date(2026, 1, 15, 10, 20, 30), make_date(2026, 1, 15, 5, 20, 30)},
      {kZoneSummer, make_date(2026, 7, 1, 12, 0, 0, 1234567), make_date(2026, 7, 1, 8, 0, 0, 1234560)},
      {kZoneSummer, make_date(2026, 3, 8, 6, 59, 59), make_date(2026, 3, 8, 1, 59, 59)},
      {kZoneSummer, make_date(2026, 3, 8, 7, 0, 0), make_date(2026, 3, 8, 3, 0, 0)},
      {kZoneSummer, make_date(2026, 11, 1, 5, 59, 59), make_date(2026, 11, 1, 1, 59, 59)},
      {kZoneSummer, make_date(2026, 11, 1, 6, 0, 0), make_date(2026, 11, 1, 1, 0, 0)},
  };
  for (auto const& c : cases) {
    ZoneGuard zone(c.zone);
    set_all_dates(&c.in);
    EXPECT_EQ(FS_CreateGenDBLK(hand_, DBLK_KIND_FDB, &request_), 7);
    for (int i = 0; i < 6; ++i) {
      EXPECT_NE(fake().seen_ptr[i], &c.in);
      EXPECT_EQ(qbtest::show(fake().seen[i]), qbtest::show(c.expected)) << c.zone << " " << qbtest::show(c.in);
    }
    expect_all_dates(&c.in);
  }
}

TEST_F(CreateDblk, DatesStayAsTheyAreWhenNotPresentOrNotToBeConverted) {
  ZoneGuard zone(kZoneEast);
  _DATE_TIME unset = make_date(2026, 1, 15, 10);
  unset.date_valid = 0;
  _DATE_TIME const set = make_date(2026, 1, 15, 10);
  _DATE_TIME unreadable = make_date(2026, 13, 40, 10);

  set_all_dates(&unset);
  FS_CreateGenDBLK(hand_, DBLK_KIND_DDB, &request_);
  EXPECT_EQ(fake().seen_ptr[0], &unset);
  set_all_dates(&unreadable);
  FS_CreateGenDBLK(hand_, DBLK_KIND_FDB, &request_);
  EXPECT_EQ(fake().seen_ptr[3], &unreadable);

  struct Off {
    char const* why;
    unsigned int kind;
    bool attached;
    std::uint32_t switch_off;
  } const offs[] = {{"other kind", DBLK_KIND_CFDB, true, 0},
                    {"not attached", DBLK_KIND_FDB, false, 0},
                    {"switched off", DBLK_KIND_FDB, true, 1}};
  for (auto const& off : offs) {
    hand_->dle = off.attached ? &dle_ : nullptr;
    dle_.date_conversion_off = off.switch_off;
    set_all_dates(&set);
    FS_CreateGenDBLK(hand_, off.kind, &request_);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(fake().seen_ptr[i], &set) << off.why;
  }
}

TEST_F(CreateDblk, TheAdapterBuildsWhenThereIsOneAndEmptyOrNullIsRefused) {
  use_adapter();
  fake().create_result = FS_ERR_NO_MEMORY;
  EXPECT_EQ(FS_CreateGenDBLK(hand_, DBLK_KIND_DDB, &request_), 0x8442);
  EXPECT_EQ(fake().adapter_calls, 1);
  EXPECT_EQ(fake().table_calls, 0);
  hand_->adapter->CloseSys(hand_);
  _FUNC_LIST empty{};
  hand_->funcTable = &empty;
  EXPECT_EQ(FS_CreateGenDBLK(hand_, DBLK_KIND_DDB, &request_), FS_ERR_UNIMPLEMENTED & 0xFFFF);
  hand_->funcTable = &table_;
  EXPECT_EQ(FS_CreateGenDBLK(nullptr, DBLK_KIND_DDB, &request_), FS_ERR_BAD_PARAMETER & 0xFFFF);
  EXPECT_EQ(FS_CreateGenDBLK(hand_, DBLK_KIND_DDB, nullptr), FS_ERR_BAD_PARAMETER & 0xFFFF);
}

TEST(SetDefaultDblk, ObjectKindsGetAnEmptyNameAndUnsetDates) {
  for (std::uint8_t kind : {DBLK_KIND_DDB, DBLK_KIND_FDB}) {
    _CREATE_DBLK request;
    std::memset(&request, 0xAB, sizeof request);
    DBLK* const keep = request.dblk;
    ASSERT_EQ(FS_SetDefaultDBLK(nullptr, static_cast<char>(kind), 51, &request), FS_SUCCESS);
    EXPECT_EQ(request.dblk, keep);  // the first 16 bytes are the caller's
    EXPECT_EQ(request.blk_type, kind);
    EXPECT_EQ(request.selector, 51);
    EXPECT_EQ(request.gen.blk_subtype, 51);
    ASSERT_NE(request.gen.name, nullptr);
    EXPECT_EQ(request.gen.name_size, 4);
    EXPECT_EQ(*static_cast<std::uint32_t const*>(request.gen.name), 0u);
    _DATE_TIME const* d = FS_DefaultDate();
    EXPECT_EQ(qbtest::show(*d), "(unset) 1980-01-01 01:00:00 +0000000");
    EXPECT_EQ(request.gen.cdate, d);
    EXPECT_EQ(request.gen.ext_date2, d);
    EXPECT_EQ(request.gen.strm_aux16, 32);
    EXPECT_EQ(request.gen.dblk, nullptr);
    EXPECT_EQ(request.gen.display_size, 0u);
    EXPECT_EQ(request.gen.media_attrib, 0u);
    EXPECT_EQ(request.gen.ext_name, nullptr);
  }
}

TEST(SetDefaultDblk, VolumeAndOtherKinds) {
  _CREATE_DBLK request;
  std::memset(&request, 0xAB, sizeof request);
  ASSERT_EQ(FS_SetDefaultDBLK(nullptr, DBLK_KIND_VCB, 0, &request), FS_SUCCESS);
  EXPECT_EQ(request.vcb.media_sequence_state, VCB_SEQUENCE_UNKNOWN);
  EXPECT_EQ(request.vcb.set_count, 1u);
  EXPECT_EQ(request.vcb.backup_date, FS_DefaultDate());
  EXPECT_EQ(request.vcb.volume_name, nullptr);
  EXPECT_EQ(request.vcb.attrib1, 0u);

  for (std::uint8_t kind : {DBLK_KIND_UDB, DBLK_KIND_CFDB, DBLK_KIND_EODB}) {
    std::memset(&request, 0xAB, sizeof request);
    ASSERT_EQ(FS_SetDefaultDBLK(nullptr, static_cast<char>(kind), 0, &request), FS_SUCCESS);
    auto const* bytes = reinterpret_cast<unsigned char const*>(&request);
    for (std::size_t i = offsetof(_CREATE_DBLK, gen); i < sizeof request; ++i)
      ASSERT_EQ(bytes[i], 0) << "kind " << int(kind) << " byte " << i;
  }
  EXPECT_EQ(FS_SetDefaultDBLK(nullptr, DBLK_KIND_FDB, 0, nullptr), FS_ERR_BAD_PARAMETER);
}

}  // namespace
