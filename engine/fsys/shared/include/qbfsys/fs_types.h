// The records and enumerations that the function table and the layer's
// interface name. Records whose layout belongs to the file systems (or that
// the layer only passes through) are declared here and defined where they are
// owned.
#pragma once
#include <cstdint>
#include <iterator>
#include <list>
#include <vector>

#include <boost/shared_ptr.hpp>
#include <qbhost/datetime.h>
#include <qbhost/qb_cfg.h>
#include <qbhost/queue.h>
#include <qbhost/strings.h>

struct FSYS_HAND_STRUCT;
struct _FILE_HAND_STRUCT;
struct GENERIC_DLE;
struct HEAD_DLE;
struct DBLK;
struct STREAM_INFO;
struct _CREATE_DBLK;
struct _GEN_DBLK_DATA;
struct _GOS;
struct _PREPOST;
struct _ZRTSCB;
struct _IPC_HAND;
struct FS_MOUNTPOINT_INFO;
struct _VIRTUAL_VOLUME_INFO;
struct _OFF_HOST_OBJECT_FILES;
class SnapshotVolume;
class FS_DleBase;
class FS_FshBase;
class fs_property_tree;

// How an object is opened (FS_OpenObj).
enum OPEN_MODE : int {
  FS_READ = 0,
  FS_WRITE = 1,
  FS_VERIFY = 2,
};

// How a restore treats an object that exists already.
enum RESTORE_SEMANTICS : int {
  RESTORE_DEFAULT = 0,
  RESTORE_OVERWRITE = 1,
  RESTORE_SKIP_EXISTING = 2,
};

// The kind of object a block describes.
enum OBJECT_TYPE : int {
  FS_OBJ_UNKNOWN = 0,
  FS_OBJ_FILE = 1,
  FS_OBJ_DIRECTORY = 2,
  FS_OBJ_LINK = 3,
  FS_OBJ_DEVICE = 4,
  FS_OBJ_GENERIC = 8,
};

// The kind of rule that excluded a file.
enum EXCLUDE_TYPE : int {
  EXCLUDE_NONE = 0,
  EXCLUDE_FILE = 1,
  EXCLUDE_DIRECTORY = 2,
  EXCLUDE_TREE = 3,
};

// What the caller should do about the last error of a handle.
enum FS_EXT_ERR_ACTION : int {
  FS_EXT_ERR_ACTION_NONE = 0,
  FS_EXT_ERR_ACTION_RETRY = 1,
  FS_EXT_ERR_ACTION_SKIP = 2,
  FS_EXT_ERR_ACTION_ABORT = 3,
};

// Commands of the DoCommand slot; values above FS_CMD_MODULE_BASE are the
// modules' own.
enum FS_CMD : int {
  FS_CMD_NONE = 0,
  FS_CMD_MODULE_BASE = 0x1000,
};

enum _DII_CONTROL_TYPE : int {
  DII_CONTROL_NONE = 0,
  DII_CONTROL_OPEN = 1,
  DII_CONTROL_CLOSE = 2,
};

struct SNAPSHOT_NOTIFICATION {
  enum notify_type : int { PRE_SNAPSHOT = 0, POST_SNAPSHOT = 1, SNAPSHOT_RELEASED = 2 };
};

struct _PERFORM_CHECKS {
  enum OPERATION_TYPE : int { OP_BACKUP = 0, OP_RESTORE = 1 };
  enum OPERATION_SUB_TYPE : int { OP_SUB_NONE = 0 };
};

struct _OFF_HOST_FILELIST_OPER_DATA_TYPES {
  enum FS_OH_FL_OPER_TYPE : int { FS_OH_FL_OPER_NONE = 0 };
  enum FS_OH_FL_DATA_TYPE : int { FS_OH_FL_DATA_NONE = 0 };
};

using FS_WCSTRING_VECTOR = std::vector<wcstring>;
using FS_WCSTRING_INSERTER = std::back_insert_iterator<std::vector<wcstring>>;
using FS_OFF_HOST_FILE_LIST = std::list<boost::shared_ptr<_OFF_HOST_OBJECT_FILES>>;
