// The dynamic symbol table of the built layer: it exports its interface and
// nothing else of its own, and imports only from the host runtime, the C and
// C++ runtimes and its declared dependencies.
#include <cstdio>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

struct Symbol {
  char type;         // nm's type letter
  std::string name;  // demangled, without argument list when `plain`
};

std::vector<Symbol> read_symbols(std::string const& flags) {
  std::vector<Symbol> out;
  std::string command = "nm -D " + flags + " '" + QB_LAYER_PATH + "' 2>/dev/null";
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return out;
  char line[4096];
  while (std::fgets(line, sizeof line, pipe) != nullptr) {
    std::string text(line);
    if (!text.empty() && text.back() == '\n') text.pop_back();
    // "<16-digit address> <type> <name>", the address blank when undefined.
    if (text.size() < 19) continue;
    std::size_t const type_at = 17;
    out.push_back({text[type_at], text.substr(type_at + 2)});
  }
  pclose(pipe);
  return out;
}

bool matches_any(std::string const& name, std::vector<std::regex> const& patterns) {
  for (auto const& p : patterns)
    if (std::regex_search(name, p)) return true;
  return false;
}

// Every entry point the other tests call reaches them from the built
// library, so it is exported; this one no test calls.
TEST(Exports, EntryPointsNoOtherTestCallsAreExported) {
  auto symbols = read_symbols("--defined-only -C");
  ASSERT_FALSE(symbols.empty()) << "nm could not read " << QB_LAYER_PATH;
  bool found = false;
  for (auto const& s : symbols) found = found || s.name == "FS_BlockWaitForInitThreads(HEAD_DLE*, int)";
  EXPECT_TRUE(found);
}

// A host names a status in its messages through the layer.
TEST(Exports, TheStatusWordsAreExported) {
  auto symbols = read_symbols("--defined-only -C");
  ASSERT_FALSE(symbols.empty());
  for (char const* entry : {"FS_StatusText(unsigned int)", "FS_StatusName(unsigned int)"}) {
    bool found = false;
    for (auto const& s : symbols) found = found || (s.name == entry && s.type == 'T');
    EXPECT_TRUE(found) << entry;
  }
}

TEST(Exports, NothingElseOfOursIsExported) {
  // Our own interface: the layer's families, the class library, the property
  // tree, and the records shared with modules (with their typeinfo/vtables).
  std::vector<std::regex> ours = {
      std::regex("^(FS_|DLE_|GEN_|STUB_)"),
      std::regex("^(get_func_tabs|GetFuncTable_GEN|GetFuncTablePtr_GEN|get_DLE_fsysObjPtr|"
                 "set_DLE_fsysObjPtr|CheckChildren|IsE14ResolveDeviceNameError|tolower64)\\("),
      std::regex("^(dlls|find_order|resolve_order|_GENFuncTab|__func_tab_ptr_GEN|buildinfo|"
                 "last_stream_size)$"),
      std::regex("^(create_root_tree|load_root_tree|utf8load_root_tree)$"),
      std::regex("^(qbclass|property_tree_details|debug_pt)::"),
      std::regex("^(fs_property_tree|RefCounter|DllInstance|RefPointer)"),
      std::regex("^(typeinfo|typeinfo name|vtable|VTT|construction vtable) for "),
      std::regex("^guard variable for "),
  };
  // Instantiations of library templates that the compiler emits weakly.
  std::vector<std::regex> library = {std::regex("(^|[ <(,])(std|boost|__gnu_cxx|__cxxabiv1)::"),
                                     std::regex("^_(init|fini|edata|end|_bss_start)$")};
  auto symbols = read_symbols("--defined-only -C");
  ASSERT_FALSE(symbols.empty());
  for (auto const& s : symbols) {
    if (s.name.rfind("__odr_asan", 0) == 0 || s.name.rfind("__asan", 0) == 0) continue;
    bool weak = s.type == 'W' || s.type == 'V' || s.type == 'u';
    bool ok = matches_any(s.name, ours) || (weak && matches_any(s.name, library)) ||
              matches_any(s.name, {std::regex("^_(init|fini|edata|end|_bss_start)$")});
    EXPECT_TRUE(ok) << "unexpected export: " << s.type << " " << s.name;
  }
}

TEST(Exports, ImportsComeOnlyFromTheHostRuntimesAndDependencies) {
  std::vector<std::regex> host = {
      std::regex("^QB_Zprintf\\("),
      std::regex("^(GetLastError|SetLastError|GetCurrentDateInUTC|DateTimeConvert|"
                 "base64_encode|base64_decode|Zym[A-Za-z0-9_]*|InitQueue|InitQElem|EnQueueElem|"
                 "InsertElem|DeQueueElem|RemoveQueueElem|QueueCount|QueueHead|QueueTail|QueueNext|"
                 "QueuePrev)(\\[abi:cxx11\\])?\\("),
      std::regex("^(DateTime|wcstring|cstring|QB)::"),
  };
  // The C and C++ runtimes; sanitized builds import some of these unversioned
  // because the sanitizer runtime intercepts them.
  std::vector<std::regex> runtime = {
      std::regex("^(operator (new|delete)|__cxa_|__gxx_|_Unwind_|__stack_chk_|__errno_location|"
                 "__tls_get_addr)"),
      std::regex("^(dl(open|sym|close|error)|pthread_[a-z_]+|(gm|local)time_r|mktime|tzset|"
                 "timezone|malloc|calloc|realloc|free|abort|[v]?s[nw]?printf|"
                 "(mem|str|wcs|wmem)[a-z]*)$"),
      std::regex("^std::"),
  };
  std::vector<std::regex> dependencies = {
      std::regex("^ACE_"),                          // the reference-count token
      std::regex("^(typeinfo|vtable) for ACE_"),
      std::regex("^__(asan|ubsan|sanitizer|lsan)"),  // sanitizer runtime in test builds
      std::regex("^_(ITM_|_gmon_start__|Jv_RegisterClasses)"),
  };
  auto symbols = read_symbols("--undefined-only -C");
  ASSERT_FALSE(symbols.empty());
  for (auto const& s : symbols) {
    // Versioned symbols come from glibc, libstdc++ or libgcc.
    if (s.name.find('@') != std::string::npos) continue;
    bool ok = matches_any(s.name, host) || matches_any(s.name, runtime) ||
              matches_any(s.name, dependencies);
    EXPECT_TRUE(ok) << "unexpected import: " << s.name;
  }
}

TEST(Exports, EntryPointsThatHostsLookUpByNameAreUnmangled) {
  auto raw = read_symbols("--defined-only");
  std::set<std::string> names;
  for (auto const& s : raw) names.insert(s.name);
  for (char const* plain : {"buildinfo", "dlls", "find_order", "resolve_order", "_GENFuncTab",
                            "__func_tab_ptr_GEN"})
    EXPECT_TRUE(names.count(plain)) << plain;
}

}  // namespace
