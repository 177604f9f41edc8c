// `qbfs props FILE [PATH]`: loads a property tree from an XML file (UTF-8),
// prints it back in the tree's own XML form and, with PATH, answers the path
// query: a line `query "PATH":` followed by the XML of the nested tree
// reached.
// Exit codes: 0 done; 1 the file cannot be read or loaded, or the path leads
// to no tree; 2 bad usage, an invalid path included (checked before the file
// is read).
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include <fs_property_tree.h>

#include "archive/archive_terminal_text.h"
#include "arguments.h"
#include "commands.h"

namespace qbfs {
namespace {

// Only regular files are read, and only up to this size: a device such as
// /dev/zero never ends and a FIFO may never be written to.
constexpr off_t kMaxFileBytes = 64 << 20;
constexpr std::size_t kReadChunk = 1 << 16;

std::string what_it_is(mode_t mode) {
  if (S_ISDIR(mode)) return "a directory";
  if (S_ISFIFO(mode)) return "a FIFO";
  if (S_ISCHR(mode)) return "a character device";
  if (S_ISBLK(mode)) return "a block device";
  if (S_ISSOCK(mode)) return "a socket";
  return "not a regular file";
}

// Reads `path` into `text`; on failure returns a message naming the file
// and the reason.
std::string read_file(char const* path, std::string& text) {
  std::string name = std::string("'") + path + "'";
  // Opened without blocking, so that a FIFO without a writer is refused by
  // the check below instead of waiting for one.
  int fd = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return "cannot open " + name + ": " + std::strerror(errno);
  struct stat st;
  std::string problem;
  if (fstat(fd, &st) != 0) {
    problem = "cannot read " + name + ": " + std::strerror(errno);
  } else if (!S_ISREG(st.st_mode)) {
    problem = name + " is " + what_it_is(st.st_mode) + "; only regular files are read";
  } else if (st.st_size > kMaxFileBytes) {
    problem = name + " has " + std::to_string(st.st_size) + " bytes; the limit is " +
              std::to_string(kMaxFileBytes) + " bytes (64 MiB)";
  }
  // The file may grow while it is read: one byte beyond the limit is enough
  // to know.
  while (problem.empty()) {
    std::size_t const before = text.size();
    text.resize(before + kReadChunk);
    ssize_t n = read(fd, &text[before], kReadChunk);
    if (n < 0 && errno == EINTR) n = 0;
    if (n < 0) {
      problem = "cannot read " + name + ": " + std::strerror(errno);
      break;
    }
    text.resize(before + static_cast<std::size_t>(n));
    if (n == 0) break;
    if (text.size() > static_cast<std::size_t>(kMaxFileBytes))
      problem = name + " grew beyond the limit of " + std::to_string(kMaxFileBytes) +
                " bytes (64 MiB) while it was read";
  }
  close(fd);
  return problem;
}

// Empty when `path` is a valid path expression, else the reason.
std::string path_problem(char const* path) {
  try {
    fs_property_tree_create("check")->query_sub_tree(path);
  } catch (invalid_property_name const& e) {
    return e.what();
  } catch (std::exception const&) {
    // Anything else concerns the walk, not the expression.
  }
  return std::string();
}

}  // namespace

int cmd_props(Options const& /*options*/, int argc, char** argv) {
  static constexpr char kCommand[] = "qbfs props";
  static constexpr char kHelp[] =
      "usage: qbfs props FILE [PATH]\n"
      "\n"
      "Loads a property tree from the XML file FILE (a regular file of at most\n"
      "64 MiB), prints it back, and with PATH prints what the path query finds\n"
      "(for example 'volume/size' or 'files/file[2]/name').\n"
      "\n"
      "Exit status: 0, 1 when the file cannot be read or loaded, 2 on bad usage.\n";
  Arguments args;
  if (int const rc = parse_arguments(argc, argv, kCommand, {}, args); rc != 0) return rc;
  if (args.help) return std::fputs(kHelp, stdout), 0;
  if (args.operands.empty() || args.operands.size() > 2) return usage_error(kCommand, "takes FILE and at most one PATH");
  char const* file = args.operands[0].c_str();
  char const* path = args.operands.size() == 2 ? args.operands[1].c_str() : nullptr;
  // What is echoed (the arguments, the loader's words, which may quote the
  // file) is escaped for the terminal; the tree's XML is the output itself.
  auto shown = [](std::string_view text) { return archive::terminal_text(text); };
  if (path != nullptr) {
    std::string problem = path_problem(path);
    if (!problem.empty()) {
      std::fprintf(stderr, "qbfs props: invalid path \"%s\": %s\n", shown(path).c_str(), shown(problem).c_str());
      return 2;
    }
  }
  std::string text;
  std::string problem = read_file(file, text);
  if (!problem.empty()) {
    std::fprintf(stderr, "qbfs props: %s\n", shown(problem).c_str());
    return 1;
  }
  if (text.find('\0') != std::string::npos) {
    std::fprintf(stderr, "qbfs props: '%s' contains a NUL byte; not XML text\n", shown(file).c_str());
    return 1;
  }
  fs_property_tree_ptr tree;
  try {
    tree = fs_property_tree_load_utf8(text.c_str());
  } catch (std::exception const& e) {
    std::fprintf(stderr, "qbfs props: cannot load '%s': %s\n", shown(file).c_str(), shown(e.what()).c_str());
    return 1;
  }
  try {
    std::string xml = tree->serialize_utf8txt();
    std::fwrite(xml.data(), 1, xml.size(), stdout);
  } catch (std::exception const& e) {
    std::fprintf(stderr, "qbfs props: cannot print the tree of '%s': %s\n", shown(file).c_str(),
                 shown(e.what()).c_str());
    return 1;
  }
  if (path == nullptr) return 0;

  try {
    fs_property_tree& found = tree->query_sub_tree(path);
    if (found.is_null_tree()) {
      std::fprintf(stderr, "qbfs props: the path \"%s\" leads to no tree in '%s'\n", shown(path).c_str(),
                   shown(file).c_str());
      return 1;
    }
    std::printf("query \"%s\":\n", shown(path).c_str());
    std::string xml = found.serialize_utf8txt();
    std::fwrite(xml.data(), 1, xml.size(), stdout);
  } catch (std::exception const& e) {
    std::fprintf(stderr, "qbfs props: the path \"%s\" in '%s': %s\n", shown(path).c_str(), shown(file).c_str(),
                 shown(e.what()).c_str());
    return 1;
  }
  return 0;
}

}  // namespace qbfs
