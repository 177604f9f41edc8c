// The attribute-word accessors: FS_GetAttrib1FromDBLK, FS_SetAttrib1FromDBLK,
// FS_GetAttrib2FromDBLK, FS_SetAttrib2InDBLK.
//
// Volume/set and corrupt-file blocks are the layer's own and are read in
// place; directory and file blocks belong to their file system, which is
// asked even for the words the generic file system keeps at fixed places,
// because a module's blocks keep them where the module likes.
#include <qbfsys/dblk_access.h>
#include <qbfsys/handles.h>

#include "fs_dispatch.h"

namespace {

enum class Word { first, second };
constexpr int kRead = 0;
constexpr int kWrite = 1;


// The block's own word of a volume/set or corrupt-file block, else null.
std::uint32_t* own_word(DBLK* blk, Word word) {
  switch (blk->blk_type) {
    case DBLK_KIND_VCB:
      return word == Word::first ? &blk->area.vcb.attrib1 : &blk->area.vcb.attrib2;
    case DBLK_KIND_CFDB:
      return word == Word::first ? &blk->area.cfdb.attrib1 : &blk->area.cfdb.attrib2;
    default:
      return nullptr;
  }
}

std::uint32_t ask_file_system(FSYS_HAND_STRUCT* hand, DBLK* blk, Word word, int direction,
                              std::uint32_t value) {
  unsigned int word_value = value;
  if (word == Word::first) {
    fsys::dispatch(hand, &FS_FshBase::ModAttrib1DBLK, &_FUNC_LIST::ModAttrib1DBLK,
                   FS_ERR_UNIMPLEMENTED, direction, blk, &word_value);
  } else {
    fsys::dispatch(hand, &FS_FshBase::ModAttrib2DBLK, &_FUNC_LIST::ModAttrib2DBLK,
                   FS_ERR_UNIMPLEMENTED, direction, blk, &word_value);
  }
  return word_value;
}

std::uint32_t get_word(FSYS_HAND_STRUCT* hand, DBLK* blk, Word word) {
  if (blk == nullptr) return 0;
  if (std::uint32_t* own = own_word(blk, word)) return *own;
  if (!dblk_is_object(blk)) return 0;
  return ask_file_system(hand, blk, word, kRead, 0);
}

void set_word(FSYS_HAND_STRUCT* hand, DBLK* blk, Word word, std::uint32_t value) {
  if (blk == nullptr) return;
  if (std::uint32_t* own = own_word(blk, word)) {
    *own = value;
  } else if (dblk_is_object(blk)) {
    ask_file_system(hand, blk, word, kWrite, value);
  }
}

// The object flags a file system cannot see in its own word.
std::uint32_t mapped_flags(DBLK const* blk) {
  std::uint32_t const flags = blk->obj_flags;
  std::uint32_t add = 0;
  if (flags & DBLK_OBJ_ATTR_BIT25) add |= DBLK_ATTR1_BIT25;
  if (blk->blk_type == DBLK_KIND_FDB) {
    if (flags & DBLK_OBJ_FILE_ATTR_BIT19) add |= DBLK_ATTR1_BIT19;
    if (flags & DBLK_OBJ_FILE_ATTR_BIT20) add |= DBLK_ATTR1_BIT20;
  } else if (flags & DBLK_OBJ_DIR_ATTR_BIT19) {
    add |= DBLK_ATTR1_BIT19;
  }
  return add;
}

}  // namespace

std::uint32_t FS_GetAttrib1FromDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  std::uint32_t word = get_word(hand, blk, Word::first);
  if (blk != nullptr && dblk_is_object(blk)) word |= mapped_flags(blk);
  return word;
}

std::uint32_t FS_SetAttrib1FromDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned int value) {
  set_word(hand, blk, Word::first, value);
  return 0;
}

std::uint32_t FS_GetAttrib2FromDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  return get_word(hand, blk, Word::second);
}

std::uint32_t FS_SetAttrib2InDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned int value) {
  set_word(hand, blk, Word::second, value);
  return 0;
}
