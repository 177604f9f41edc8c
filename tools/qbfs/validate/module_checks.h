// Checks of the module file itself, before the layer is started with it.
// Each is meant to run in a child process (isolated_check.h): it opens the
// module with every symbol bound (RTLD_NOW) and calls its entry points.
#pragma once
#include "check_result.h"
#include "validate_options.h"

namespace qbfs::validate {

// Name of the optional export through which a module reports the interface
// version it was built for: `extern "C" int GetInterfaceVersion(void)`.
constexpr char kVersionEntryPoint[] = "GetInterfaceVersion";
// Calls of a table entry point after which a module that still delivers
// tables is taken to never stop.
constexpr int kMaxTableCalls = 64;

// load: the module opens with every symbol bound.
CheckResult check_load(ValidateOptions const& options);
// entry-points: "GetTable" or "Get64BitTable" is exported (the layer uses
// "GetTable" when both are).
CheckResult check_entry_points(ValidateOptions const& options);
// interface-version: what GetInterfaceVersion reports is the layer's
// version; skipped when the module does not export it.
CheckResult check_interface_version(ValidateOptions const& options);
// tables: the entry point delivers at least one table and stops within
// kMaxTableCalls calls; every index is below 51 and delivered once; a second
// round of calls delivers the same tables.
CheckResult check_tables(ValidateOptions const& options);
// slots: every table is filled the way the layer calls it: operations that
// come in pairs are both present, reserved slots are empty.
CheckResult check_slots(ValidateOptions const& options);

}  // namespace qbfs::validate
