// The build's check that the tools take the public road: each way a tool
// source could bypass the layer is caught, a clean tree passes, and the
// project's own tools pass.
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "tool_run.h"

namespace {

namespace fs = std::filesystem;

void write(fs::path const& file, std::string const& text) {
  fs::create_directories(file.parent_path());
  std::ofstream(file) << text;
}

// A source tree with one public header and one tool file, as the check sees it.
fs::path tree_with(std::string const& tool_source, std::string const& tool_cmake) {
  static int count = 0;
  fs::path const root = fs::path(::testing::TempDir()) / ("road." + std::to_string(getpid()) + "." +
                                                           std::to_string(++count));
  fs::remove_all(root);
  write(root / "engine/fsys/shared/include/qbfsys/handle_ops.h", "#pragma once\n");
  write(root / "tools/qbfs/own.h", "#pragma once\n");
  write(root / "tools/qbfs/tool.cpp", tool_source);
  write(root / "tools/qbfs/CMakeLists.txt", tool_cmake);
  return root;
}

int check(fs::path const& root) {
  return qbtest::shell("bash '" QB_SOURCE_DIR "/scripts/check_public_road.sh' '" + root.string() + "'").status;
}

TEST(PublicRoadCheck, EachBypassFailsTheBuild) {
  std::string const clean = "#include <qbfsys/handle_ops.h>\n#include \"own.h\"\nint f();\n";
  std::string const cmake = "add_executable(qbfs tool.cpp)\n";
  struct Case {
    char const* what;
    std::string source;
    std::string cmake;
    int status;
  } const cases[] = {
      {"a clean tool", clean, cmake, 0},
      {"a slot called through the table", clean + "int g(H* h) { return h->funcTable->ChangeDirUp(h); }\n", cmake, 1},
      {"the table taken by reference", clean + "auto& t = *hand->funcTable;\n", cmake, 1},
      {"the adapter called", clean + "int g(H* h) { return h->adapter->ChangeDirUp(h); }\n", cmake, 1},
      {"a module's header", clean + "#include \"posix_streams.h\"\n", cmake, 1},
      {"a header that is not installed", clean + "#include <qbfsys/fs_dispatch.h>\n", cmake, 1},
      {"a module's folder on the include path", clean,
       cmake + "target_include_directories(qbfs PRIVATE ${CMAKE_SOURCE_DIR}/modules/posix)\n", 1},
      {"the layer's internals on the include path", clean,
       cmake + "target_include_directories(qbfs PRIVATE ${CMAKE_SOURCE_DIR}/engine/fsys/shared/internal)\n", 1},
  };
  for (auto const& c : cases) EXPECT_EQ(check(tree_with(c.source, c.cmake)), c.status) << c.what;
}

TEST(PublicRoadCheck, TheProjectsToolsPass) { EXPECT_EQ(check(QB_SOURCE_DIR), 0); }

}  // namespace
