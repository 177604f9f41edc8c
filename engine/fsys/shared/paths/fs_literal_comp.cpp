// FS_LiteralComp: the segment comparer of file-specification matching,
// exported for modules that compare name pieces the same way.
#include <qbfsys/fs_filespec.h>

#include "filespec_literal.h"

short FS_LiteralComp(wchar_t* pattern, wchar_t* text, short count, int caseSensitive,
                     int literal) noexcept {
  if (pattern == nullptr || text == nullptr) return count;  // nothing to contradict a match
  if (count <= 0) return 0;  // a negative count has no characters to look at
  return static_cast<short>(
      qbfsys::filespec::literal_prefix(pattern, text, count, caseSensitive, literal,
                                        qbfsys::filespec::Folder()));
}
