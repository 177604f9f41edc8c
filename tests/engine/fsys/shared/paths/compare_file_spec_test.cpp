// Table of FS_CompareFileSpec cases: both modes, the flag bits and every
// special rule (plain '*' and '?' in one component of letters and digits are
// checked against textbook matching by the seeded reference test beside it).
// Counts are those of the buffers: W() includes the terminator, U() does
// not; L"a\0b" is a path in component form.
#include <qbfsys/fs_filespec.h>

#include <gtest/gtest.h>

#include <ostream>

#include "exact_wide.h"

using qbtest::ExactWide;
using qbtest::U;
using qbtest::W;

namespace {

struct SpecCase {
  char const* what;
  std::wstring name, spec;
  int flags, cs, partial, expected;
};

void PrintTo(SpecCase const& c, std::ostream* os) { *os << c.what; }

class CompareFileSpecTable : public testing::TestWithParam<SpecCase> {};

TEST_P(CompareFileSpecTable, Decides) {
  auto const& c = GetParam();
  ExactWide n(c.name), s(c.spec);
  EXPECT_EQ(FS_CompareFileSpec(n.get(), n.len(), s.get(), s.len(), c.cs, c.partial, c.flags),
            c.expected)
      << c.what;
}

constexpr int kClassic = 0, kSeg = FS_SPEC_SEGMENT_SEARCH, kLit = FS_SPEC_LITERAL;
constexpr int kNo = FS_SPEC_NO_MATCH, kYes = FS_SPEC_MATCH, kEnded = FS_SPEC_NAME_ENDED;

INSTANTIATE_TEST_SUITE_P(
    Classic, CompareFileSpecTable,
    testing::Values(
        SpecCase{"same name", W(L"report.doc"), W(L"report.doc"), kClassic, 0, 0, kYes},
        SpecCase{"*.txt", W(L"notes.txt"), W(L"*.txt"), kClassic, 0, 0, kYes},
        SpecCase{"*.txt, no extension", W(L"notes"), W(L"*.txt"), kClassic, 0, 0, kNo},
        SpecCase{"*.txt, other extension after", W(L"a.txt.bak"), W(L"*.txt"), kClassic, 0, 0, kNo},
        SpecCase{"*.txt, uncounted terminators", U(L"notes.txt"), U(L"*.txt"), kClassic, 0, 0, kYes},
        SpecCase{"*.txt uncounted: last segment floats", U(L"a.txt.bak"), U(L"*.txt"), kClassic, 0, 0, kYes},
        SpecCase{"README*", W(L"README.md"), W(L"README*"), kClassic, 0, 0, kYes},
        SpecCase{"foo. and no extension", W(L"foo"), W(L"foo."), kClassic, 0, 0, kYes},
        SpecCase{"foo. and an extension", W(L"foo.c"), W(L"foo."), kClassic, 0, 0, kNo},
        SpecCase{"foo. and a final dot", W(L"foo."), W(L"foo."), kClassic, 0, 0, kYes},
        SpecCase{"*.* and an extension", W(L"a.b"), W(L"*.*"), kClassic, 0, 0, kYes},
        SpecCase{"case folded", W(L"REPORT.Doc"), W(L"report.doc"), kClassic, 0, 0, kYes},
        SpecCase{"case kept", W(L"REPORT.Doc"), W(L"report.doc"), kClassic, 1, 0, kNo},
        SpecCase{"*.tmp", W(L"a.TMP"), W(L"*.tmp"), kClassic, 0, 0, kYes},
        SpecCase{"*.tmp, longer extension", W(L"a.tmpx"), W(L"*.tmp"), kClassic, 0, 0, kNo},
        SpecCase{"~*", W(L"~$doc.docx"), W(L"~*"), kClassic, 0, 0, kYes},
        SpecCase{"~* anchored", W(L"doc~"), W(L"~*"), kClassic, 0, 0, kNo},
        SpecCase{"data??.db", W(L"data01.db"), W(L"data??.db"), kClassic, 0, 0, kYes},
        SpecCase{"data??.db, one short", W(L"data1.db"), W(L"data??.db"), kClassic, 0, 0, kNo},
        SpecCase{"'?' at the first position", W(L""), U(L"?"), kClassic, 0, 0, kNo},
        SpecCase{"*.* and no extension", W(L"readme"), W(L"*.*"), kClassic, 0, 0, kYes},
        SpecCase{"*. and no extension", W(L"readme"), W(L"*."), kClassic, 0, 0, kYes},
        SpecCase{"*. and an extension", W(L"a.b"), W(L"*."), kClassic, 0, 0, kNo},
        SpecCase{"*. and a final dot", W(L"a."), W(L"*."), kClassic, 0, 0, kYes},
        SpecCase{"trailing .* at the name's end", W(L"abc"), W(L"abc.*"), kClassic, 0, 0, kYes},
        SpecCase{"trailing . at the name's end", W(L"abc"), W(L"abc."), kClassic, 0, 0, kYes},
        SpecCase{"no name at all", U(L""), U(L"a"), kClassic, 0, 0, kNo},
        SpecCase{"zero counts", U(L""), U(L""), kClassic, 0, 0, kYes},
        SpecCase{"empty spec", W(L"abc"), U(L""), kClassic, 0, 0, kNo},
        SpecCase{"name ended inside the path", W(L"dir"), W(L"dir\0sub\0*"), kClassic, 0, 0, kEnded},
        SpecCase{"* stays in its component", W(L"dir\0x\0a.tmp"), W(L"dir\0*.tmp"), kClassic, 0, 0, kNo},
        SpecCase{"* in the last component", W(L"dir\0a.tmp"), W(L"dir\0*.tmp"), kClassic, 0, 0, kYes},
        SpecCase{"** crosses components", W(L"dir\0x\0a.tmp"), W(L"dir\0**.tmp"), kClassic, 0, 0, kYes},
        SpecCase{"** as one star (0x2)", W(L"dir\0x\0a.tmp"), W(L"dir\0**.tmp"), FS_SPEC_SKIP_STARS, 0, 0, kNo},
        SpecCase{"*\\cache\\*", W(L"u\0cache\0x.dat"), W(L"*\0cache\0*"), kClassic, 0, 0, kYes},
        SpecCase{"*\\cache\\* one level deeper", W(L"h\0u\0cache\0x"), W(L"*\0cache\0*"), kClassic, 0, 0, kNo},
        SpecCase{"star stays classic (0x8): empty run", W(L"a"), W(L"a*"), FS_SPEC_STAY_CLASSIC, 0, 0, kYes},
        SpecCase{"star stays classic (0x8): no run", W(L"ab"), W(L"a*"), FS_SPEC_STAY_CLASSIC, 0, 0, kNo},
        SpecCase{"literal '?'", W(L"abc"), W(L"a?c"), kLit, 0, 0, kNo},
        SpecCase{"literal '?' as text", W(L"a?c"), W(L"a?c"), kLit, 0, 0, kYes},
        SpecCase{"literal star never matches", W(L"ab"), W(L"a*"), kLit, 0, 0, kNo},
        SpecCase{"literal star facing a star", W(L"a*c"), W(L"a*c"), kLit, 0, 0, kNo},
        SpecCase{"literal '?' run at the name's end", W(L"ab"), W(L"ab??"), kLit, 0, 0, kYes},
        SpecCase{"star facing a star stays a wildcard", W(L"a*x.c"), W(L"a*.c"), kClassic, 0, 0, kYes},
        SpecCase{"partial: one-character spec", W(L"abc"), U(L"x"), kClassic, 0, 1, kYes},
        SpecCase{"no partial: one-character spec", W(L"abc"), U(L"x"), kClassic, 0, 0, kNo},
        SpecCase{"partial: name goes on past its end", W(L"abc\0xyz"), W(L"abc"), kClassic, 0, 1, kYes},
        SpecCase{"no partial: name goes on", W(L"abc\0xyz"), W(L"abc"), kClassic, 0, 0, kNo},
        SpecCase{"partial: spec without terminator", W(L"abc"), U(L"abc"), kClassic, 0, 1, kNo},
        SpecCase{"flags 3 are classic", W(L"xabc"), W(L"abc"), 3, 0, 0, kNo},
        SpecCase{"flags 12 are classic", W(L"xabc"), W(L"abc"), 12, 0, 0, kNo},
        SpecCase{"flags -1: classic and literal", W(L"ab"), W(L"a*"), -1, 0, 0, kNo}));

INSTANTIATE_TEST_SUITE_P(
    SegmentSearch, CompareFileSpecTable,
    testing::Values(
        SpecCase{"* matches any name", W(L"anything.at.all"), U(L"*"), kSeg, 0, 0, kYes},
        SpecCase{"* matches an empty name", U(L""), U(L"*"), kSeg, 0, 0, kYes},
        SpecCase{"* with terminator", W(L"x\0y"), W(L"*"), kSeg, 0, 0, kYes},
        SpecCase{"unterminated segment floats", W(L"xabcy"), U(L"abc"), kSeg, 0, 0, kYes},
        SpecCase{"'?' is a wildcard despite 0x1", W(L"xabc"), W(L"a?c"), kSeg | kLit, 0, 0, kYes},
        SpecCase{".* and no extension", W(L"readme"), W(L".*"), kSeg, 0, 0, kYes},
        SpecCase{".* uncounted terminator", W(L"readme"), U(L".*"), kSeg, 0, 0, kYes},
        SpecCase{". and no extension", W(L"readme"), W(L"."), kSeg, 0, 0, kYes},
        SpecCase{". and an extension", W(L"a.b"), W(L"."), kSeg, 0, 0, kNo},
        SpecCase{". and a final dot", W(L"a."), W(L"."), kSeg, 0, 0, kYes},
        SpecCase{"trailing dot, no extension", W(L"xabc"), W(L"abc."), kSeg, 0, 0, kYes},
        SpecCase{"trailing dot, other name", W(L"xabd"), W(L"abc."), kSeg, 0, 0, kNo},
        SpecCase{"trailing dot, real dot", W(L"xabc."), W(L"abc."), kSeg, 0, 0, kYes},
        SpecCase{"first match wins, no backtracking", W(L"ab\0x\0ab\0y"), U(L"ab\0y"), kSeg, 0, 0, kNo},
        SpecCase{"plain search stops at a terminator", W(L"a\0bx"), U(L"x"), kSeg, 0, 0, kNo},
        SpecCase{"star form crosses terminators", W(L"a\0bx"), U(L"*x"), kSeg, 0, 0, kYes},
        SpecCase{"0x2 drops all leading stars", W(L"a\0bx"), U(L"**x"), kSeg | FS_SPEC_SKIP_STARS, 0, 0, kNo},
        SpecCase{"several stars in the star form", W(L"a\0bx"), U(L"***x"), kSeg, 0, 0, kYes},
        SpecCase{"only stars", W(L"abc"), U(L"***"), kSeg, 0, 0, kYes}));

}  // namespace
