// Checking the modules qbfs hands to the layer, so that a module that cannot
// be loaded is named with the loader's reason instead of a bare error code,
// and a missing symbol is found before the layer calls into the module.
#pragma once
#include <string>

namespace qbfs {

// Opens the module at `path` with every symbol bound at once (RTLD_NOW) and
// keeps it open, so the layer's own open later finds it bound. Returns an
// empty string on success, else the reason in words: the file is missing or
// not a regular file (which is not opened at all, so that a FIFO cannot
// block), or the loader's own text.
std::string check_module(std::string const& path);

// The folder of the modules shipped with the tool: the installed tree's
// module folder, found relative to the running executable, when it exists;
// else the build tree's library folder.
std::string shipped_module_dir();

}  // namespace qbfs
