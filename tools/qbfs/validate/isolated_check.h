// Running one check in a child process, so that a module that crashes,
// hangs or corrupts memory is reported instead of taking the validator with
// it.
#pragma once
#include <functional>
#include <string>

#include "check_result.h"

namespace qbfs::validate {

// Forks; the child runs `check` (its standard output goes to standard
// error, so that nothing a module prints mixes with the report), sends the
// result back through a pipe and ends with _exit, skipping exit handlers:
// the module's leaks are measured by the checks themselves, not by whatever
// leak report the process would print at exit. The parent waits at most
// `timeout_seconds`; a child still running then is killed.
//
// The child's standard error is passed on to the parent's as it comes, and
// kept: when the child ends without a result, the first line of a sanitizer
// report in it names the fault.
//
// Returns the child's result; or failed with "did not finish within N s"
// (killed), "crashed: <the sanitizer's line>", "crashed: signal N (NAME)" or
// "ended with exit status N before reporting" (an exit() inside the module);
// or failed when the fork itself fails. The id is set to `id` in every case.
CheckResult run_isolated(char const* id, unsigned timeout_seconds,
                         std::function<CheckResult()> const& check);

// Inside a check's child: tells the parent what the check is about to do
// ("attach to 'vol1', cycle 3"). When the child then crashes or hangs, the
// failure ends with "(during: <the last step>)". Does nothing outside a
// child.
void note_step(std::string const& step);

}  // namespace qbfs::validate
