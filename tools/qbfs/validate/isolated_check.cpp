#include "isolated_check.h"

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

namespace qbfs::validate {
namespace {

constexpr int kMillisPerSecond = 1000;
// The record the child sends: one outcome letter, then the detail.
constexpr char kPassed = 'P';
constexpr char kFailed = 'F';
constexpr char kSkipped = 'S';
// A step note: this letter, the text, a newline; notes precede the record.
constexpr char kStep = '~';
// What the child exits with when it could not even send its record.
constexpr int kChildCannotReport = 3;

void write_all(int fd, std::string const& text) {
  std::size_t done = 0;
  while (done < text.size()) {
    ssize_t n = write(fd, text.data() + done, text.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return;
    done += static_cast<std::size_t>(n);
  }
}

// Standard error kept for the crash diagnosis; the rest is only passed on.
constexpr std::size_t kKeptErrorBytes = 64 * 1024;
// Lines by which the sanitizers begin a report.
constexpr char kUndefinedBehaviourMark[] = "runtime error: ";
constexpr char const* kSanitizerMarks[] = {"ERROR: AddressSanitizer: ", "ERROR: LeakSanitizer: ",
                                           kUndefinedBehaviourMark};

// The record pipe of this process when it is a check's child, else -1.
int g_record_fd = -1;

[[noreturn]] void child_main(int fd, int err_fd, std::function<CheckResult()> const& check) {
  g_record_fd = fd;
  std::fflush(stdout);
  dup2(err_fd, STDERR_FILENO);
  dup2(err_fd, STDOUT_FILENO);
  close(err_fd);
  CheckResult result;
  try {
    result = check();
  } catch (std::exception const& e) {
    result = failed(std::string("an exception reached the validator: ") + e.what());
  } catch (...) {
    result = failed("an exception of unknown type reached the validator");
  }
  char const letter = result.outcome == Outcome::passed   ? kPassed
                      : result.outcome == Outcome::failed ? kFailed
                                                          : kSkipped;
  write_all(fd, letter + result.detail);
  close(fd);
  std::fflush(nullptr);
  _exit(0);
}

// Reads the child's record and standard error until both pipes close or the
// time is up; standard error is passed on and its beginning kept. Returns
// false on timeout.
bool read_child(int fd, int err_fd, unsigned timeout_seconds, std::string& record,
                std::string& errors) {
  auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(timeout_seconds);
  char buffer[4096];
  pollfd p[2] = {{fd, POLLIN, 0}, {err_fd, POLLIN, 0}};
  while (p[0].fd >= 0 || p[1].fd >= 0) {
    auto const left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) return false;
    int const ready = poll(p, 2, static_cast<int>(left.count()));
    if (ready < 0 && errno == EINTR) continue;
    if (ready < 0) return true;
    if (ready == 0) return false;
    for (pollfd& one : p) {
      if (one.fd < 0 || one.revents == 0) continue;
      ssize_t const n = read(one.fd, buffer, sizeof buffer);
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) {
        one.fd = -1;  // closed (or broken): nothing more comes
        continue;
      }
      auto const count = static_cast<std::size_t>(n);
      if (&one == &p[0]) {
        record.append(buffer, count);
      } else {
        std::fwrite(buffer, 1, count, stderr);
        if (errors.size() < kKeptErrorBytes) errors.append(buffer, count);
      }
    }
  }
  return true;
}

// Splits the child's output into its step notes (the last one kept) and the
// record proper.
std::string take_last_step(std::string& record) {
  std::string step;
  std::size_t pos = 0;
  while (pos < record.size() && record[pos] == kStep) {
    std::size_t const end = record.find('\n', pos);
    if (end == std::string::npos) break;
    step = record.substr(pos + 1, end - pos - 1);
    pos = end + 1;
  }
  record.erase(0, pos);
  return step;
}

// The first line of a sanitizer report in `errors`, or empty. An address or
// leak report loses the process id before its mark; an undefined-behaviour
// report keeps the source position before its mark.
std::string sanitizer_line(std::string const& errors) {
  for (char const* mark : kSanitizerMarks) {
    std::size_t at = errors.find(mark);
    if (at == std::string::npos) continue;
    if (mark == kUndefinedBehaviourMark) {
      std::size_t const line_start = errors.rfind('\n', at);
      at = line_start == std::string::npos ? 0 : line_start + 1;
    }
    std::size_t const end = errors.find('\n', at);
    return errors.substr(at, end == std::string::npos ? std::string::npos : end - at);
  }
  return {};
}

}  // namespace

CheckResult run_isolated(char const* id, unsigned timeout_seconds,
                         std::function<CheckResult()> const& check) {
  CheckResult result;
  int fds[2];
  int err[2];
  std::fflush(nullptr);
  if (pipe(fds) != 0) {
    result = failed(std::string("could not make a pipe to a child: ") + std::strerror(errno));
  } else if (pipe(err) != 0) {
    result = failed(std::string("could not make a pipe to a child: ") + std::strerror(errno));
    close(fds[0]);
    close(fds[1]);
  } else if (pid_t const pid = fork(); pid < 0) {
    result = failed(std::string("could not start a child process: ") + std::strerror(errno));
    for (int fd : {fds[0], fds[1], err[0], err[1]}) close(fd);
  } else if (pid == 0) {
    close(fds[0]);
    close(err[0]);
    child_main(fds[1], err[1], check);
  } else {
    close(fds[1]);
    close(err[1]);
    std::string record;
    std::string errors;
    bool const finished = read_child(fds[0], err[0], timeout_seconds, record, errors);
    close(fds[0]);
    close(err[0]);
    if (!finished) kill(pid, SIGKILL);
    std::string const step = take_last_step(record);
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (!finished) {
      result = failed("did not finish within " + std::to_string(timeout_seconds) +
                      " s and was stopped (a hang, or --timeout too short)");
    } else if (!record.empty() && WIFEXITED(status) && WEXITSTATUS(status) == 0) {
      result = record[0] == kPassed ? passed(record.substr(1))
               : record[0] == kFailed ? failed(record.substr(1))
                                      : skipped(record.substr(1));
    } else if (std::string const line = sanitizer_line(errors); !line.empty()) {
      result = failed("crashed: " + line);
    } else if (WIFSIGNALED(status)) {
      int const sig = WTERMSIG(status);
      result = failed("crashed: signal " + std::to_string(sig) + " (" + strsignal(sig) +
                      "); standard error may hold the report");
    } else {
      int const code = WIFEXITED(status) ? WEXITSTATUS(status) : kChildCannotReport;
      result = failed("ended with exit status " + std::to_string(code) +
                      " before reporting (an exit inside the module; see standard error)");
    }
    bool const reported = finished && !record.empty();
    if (!reported && !step.empty()) result.detail += " (during: " + step + ")";
  }
  result.id = id;
  return result;
}

void note_step(std::string const& step) {
  if (g_record_fd >= 0) write_all(g_record_fd, kStep + step + '\n');
}

}  // namespace qbfs::validate
