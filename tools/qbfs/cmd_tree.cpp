// `qbfs tree`: start the layer, build the DLE tree, print it, tear it down.
//
// The default output is the layer's own tree dump (the format its
// diagnostics use); --brief prints one indented line per element instead.
#include <cstdio>
#include <cstring>
#include <string>

#include <qbfsys/dle.h>
#include <qbhost/strings.h>
#include <qbhost/zprintf.h>

#include "archive/archive_terminal_text.h"
#include "arguments.h"
#include "commands.h"
#include "layer_session.h"
#include "status_text.h"
#include "stdout_lines.h"

namespace qbfs {
namespace {

// A mount point may be named anything: its name is escaped for the terminal.
std::string utf8(wchar_t const* text) { return text ? archive::terminal_text(std::wstring_view(text)) : std::string(); }

void print_brief(_Q_HEADER const& list, int depth) {
  for (_Q_ELEM* e = list.q_head; e != nullptr; e = e->q_next) {
    auto* dle = reinterpret_cast<GENERIC_DLE*>(e);
    std::printf("%*s%s  (file system %u, type %u, subtype %u%s%s)\n", depth * 2, "",
                utf8(dle->device_name).c_str(), DLE_FsysIndex(dle), dle->type & 0x7FFFu,
                dle->subtype, dle->hidden ? ", hidden" : "",
                (dle->status_flags & DLE_STATUS_UNAVAILABLE) ? ", unavailable" : "");
    print_brief(dle->child_q, depth + 1);
  }
}

}  // namespace

int cmd_tree(Options const& options, int argc, char** argv) {
  static constexpr char kCommand[] = "qbfs tree";
  static constexpr char kHelp[] =
      "usage: qbfs tree [--brief]\n"
      "\n"
      "Starts the layer with the modules, builds this machine's tree of backup\n"
      "elements (DLEs) and prints it: the layer's own dump, or with --brief one\n"
      "indented line per element (its name, file system, type and subtype).\n"
      "The names it prints are the names 'qbfs backup' takes.\n"
      "\n"
      "Exit status: 0, 1 when no element was found or the tree is incomplete.\n";
  Arguments args;
  if (int const rc = parse_arguments(argc, argv, kCommand, {{nullptr, "--brief", false}}, args); rc != 0)
    return rc;
  if (args.help) return std::fputs(kHelp, stdout), 0;
  if (!args.operands.empty()) return usage_error(kCommand, "unknown argument " + args.operands.front());
  bool const brief = args.has("--brief");
  LayerSession session(options);
  if (!session.usable()) {
    std::fprintf(stderr, "qbfs tree: the layer did not start: %s\n",
                 describe_status(session.status()).c_str());
    return 1;
  }
  HEAD_DLE* head = nullptr;
  FS_STATUS status = FS_InitDleList(&head, session.cfg());
  bool const empty = head == nullptr || head->dle_q.q_head == nullptr;
  if (empty) {
    // An empty dump would only repeat that nothing was found.
    std::fprintf(stderr, "qbfs tree: no backup element was found%s%s\n",
                 status != FS_SUCCESS ? ": " : "",
                 status != FS_SUCCESS ? describe_status(status).c_str() : "");
    FS_DeinitDleList(head);
    return 1;
  }
  if (status != FS_SUCCESS)
    std::fprintf(stderr, "qbfs tree: the tree may be incomplete: %s\n",
                 describe_status(status).c_str());
  if (brief) {
    print_brief(head->dle_q, 0);
  } else {
    // The layer's own dump, without the elements' addresses, which mean
    // nothing to a person.
    StdoutLines to_stdout(StdoutLines::without_addresses);
    DLE_PrintTree(head, L"DLE Tree");
  }
  FS_DeinitDleList(head);
  return status == FS_SUCCESS ? 0 : 1;
}

}  // namespace qbfs
