// Checks on an attached handle: the calls a job makes with null and
// boundary arguments, the walk, the reading of objects and their stream
// framing, and the restore into a scratch directory. Each is meant to run in
// a child process (isolated_check.h). A module that offers no walking slots
// has these checks skipped.
#pragma once
#include "check_result.h"
#include "validate_options.h"

namespace qbfs::validate {

// null-arguments: GetCurrentPath into no room answers FS_ERR_OBJ_NO_DATA
// with the size needed and writes nothing; find-first with a null
// specification (the layer's "everything") and with one that matches
// nothing, find-next past the end, ChangeDirUp at the root and ChangeDir to
// a directory that does not exist each return a status, not a crash.
CheckResult check_null_arguments(ValidateOptions const& options);
// walk: every attach target is walked (at most options.max_objects objects
// each) and every find, change-into and change-up answers as a job expects.
CheckResult check_walk(ValidateOptions const& options);
// read-framing: every file the walk finds is opened (FS_OpenObj, FS_READ),
// read to its end with FS_ReadObj in room sizes drawn from the seed, and
// closed; stream_framing.h says what is checked per read, plus: no byte
// written past the room, and a minimum read size (`need`) the module asks
// for that is at most kMaxSaneNeed.
CheckResult check_read_framing(ValidateOptions const& options);
// restore: with --write DIR, every file read from the first attach target is
// created, written (FS_WriteObj) and closed below DIR through the module,
// then read back and compared stream by stream with what was read.
CheckResult check_restore(ValidateOptions const& options);

}  // namespace qbfs::validate
