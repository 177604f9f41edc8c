// GEN_DupBlk and GEN_ReleaseBlk: a block's name elements are the handle's,
// so a copy gets elements of its own and a release gives each back once.
// The extended-attribute fields are only looked at for the sub-codes that
// have them: for the numeric sub-code the same bytes hold numbers.
#include <cstring>

#include <qbfsys/dblk.h>
#include <qbfsys/dblk_names.h>
#include <qbfsys/gen.h>
#include <qbfsys/name_pool.h>

namespace {

// The element's copy in a fresh element, or null when memory runs out.
FS_NAME_Q_ELEM* copy_of(FSYS_HAND_STRUCT* hand, FS_NAME_Q_ELEM const* element) {
  FS_NAME_Q_ELEM* copy = FS_AllocPathOrName(hand, element->size);
  if (copy == nullptr) return nullptr;
  std::memcpy(copy->buffer, element->buffer, element->size);
  copy->size = element->size;
  return copy;
}

// Replaces each name field of the copy by its own element; false when one
// could not be made (the fields not yet copied are cleared).
bool own_names(FSYS_HAND_STRUCT* hand, DBLK* copy) {
  FS_NAME_Q_ELEM** fields[4] = {&copy->os_name, nullptr, nullptr, nullptr};
  if (dblk_has_ea_names(copy)) {
    fields[1] = &copy->area.gen.ext.ea.ea_name1;
    fields[2] = &copy->area.gen.ext.ea.ea_name2;
  }
  if (dblk_is_object(copy)) fields[3] = &copy->area.gen.ext_name;
  bool ok = true;
  for (FS_NAME_Q_ELEM** field : fields) {
    if (field == nullptr || *field == nullptr) continue;
    *field = ok ? copy_of(hand, *field) : nullptr;
    ok = ok && *field != nullptr;
  }
  return ok;
}

}  // namespace

FS_STATUS GEN_DupBlk(FSYS_HAND_STRUCT* hand, DBLK* source, DBLK* copy) {
  if (hand == nullptr || source == nullptr || copy == nullptr) return FS_ERR_BAD_PARAMETER;
  if (copy != source) std::memcpy(copy, source, sizeof *copy);
  if (own_names(hand, copy)) return FS_SUCCESS;
  GEN_ReleaseBlk(hand, copy);
  return FS_ERR_NO_MEMORY;
}

FS_STATUS GEN_ReleaseBlk(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  if (hand == nullptr || blk == nullptr) return FS_ERR_BAD_PARAMETER;
  FS_ReleaseOSPathOrNameInDBLK(hand, blk);
  if (dblk_has_ea_names(blk)) {
    FS_ReleaseExtendedAttribNameInGenDBLK(hand, blk, GEN_EA_NAME_1);
    FS_ReleaseExtendedAttribNameInGenDBLK(hand, blk, GEN_EA_NAME_2);
  }
  if (dblk_is_object(blk) && blk->area.gen.ext_name != nullptr)
    FS_ReleasePathOrName(hand, &blk->area.gen.ext_name);
  return FS_SUCCESS;
}
