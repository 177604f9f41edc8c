// The tree dump: one line per element with its identifying fields, for
// diagnosis. Shared by FS_BlowOutMachine and the command-line host.
#include "dle_dump.h"

#include <qbhost/zprintf.h>

namespace fsys {
namespace {

// The indentation source: the first n of these spaces indent a line, so the
// indentation stops growing at its length.
constexpr wchar_t kSpaces[] =
    L"                                                                          "
    L"                                                                          "
    L"      ";
static_assert(sizeof(kSpaces) / sizeof(wchar_t) == 155, "154 spaces");

void dump_element(GENERIC_DLE const* dle, int indent) {
  std::uint64_t reason = 0;
  if ((dle->feature1 & DLE_FEATURE1_UNSELECTED) && dle->unselect != nullptr)
    reason = dle->unselect->reason;
  QB_Zprintf(0,
             L"%.*ls-->%ls<-- address %p type %d subtype %d feature bits 0x%x 0x%x dataId %d "
             L"qbdsId %d qbdsVer %d Unselect Reason 0x%x %s",
             indent, kSpaces, dle->device_name ? dle->device_name : L"",
             static_cast<void const*>(dle), static_cast<int>(dle->type),
             static_cast<int>(dle->subtype), dle->feature1, dle->feature2,
             static_cast<int>(dle->dataId), static_cast<int>(dle->qbdsId),
             static_cast<int>(dle->qbdsVer), static_cast<unsigned>(reason),
             dle->hidden != 0 ? "HIDDEN" : "");
  for (_Q_ELEM* c = dle->child_q.q_head; c != nullptr; c = c->q_next)
    dump_element(reinterpret_cast<GENERIC_DLE const*>(c), indent + 4);
}

}  // namespace

void dump_dle_tree(HEAD_DLE const* head, wchar_t const* title) {
  QB_Zprintf(0, L"******************************************************************************");
  QB_Zprintf(0, L"%ls", title != nullptr ? title : L"");
  if (head != nullptr) {
    for (_Q_ELEM* e = head->dle_q.q_head; e != nullptr; e = e->q_next)
      dump_element(reinterpret_cast<GENERIC_DLE const*>(e), 0);
  }
  QB_Zprintf(0, L"End of List");
}

}  // namespace fsys
