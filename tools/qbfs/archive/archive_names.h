// Paths in the archive. A path is the object's components below the archive
// root joined by '/', each component the layer's wide name in UTF-8.
// Modules may hand out names holding code points U+DC80..U+DCFF (the posix
// module's stand-ins for bytes that were not UTF-8); they are written as
// their three-byte UTF-8 forms, so every wide name round-trips exactly.
//
// A path read from an archive is accepted only when every component is
// non-empty, not "." or "..", holds no '/' and no NUL, and decodes; so no
// archive can name anything outside the directory it is restored into.
#pragma once
#include <string>
#include <vector>

namespace qbfs::archive {

using Components = std::vector<std::wstring>;

// False when a component is empty, ".", "..", holds '/' or NUL, or a code
// point that UTF-8 cannot carry.
bool encode_path(Components const& components, std::string& out);

// The components of an archive path; false with `why` in words when the
// path is not acceptable.
bool decode_path(std::string const& path, Components& out, std::string& why);

// A path for messages, in the form of terminal_text()
// (archive_terminal_text.h): what a terminal would act on is escaped.
std::string display_path(std::string const& path);
std::string display_path(Components const& components);

}  // namespace qbfs::archive
