// Compiled against the staged public headers alone, as a module author's
// code would be: the umbrella header compiles on its own, the records keep
// every size and offset the media and the modules rely on, and a few entry
// points link and answer.
#include <qbfsys/qbfsys.h>

#include <cstddef>
#include <cstdio>
#include <cwchar>

#define AT(type, field, offset) static_assert(offsetof(type, field) == (offset), #type "." #field)
#define AREA(field, offset) \
  static_assert(offsetof(DBLK, area) + offsetof(decltype(DBLK::area), field) == (offset), #field)

static_assert(sizeof(DBLK) == 4184, "DBLK");
AT(DBLK, blk_type, 0);
AT(DBLK, blk_subtype, 8);
AT(DBLK, format_attrib, 12);
AT(DBLK, os_name, 16);
AT(DBLK, os_info, 24);
AT(DBLK, obj_flags, 40);
AT(DBLK, format_word2, 48);
AT(DBLK, format_position, 64);
AT(DBLK, strm_buffered, 72);
AT(DBLK, strm_aux16, 74);
AT(DBLK, name_char_type, 76);
AT(DBLK, os_info_size, 78);
AT(DBLK, qbds_id, 80);
AT(DBLK, os_id, 81);
AT(DBLK, os_ver, 82);
AREA(vcb.attrib1, 88);
AREA(vcb.attrib2, 608);
AREA(cfdb.value1, 88);
AREA(cfdb.attrib1, 96);
AREA(cfdb.attrib2, 100);
AREA(cfdb.value2, 104);
AREA(obj.obj_type, 88);
AREA(gen.obj_type, 88);
AREA(gen.display_size, 104);
AREA(gen.attrib1, 112);
AREA(gen.bdate, 116);
AREA(gen.cdate, 132);
AREA(gen.mdate, 148);
AREA(gen.adate, 164);
AREA(gen.attrib2, 184);
AREA(gen.ext, 188 + 4);
AREA(gen.ext_name, 328);
static_assert(sizeof(_DATE_TIME) == 16, "_DATE_TIME");

static_assert(sizeof(STREAM_INFO) == 32, "STREAM_INFO");
AT(STREAM_INFO, id, 0);
AT(STREAM_INFO, fs_attrib, 4);
AT(STREAM_INFO, tf_attrib, 6);
AT(STREAM_INFO, size, 8);
AT(STREAM_INFO, encr_word, 16);
AT(STREAM_INFO, cmpr_word, 20);
AT(STREAM_INFO, tail, 24);

AT(_CREATE_DBLK, blk_type, 8);
AT(_CREATE_DBLK, selector, 9);
static_assert(std::is_trivially_destructible<_CREATE_DBLK>::value, "_CREATE_DBLK");
static_assert(std::is_trivially_destructible<_GEN_DBLK_DATA>::value, "_GEN_DBLK_DATA");

static_assert(sizeof(_FUNC_LIST) == 920, "_FUNC_LIST");
AT(_FUNC_LIST, ModAttrib1DBLK, 42 * 8);
AT(_FUNC_LIST, ModAttrib2DBLK, 43 * 8);
AT(_FUNC_LIST, SizeofOSInfo, 48 * 8);
AT(_FUNC_LIST, GetOS_InfoDBLK, 49 * 8);
AT(_FUNC_LIST, CreateDBLK, 54 * 8);

static_assert(DBLK_KIND_UDB == 0 && DBLK_KIND_VCB == 1 && DBLK_KIND_DDB == 8 &&
                  DBLK_KIND_FDB == 9 && DBLK_KIND_CFDB == 11 && DBLK_KIND_EODB == 17,
              "block kinds");
static_assert(DBLK_SUBTYPE_CLST == 34, "cluster sub-code");
static_assert(STRM_FILE_NAME == 0x4D414E46 && qb_strm_id("PNAM") == STRM_PATH_NAME, "ids");

int main() {
  int failures = 0;
  auto check = [&](bool ok, char const* what) {
    if (!ok) {
      std::fprintf(stderr, "failed: %s\n", what);
      ++failures;
    }
  };
  check(std::wcscmp(FS_GetStrmIdString(STRM_GENERIC_DATA), L"STRM_GENERIC_DATA        ") == 0,
        "stream id name");
  check(FS_GetDelimiterFromOSID(85, 0) == L'/', "delimiter");
  STREAM_INFO header{};
  FS_InitStrmInfo(&header, STRM_NT_SPARSE, 1, 2);
  check(header.id == STRM_NT_SPARSE && header.size == 2, "stream header");
  DBLK blk{};
  blk.blk_type = DBLK_KIND_CFDB;
  blk.area.cfdb.attrib2 = 5;
  check(FS_GetAttrib2FromDBLK(nullptr, &blk) == 5, "corrupt-file word 2");
  return failures == 0 ? 0 : 1;
}
