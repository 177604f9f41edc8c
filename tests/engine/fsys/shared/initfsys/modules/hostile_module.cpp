// A file-system module that misbehaves in one way, chosen when it is built:
//   HM_THROW 1  GetTable hands out the table of index HM_INDEX, then throws
//            2  its initialise operation throws
//            3  its object maker (slot 0) throws
//            4  its de-initialise operation throws
//   HM_UNDEFINED_DATA  it reads a variable that no library defines, so the
//                      loader refuses it even with lazy binding
//   HM_UNDEFINED_CALL  its initialise operation calls a function that no
//                      library defines: with lazy binding it loads, and the
//                      process dies at the call
#include <stdexcept>

#include <qbfsys/fs_dle_base.h>
#include <qbfsys/module.h>

#ifndef HM_THROW
#define HM_THROW 0
#endif
#ifndef HM_INDEX
#define HM_INDEX 45
#endif

#ifdef HM_UNDEFINED_DATA
extern "C" int hm_no_library_defines_this;
FS_MODULE_EXPORT int hm_read_undefined() { return hm_no_library_defines_this; }
#endif

#ifdef HM_UNDEFINED_CALL
extern "C" int hm_no_library_defines_this_function();
#endif

namespace {
FS_STATUS init(QB_CFG*) {
  if (HM_THROW == 2) throw std::runtime_error("hostile init");
#ifdef HM_UNDEFINED_CALL
  return static_cast<FS_STATUS>(hm_no_library_defines_this_function());
#else
  return 0;
#endif
}
FS_STATUS deinit() {
  if (HM_THROW == 4) throw std::runtime_error("hostile deinit");
  return 0;
}
FS_DleBase* make_object(unsigned int) { throw std::runtime_error("hostile object"); }
}  // namespace

FS_MODULE_EXPORT int GetTable(int n, unsigned int, _FUNC_LIST* out, int* index) {
  if (n == 1 && HM_THROW == 1) throw std::runtime_error("hostile tables");
  if (n > 0) return 0;
  _FUNC_LIST table{};
  table.InitFileSys = init;
  table.DeInitFileSys = deinit;
  if (HM_THROW == 3) table.CreateObject = make_object;
  *out = table;
  *index = HM_INDEX;
  return 1;
}
