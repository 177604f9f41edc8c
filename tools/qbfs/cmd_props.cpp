// `qbfs props FILE [PATH]`: loads a property tree from an XML file (UTF-8),
// prints it back in the tree's own XML form and, with PATH, answers the path
// query: a line `query "PATH":` followed by the XML of the nested tree
// reached, or by "no tree" when the path leads nowhere.
// Exit codes: 0 done; 1 the file cannot be read or loaded (the load error's
// message is printed); 2 bad usage; 3 the path is invalid or leads to no tree.
#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include <fs_property_tree.h>

#include "commands.h"

namespace {

bool read_file(char const* path, std::string& text) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  std::ostringstream buffer;
  buffer << in.rdbuf();
  text = buffer.str();
  return !in.bad();
}

}  // namespace

int cmd_props(int argc, char** argv) {
  if (argc < 2 || argc > 3) {
    std::fprintf(stderr, "usage: qbfs props FILE [PATH]\n");
    return 2;
  }
  char const* file = argv[1];
  std::string text;
  if (!read_file(file, text)) {
    std::fprintf(stderr, "qbfs props: cannot read '%s'\n", file);
    return 1;
  }
  if (text.find('\0') != std::string::npos) {
    std::fprintf(stderr, "qbfs props: '%s' contains a NUL byte; not XML text\n", file);
    return 1;
  }
  fs_property_tree_ptr tree;
  try {
    tree = fs_property_tree_load_utf8(text.c_str());
  } catch (std::exception const& e) {
    std::fprintf(stderr, "qbfs props: cannot load '%s': %s\n", file, e.what());
    return 1;
  }
  try {
    std::string xml = tree->serialize_utf8txt();
    std::fwrite(xml.data(), 1, xml.size(), stdout);
  } catch (std::exception const& e) {
    std::fprintf(stderr, "qbfs props: cannot print the tree: %s\n", e.what());
    return 1;
  }
  if (argc < 3) return 0;

  char const* path = argv[2];
  std::printf("query \"%s\":\n", path);
  try {
    fs_property_tree& found = tree->query_sub_tree(path);
    if (found.is_null_tree()) {
      std::printf("no tree\n");
      return 3;
    }
    std::string xml = found.serialize_utf8txt();
    std::fwrite(xml.data(), 1, xml.size(), stdout);
  } catch (std::exception const& e) {
    std::printf("error: %s\n", e.what());
    return 3;
  }
  return 0;
}
