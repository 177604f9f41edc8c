// FS_GetStrmIdString: the display names of the stream ids.
//
// The table is walked in order and the first row with the id wins, so the
// second STRM_NT_DFS_JUNCTION row is never reached; it stays because the
// table mirrors the data format's own list row for row. The padded wide
// names are built once, on first use, from the narrow names below.
#include <array>
#include <cstddef>

#include <qbfsys/stream_info.h>

namespace {

struct StreamRow {
  std::uint32_t id;
  char const* name;
};

constexpr StreamRow kRows[] = {
    {STRM_INVALID, "STRM_INVALID"},
    {STRM_GENERIC_DATA, "STRM_GENERIC_DATA"},
    {STRM_PAD, "STRM_PAD"},
    {STRM_EOM_CONT_PAD, "STRM_EOM_CONT_PAD"},
    {STRM_HWE_PAD, "STRM_HWE_PAD"},
    {STRM_APAD, "STRM_APAD"},
    {STRM_PATH_NAME, "STRM_PATH_NAME"},
    {STRM_FILE_NAME, "STRM_FILE_NAME"},
    {STRM_OS_INFO, "STRM_OS_INFO"},
    {STRM_OTC_SM, "STRM_OTC_SM"},
    {STRM_OTC_SM2, "STRM_OTC_SM2"},
    {STRM_OTC_FDD, "STRM_OTC_FDD"},
    {STRM_OS2_EA, "STRM_OS2_EA"},
    {STRM_OS2_ACL, "STRM_OS2_ACL"},
    {STRM_NT_EA, "STRM_NT_EA"},
    {STRM_NT_ACL, "STRM_NT_ACL"},
    {STRM_HPUX_ACL, "STRM_HPUX_ACL"},
    {STRM_AIX_ACL, "STRM_AIX_ACL"},
    {STRM_SOL_ACL, "STRM_SOL_ACL"},
    {STRM_SOLX86_ACL, "STRM_SOLX86_ACL"},
    {STRM_MAC_CAT, "STRM_MAC_CAT"},
    {STRM_MAC_RESOURCE, "STRM_MAC_RESOURCE"},
    {STRM_NOV_TRUST_286, "STRM_NOV_TRUST_286"},
    {STRM_NOV_TRUST_386, "STRM_NOV_TRUST_386"},
    {STRM_NTFS_ALT_DATA, "STRM_NTFS_ALT_DATA"},
    {STRM_NTFS_LINK, "STRM_NTFS_LINK"},
    {STRM_SMS_DATA, "STRM_SMS_DATA"},
    {STRM_CHECKSUM_DATA, "STRM_CHECKSUM_DATA"},
    {STRM_WIN95_REGY, "STRM_WIN95_REGY"},
    {STRM_EMS_MONO_DB, "STRM_EMS_MONO_DB"},
    {STRM_EMS_MONO_LOG, "STRM_EMS_MONO_LOG"},
    {STRM_EMS_MONO_PATHS, "STRM_EMS_MONO_PATHS"},
    {STRM_ESE_OBJ, "STRM_ESE_OBJ"},
    {STRM_ESE_DLL, "STRM_ESE_DLL"},
    {STRM_ESE_MBOX, "STRM_ESE_MBOX"},
    {STRM_ESE_MBOX_DIFF, "STRM_ESE_MBOX_DIFF"},
    {STRM_MBOX_SESSION, "STRM_MBOX_SESSION"},
    {STRM_MBOX_FOLDER, "STRM_MBOX_FOLDER"},
    {STRM_MBOX_MESSAGE, "STRM_MBOX_MESSAGE"},
    {STRM_MSDOC_DB, "STRM_MSDOC_DB"},
    {STRM_FAMILY_GUID, "STRM_FAMILY_GUID"},
    {STRM_MULTI_PIPE, "STRM_MULTI_PIPE"},
    {STRM_DR_CD_IMAGE, "STRM_DR_CD_IMAGE"},
    {STRM_FMAP_IMAGE, "STRM_FMAP_IMAGE"},
    {STRM_VMAP_IMAGE, "STRM_VMAP_IMAGE"},
    {STRM_VIMG_IMAGE, "STRM_VIMG_IMAGE"},
    {STRM_CMAP_IMAGE, "STRM_CMAP_IMAGE"},
    {STRM_CIMG_IMAGE, "STRM_CIMG_IMAGE"},
    {STRM_IPAD, "STRM_IPAD"},
    {STRM_NT_ENCRYPT, "STRM_NT_ENCRYPT"},
    {STRM_NT_SPARSE, "STRM_NT_SPARSE"},
    {STRM_NT_QUOTA, "STRM_NT_QUOTA"},
    {STRM_NT_QUOTA_PROP, "STRM_NT_QUOTA_PROP"},
    {STRM_NT_PROP_PAGE, "STRM_NT_PROP_PAGE"},
    {STRM_NT_REPARSE, "STRM_NT_REPARSE"},
    {STRM_NT_OBJECT_ID, "STRM_NT_OBJECT_ID"},
    {STRM_NT_VOLUME_ID, "STRM_NT_VOLUME_ID"},
    {STRM_DS_MONO_DB, "STRM_DS_MONO_DB"},
    {STRM_DS_MONO_LOG, "STRM_DS_MONO_LOG"},
    {STRM_SQL_FILE_PATHS, "STRM_SQL_FILE_PATHS"},
    {STRM_SQL_SNAP_DATA, "STRM_SQL_SNAP_DATA"},
    {STRM_SQL_SNAP_DATA2, "STRM_SQL_SNAP_DATA2"},
    {STRM_SQL_SNAP_DATA3, "STRM_SQL_SNAP_DATA3"},
    {STRM_SQL_SNAP_DATA4, "STRM_SQL_SNAP_DATA4"},
    {STRM_SQL_SNAP_DATA5, "STRM_SQL_SNAP_DATA5"},
    {STRM_EXTRAS, "STRM_EXTRAS"},
    {STRM_NT_DFS_JUNCTION, "STRM_NT_DFS_JUNCTION"},
    {STRM_NT_DFS_JUNCTION_NEW, "STRM_NT_DFS_JUNCTION_NEW"},
    {STRM_NT_DFS_JUNCTION, "STRM_NT_DFS_JUNCTION"},
    {STRM_LN5_CHANGEDATA, "STRM_LN5_CHANGEDATA"},
    {STRM_LN5_NLONAME, "STRM_LN5_NLONAME"},
    {STRM_MDOC_PROP, "STRM_MDOC_PROP"},
    {STRM_MDOC_SEC, "STRM_MDOC_SEC"},
    {STRM_OTC_PAD, "STRM_OTC_PAD"},
    {STRM_HEBS, "STRM_HEBS"},
    {STRM_SC_BKUP_COMP_DOC, "STRM_SC_BKUP_COMP_DOC"},
    {STRM_SC_WRITER_METADATA, "STRM_SC_WRITER_METADATA"},
    {STRM_SC_WRITER_TABLE, "STRM_SC_WRITER_TABLE"},
    {STRM_SPSV2_TOPOLOGY, "STRM_SPSV2_TOPOLOGY"},
    {STRM_SPSV2_INDEX, "STRM_SPSV2_INDEX"},
    {STRM_SPSV2_SSO, "STRM_SPSV2_SSO"},
    {STRM_SPSV2_WS_NAMES, "STRM_SPSV2_WS_NAMES"},
    {STRM_SPSV2_TS_INFO, "STRM_SPSV2_TS_INFO"},
    {STRM_SPSV2_TS_DB_INFO, "STRM_SPSV2_TS_DB_INFO"},
    {STRM_SPSV2_DOC_OBJ, "STRM_SPSV2_DOC_OBJ"},
    {STRM_SPSV2_DB_TABLE_INFO, "STRM_SPSV2_DB_TABLE_INFO"},
    {STRM_BRU_METADATA, "STRM_BRU_METADATA"},
    {STRM_BRU_PATHDATA, "STRM_BRU_PATHDATA"},
    {STRM_BRU_FILEDATA, "STRM_BRU_FILEDATA"},
    {STRM_BRU_ENC_METADATA, "STRM_BRU_ENC_METADATA"},
    {STRM_BRU_ENC_PATHDATA, "STRM_BRU_ENC_PATHDATA"},
    {STRM_BRU_ENC_FILEDATA, "STRM_BRU_ENC_FILEDATA"},
    {STRM_COBJ_NAME_LIST, "STRM_COBJ_NAME_LIST"},
    {STRM_BSA_DBINFO, "STRM_BSA_DBINFO"},
    {STRM_AD_PROP_NAME, "STRM_AD_PROP_NAME"},
    {STRM_AD_PROP, "STRM_AD_PROP"},
    {STRM_AD_VCB_CACHE, "STRM_AD_VCB_CACHE"},
    {STRM_PDI_STREAM, "STRM_PDI_STREAM"},
    {STRM_PDI_BUFFER, "STRM_PDI_BUFFER"},
    {STRM_VOLB_PLATRM, "STRM_VOLB_PLATRM"},
    {STRM_OPAQUE_DATA, "STRM_OPAQUE_DATA"},
    {STRM_VMWARE_METADATA, "STRM_VMWARE_METADATA"},
    {STRM_VMWARE_DISK_METADATA, "STRM_VMWARE_DISK_METADATA"},
    {STRM_VMWARE_DISK_DATA, "STRM_VMWARE_DISK_DATA"},
    {STRM_TABLE_END, nullptr},
};
constexpr std::size_t kRowCount = sizeof kRows / sizeof kRows[0] - 1;

using PaddedName = std::array<wchar_t, FS_STRM_NAME_WIDTH + 1>;

std::array<PaddedName, kRowCount> build_names() {
  std::array<PaddedName, kRowCount> names{};
  for (std::size_t row = 0; row < kRowCount; ++row) {
    PaddedName& out = names[row];
    std::size_t i = 0;
    for (char const* c = kRows[row].name; *c != '\0' && i < FS_STRM_NAME_WIDTH; ++c, ++i)
      out[i] = static_cast<wchar_t>(*c);
    for (; i < FS_STRM_NAME_WIDTH; ++i) out[i] = L' ';
    out[FS_STRM_NAME_WIDTH] = L'\0';
  }
  return names;
}

}  // namespace

wchar_t const* FS_GetStrmIdString(unsigned int id) {
  static std::array<PaddedName, kRowCount> const names = build_names();
  for (std::size_t row = 0; kRows[row].id != STRM_TABLE_END; ++row) {
    if (kRows[row].id == id) return names[row].data();
  }
  return L"Unknown";
}
