// debug_pt: a small interactive aid that keeps a current tree (the context)
// and offers short operations to look at and change it, with a trace log.
//
// Every operation does nothing when no context is set or a name is null, and
// never throws: an exception inside clears the context. The tree operations
// return the aid itself so that calls chain:
//   debug_pt::i().p(&tree).ast("rec").mv("rec").al("n").av("n").cv("n", 0, L"5");
// mv() to a path that leads to no tree (the null tree) clears the context.
// dv() gives a value in its XML text form (a nested tree as its XML document).
#pragma once
#include <string>
#include <qbfsys/fs_export.h>

class fs_property_tree;

class debug_pt {
 public:
  // The process-wide aid.
  FS_EXPORT static debug_pt& i();

  virtual debug_pt& p(fs_property_tree* tree) = 0;
  virtual debug_pt& mv(char const* path) = 0;
  virtual debug_pt& as(char const* name) = 0;
  virtual debug_pt& al(char const* name) = 0;
  virtual debug_pt& ad(char const* name) = 0;
  virtual debug_pt& axml(char const* name) = 0;
  virtual debug_pt& ast(char const* name) = 0;
  virtual debug_pt& av(char const* name) = 0;
  virtual debug_pt& cv(char const* name, unsigned long position, wchar_t const* text) = 0;
  virtual std::wstring dv(char const* name, unsigned long position) = 0;
  virtual debug_pt& rp(char const* name) = 0;
  virtual debug_pt& rv(char const* name, unsigned long position) = 0;
  virtual std::wstring dp() = 0;
  virtual debug_pt& begin_log() = 0;
  virtual std::wstring end_log() = 0;

 protected:
  debug_pt() = default;
  debug_pt(debug_pt const&) = delete;
  debug_pt& operator=(debug_pt const&) = delete;
  virtual ~debug_pt() = default;
};
