// `qbfs attach PATH`: attach a handle to the DLE that holds a local path,
// report the result and detach.
//
// The DLE chosen is the local file-system element whose device name (a mount
// point or configured root) is the longest leading part of PATH.
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string>

#include <qbfsys/dle.h>
#include <qbfsys/handles.h>
#include <qbhost/strings.h>

#include "archive/archive_terminal_text.h"
#include "arguments.h"
#include "commands.h"
#include "layer_session.h"
#include "status_text.h"

namespace qbfs {
namespace {

bool holds(std::wstring const& root, std::wstring const& path) {
  if (path.compare(0, root.size(), root) != 0) return false;
  return root == L"/" || path.size() == root.size() || path[root.size()] == L'/';
}

// The deepest element of the tree whose device name holds `path`.
GENERIC_DLE* holder_of(_Q_HEADER const& list, std::wstring const& path, GENERIC_DLE* best) {
  for (_Q_ELEM* e = list.q_head; e != nullptr; e = e->q_next) {
    auto* dle = reinterpret_cast<GENERIC_DLE*>(e);
    if (dle->device_name != nullptr && dle->device_name[0] == L'/' &&
        holds(dle->device_name, path) &&
        (best == nullptr || std::wcslen(dle->device_name) > std::wcslen(best->device_name)))
      best = dle;
    best = holder_of(dle->child_q, path, best);
  }
  return best;
}

}  // namespace

int cmd_attach(Options const& options, int argc, char** argv) {
  static constexpr char kCommand[] = "qbfs attach";
  static constexpr char kHelp[] =
      "usage: qbfs attach PATH\n"
      "\n"
      "Attaches a handle to the backup element that holds the local PATH (the\n"
      "element whose mount point or root is the longest leading part of it),\n"
      "reports the result and detaches.\n"
      "\n"
      "Exit status: 0 when the attach succeeded, 1 when it failed, 2 on bad usage.\n";
  Arguments args;
  if (int const rc = parse_arguments(argc, argv, kCommand, {}, args); rc != 0) return rc;
  if (args.help) return std::fputs(kHelp, stdout), 0;
  if (args.operands.size() != 1) return usage_error(kCommand, "takes one PATH");
  if (args.operands[0].empty()) return usage_error(kCommand, "the path is empty");
  std::string const argument = args.operands[0];
  char resolved[PATH_MAX];
  if (realpath(argument.c_str(), resolved) == nullptr) {
    char const* const reason = std::strerror(errno);
    std::fprintf(stderr, "qbfs attach: cannot resolve the path '%s': %s\n",
                 archive::terminal_text(argument).c_str(), reason);
    return 1;
  }
  std::string narrow(resolved);
  std::wstring path = wcstring::from_utf8(narrow.data(), narrow.size());

  LayerSession session(options);
  if (!session.usable()) {
    std::fprintf(stderr, "qbfs attach: the layer did not start: %s\n",
                 describe_status(session.status()).c_str());
    return 1;
  }
  HEAD_DLE* head = nullptr;
  FS_InitDleList(&head, session.cfg());
  GENERIC_DLE* dle = head != nullptr ? holder_of(head->dle_q, path, nullptr) : nullptr;
  int rc = 1;
  if (dle == nullptr) {
    std::fprintf(stderr, "qbfs attach: no backup element (DLE) holds %s%s\n", archive::terminal_text(resolved).c_str(),
                 options.modules.empty() ? "; no module is loaded" : "");
  } else {
    std::string const name = archive::terminal_text(std::wstring_view(dle->device_name != nullptr ? dle->device_name : L""));
    FSYS_HAND_STRUCT* hand = nullptr;
    FS_STATUS status = FS_AttachToDLE(&hand, dle, session.cfg(), nullptr, nullptr, 0, 0, nullptr,
                                      nullptr, 0, nullptr, false);
    std::printf("attach to %s (file system %u): %s\n", name.c_str(), DLE_FsysIndex(dle),
                describe_status(status).c_str());
    if (hand != nullptr) {
      if (status == FS_STATUS_EXT_ERROR && hand->lastMsg != nullptr) {
        for (wchar_t const* m = hand->lastMsg; *m != L'\0'; m += std::wcslen(m) + 1)
          std::printf("  %s\n", archive::terminal_text(std::wstring_view(m)).c_str());
      }
      std::printf("attach count while attached: %u\n", dle->attach_count);
      FS_STATUS detached = FS_DetachDLE(hand);
      std::printf("detach: %s\n", describe_status(detached).c_str());
      rc = (status == FS_SUCCESS && detached == FS_SUCCESS) ? 0 : 1;
    }
  }
  FS_DeinitDleList(head);
  return rc;
}

}  // namespace qbfs
