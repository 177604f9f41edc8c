// A configurable file-system module for the start-up tests, built several
// times with different settings:
//   TM_ENTRY        1 "GetTable", 2 "Get64BitTable", 0 neither
//   TM_INDICES      the indices it delivers tables for, in order
//   TM_INIT_RESULT  what its initialise operation returns
//   TM_WITH_OBJECT  1: slot 0 makes a per-index FS_DleBase object
// It reports what the layer did to it through tm_* entry points.
#include <qbfsys/fs_dle_base.h>
#include <qbfsys/module.h>

#ifndef TM_ENTRY
#define TM_ENTRY 1
#endif
#ifndef TM_INIT_RESULT
#define TM_INIT_RESULT 0
#endif
#ifndef TM_WITH_OBJECT
#define TM_WITH_OBJECT 0
#endif

namespace {
int g_init_calls = 0;
int g_deinit_calls = 0;
int g_object_init_calls = 0;
int g_object_deinit_calls = 0;
unsigned long long g_mask = 0;
int g_last_init_table = -1;  // which delivered table's init ran last

template <int Table>
FS_STATUS init(QB_CFG*) {
  ++g_init_calls;
  g_last_init_table = Table;
  return TM_INIT_RESULT;
}
FS_STATUS deinit() {
  ++g_deinit_calls;
  return 0;
}

class TestObject : public FS_DleBase {
 public:
  FS_STATUS InitFileSys(QB_CFG*) override {
    ++g_object_init_calls;
    return TM_INIT_RESULT;
  }
  FS_STATUS DeInitFileSys() override {
    ++g_object_deinit_calls;
    return 0;
  }
};

FS_DleBase* create_object(unsigned int) {
  static TestObject object;  // the module keeps it; the registry never deletes it
  return &object;
}

int const kIndices[] = {TM_INDICES};
#ifdef TM_EMPTY
constexpr int kCount = 0;  // hands out nothing on the first call
#else
constexpr int kCount = sizeof(kIndices) / sizeof(kIndices[0]);
#endif

// Call n delivers table n: its init slot tells tables of the same index apart.
[[maybe_unused]] int deliver(int n, _FUNC_LIST* out, int* index) {
  if (n < 0 || n >= kCount) return 0;
  _FUNC_LIST table{};
  table.InitFileSys = (n % 2 == 0) ? init<0> : init<1>;
  table.DeInitFileSys = deinit;
  if (TM_WITH_OBJECT) table.CreateObject = create_object;
  *out = table;
  *index = kIndices[n];
  return 1;
}
}  // namespace

#if TM_ENTRY == 1
FS_MODULE_EXPORT int GetTable(int n, unsigned int mask, _FUNC_LIST* out, int* index) {
  g_mask = mask;
  return deliver(n, out, index);
}
#elif TM_ENTRY == 2
FS_MODULE_EXPORT int Get64BitTable(int n, unsigned long long mask, _FUNC_LIST* out, int* index) {
  g_mask = mask;
  return deliver(n, out, index);
}
#endif

FS_MODULE_EXPORT int tm_init_calls() { return g_init_calls; }
FS_MODULE_EXPORT int tm_deinit_calls() { return g_deinit_calls; }
FS_MODULE_EXPORT int tm_object_init_calls() { return g_object_init_calls; }
FS_MODULE_EXPORT int tm_object_deinit_calls() { return g_object_deinit_calls; }
FS_MODULE_EXPORT unsigned long long tm_mask() { return g_mask; }
FS_MODULE_EXPORT int tm_last_init_table() { return g_last_init_table; }
