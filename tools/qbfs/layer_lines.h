// The lines the layer and its modules print (QB_Zprintf) reach the
// terminal only through the tool, escaped for it (terminal_text): module
// messages quote names from the file system and from archives as they
// are. The host runtime's own printing stays off while the tool runs;
// the tool prints each line instead, or hands it to whoever took the
// lines for a while (the archive commands' console, a command that prints
// the layer's lines as its result).
#pragma once
#include <cstdio>

#include <qbhost/zprintf.h>

namespace qbfs {

// Takes the host's lines: from now on a line whose level is at or below
// `level` (-1: none) goes to standard error escaped, unless a LineRedirect
// is alive. Called once, before the layer starts.
void take_layer_lines(int level);

// The level given to take_layer_lines (0 before it is called).
int layer_lines_level();

// Prints `line` to `out` escaped, one output line for each of its lines
// (a trailing newline of its own adds none). Null prints nothing.
void print_layer_line(std::FILE* out, wchar_t const* line);

// While alive, every line, whatever its level, goes to `sink` instead of
// standard error; the receiver before it comes back when it ends. Nested
// redirects end in the reverse order of their start.
class LineRedirect {
 public:
  // Who receives the lines; a null sink drops them.
  struct Receiver {
    qbhost::zprintf_hook sink;
    void* context;
  };

  LineRedirect(qbhost::zprintf_hook sink, void* context);
  ~LineRedirect();
  LineRedirect(LineRedirect const&) = delete;
  LineRedirect& operator=(LineRedirect const&) = delete;

 private:
  Receiver receiver_;
  Receiver const* previous_;
};

}  // namespace qbfs
