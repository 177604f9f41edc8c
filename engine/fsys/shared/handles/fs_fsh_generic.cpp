// FS_FshGeneric::GetDblkExtendedProperties: a block as a property tree.
//
// The words a file system owns (attributes, dates, display size) are asked
// through this adapter's own operations, so a module's table answers for
// its blocks exactly as it does for the layer.
#include <cwchar>
#include <new>

#include <fs_property_tree.h>
#include <qbfsys/dblk.h>
#include <qbfsys/dblk_access.h>
#include <qbfsys/fs_fsh_generic.h>
#include <qbfsys/handles.h>
#include <qbfsys/name_pool.h>

namespace {

wchar_t const* kind_name(DBLK const* blk) {
  switch (blk->blk_type) {
    case DBLK_KIND_UDB: return L"UDB";
    case DBLK_KIND_VCB: return L"VCB";
    case DBLK_KIND_DDB: return blk->blk_subtype == DBLK_SUBTYPE_CLST ? L"CLST" : L"DDB";
    case DBLK_KIND_FDB: return L"FDB";
    case DBLK_KIND_CFDB: return L"CFDB";
    case DBLK_KIND_EODB: return L"EODB";
    default: return L"unknown";
  }
}

// The element's text up to its terminator, never past the element.
std::wstring name_of(FS_NAME_Q_ELEM const* element) {
  auto const* text = reinterpret_cast<wchar_t const*>(element->buffer);
  std::size_t const chars = element->size / sizeof(wchar_t);
  std::size_t length = 0;
  while (length < chars && text[length] != L'\0') ++length;
  return std::wstring(text, length);
}

std::wstring date_text(_DATE_TIME const& d) {
  wchar_t text[40];
  std::swprintf(text, sizeof text / sizeof text[0], L"%04u-%02u-%02u %02u:%02u:%02u.%07u", d.year,
                d.month, d.day, d.hour, d.minute, d.second, d.ticks);
  return text;
}


}  // namespace

FS_FshGeneric::~FS_FshGeneric() = default;

FS_STATUS FS_FshGeneric::GetDblkExtendedProperties(FSYS_HAND_STRUCT* hand, DBLK* blk,
                                                   fs_property_tree& tree) {
  if (hand == nullptr || blk == nullptr) return FS_ERR_BAD_PARAMETER;
  try {
    tree.add_uint32_property("kind", blk->blk_type);
    tree.add_str_property("kind_name", kind_name(blk));
    tree.add_uint32_property("subtype", blk->blk_subtype);
    tree.add_uint32_property("obj_flags", blk->obj_flags);
    tree.add_uint32_property("attrib1", FS_GetAttrib1FromDBLK(hand, blk));
    tree.add_uint32_property("attrib2", FS_GetAttrib2FromDBLK(hand, blk));
    tree.add_uint32_property("os_id", blk->os_id);
    tree.add_uint32_property("os_ver", blk->os_ver);
    tree.add_uint32_property("qbds_id", blk->qbds_id);
    wchar_t const delimiter[2] = {static_cast<wchar_t>(FS_GetDelimiterFromOSID(blk->os_id, blk->os_ver)),
                                  L'\0'};
    tree.add_str_property("delimiter", delimiter);
    tree.add_uint32_property("name_char_type", blk->name_char_type);
    tree.add_uint32_property("os_info_size", blk->os_info_size);
    tree.add_uint32_property("format_attrib", blk->format_attrib);
    tree.add_uint32_property("format_word2", blk->format_word2);
    tree.add_uint64_property("format_position", blk->format_position);
    if (blk->os_name != nullptr && blk->os_name->buffer != nullptr)
      tree.add_str_property("name", name_of(blk->os_name).c_str());

    if (dblk_is_object(blk) && hand->funcTable != nullptr) {
      if (hand->funcTable->GetDisplaySizeDBLK != nullptr)
        tree.add_uint64_property("display_size", GetDisplaySizeDBLK(hand, blk));
      struct Date {
        char const* name;
        FS_STATUS status;
        _DATE_TIME value;
      } dates[] = {{"cdate", 0, {}}, {"mdate", 0, {}}, {"bdate", 0, {}}, {"adate", 0, {}}};
      dates[0].status = GetCDateDBLK(hand, blk, &dates[0].value);
      dates[1].status = GetMDateDBLK(hand, blk, &dates[1].value);
      dates[2].status = ModBDateDBLK(hand, 0, blk, &dates[2].value);
      dates[3].status = ModADateDBLK(hand, 0, blk, &dates[3].value);
      for (auto const& d : dates)
        if (d.status == FS_SUCCESS && d.value.date_valid != 0)
          tree.add_str_property(d.name, date_text(d.value).c_str());
    }
  } catch (std::bad_alloc const&) {
    return FS_ERR_NO_MEMORY;
  } catch (...) {
    return FS_ERR_BAD_PARAMETER;
  }
  return FS_SUCCESS;
}
