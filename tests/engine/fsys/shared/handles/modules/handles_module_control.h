// What the handle tests' module answers, and what it saw. The test reaches the
// module's one instance through its exported "hm_control".
#pragma once
#include <qbfsys/fs_status.h>
#include <qbfsys/fs_types.h>

struct HandlesModuleControl {
  // Results of the module's slots.
  FS_STATUS open_result;
  FS_STATUS attach_result;
  FS_STATUS detach_result;
  FS_STATUS close_result;
  FS_STATUS machine_result;      // GetMachineName; its name is "HOST"
  unsigned int machine_length;   // the length it reports

  // Calls seen.
  int opens;
  int attaches;
  int detaches;
  int closes;
  int machine_queries;
  GENERIC_DLE* last_attach_dle;
};

extern "C" typedef HandlesModuleControl* HandlesModuleControlFn();
