// The whole exported interface of the file-system layer in one header: a
// host or a file-system module includes this and links libqbfsys.so.
//
// What each part holds:
//   fs_status.h      status codes shared by every part
//   fs_types.h       records and enumerations the interface names
//   func_list.h      _FUNC_LIST, the 115-slot table a module hands over
//   module.h         what a module exports (GetTable, Get64BitTable)
//   registry.h       the registry of 51 file systems and its exported data
//   fs_dle_base.h    FS_DleBase, the per-file-system object
//   fs_init.h        start-up and shut-down
//   dle.h            the DLE tree
//   dle_rules.h      exclusion and agent-warning rules and reasons
//   machine.h        machine and device-name resolution, the tree dump
//   handles.h        file-system handles and last error
//   fs_fsh_base.h    FS_FshBase, a handle's adapter interface
//   fs_fsh_gen.h, fs_fsh_legacy.h, fs_fsh_generic.h  the adapter classes
//   file_hand.h      _FILE_HAND_STRUCT and object I/O
//   handle_ops.h     handle operations for jobs (walking, directories, objects)
//   dblk.h           DBLK, the descriptor block
//   create_dblk.h    creation requests, FS_SetDefaultDBLK, FS_CreateGenDBLK
//   dblk_access.h    attribute, OS-info and delimiter accessors
//   name_pool.h      pooled name elements of a handle
//   dblk_names.h     names in blocks
//   crypt_names.h    encrypted names
//   stream_ids.h     the four-character stream ids
//   stream_info.h    STREAM_INFO and short-stream gathering
//   fs_filespec.h    file-specification matching
//   gen.h            the generic file system
//   buildinfo.h      what this build of the layer is
#pragma once

#include <qbfsys/fs_export.h>
#include <qbfsys/fs_status.h>
#include <qbfsys/fs_types.h>
#include <qbfsys/func_list.h>
#include <qbfsys/module.h>
#include <qbfsys/registry.h>
#include <qbfsys/fs_dle_base.h>
#include <qbfsys/fs_init.h>
#include <qbfsys/dle.h>
#include <qbfsys/dle_rules.h>
#include <qbfsys/machine.h>
#include <qbfsys/handles.h>
#include <qbfsys/fs_fsh_base.h>
#include <qbfsys/fs_fsh_gen.h>
#include <qbfsys/fs_fsh_legacy.h>
#include <qbfsys/fs_fsh_generic.h>
#include <qbfsys/file_hand.h>
#include <qbfsys/handle_ops.h>
#include <qbfsys/dblk.h>
#include <qbfsys/create_dblk.h>
#include <qbfsys/dblk_access.h>
#include <qbfsys/name_pool.h>
#include <qbfsys/dblk_names.h>
#include <qbfsys/crypt_names.h>
#include <qbfsys/stream_ids.h>
#include <qbfsys/stream_info.h>
#include <qbfsys/fs_filespec.h>
#include <qbfsys/gen.h>
#include <qbfsys/buildinfo.h>
