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

[[noreturn]] void child_main(int fd, std::function<CheckResult()> const& check) {
  std::fflush(stdout);
  dup2(STDERR_FILENO, STDOUT_FILENO);
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

// Reads the child's record until it closes the pipe or the time is up.
// Returns false on timeout.
bool read_record(int fd, unsigned timeout_seconds, std::string& record) {
  auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(timeout_seconds);
  char buffer[4096];
  for (;;) {
    auto const left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) return false;
    pollfd p{fd, POLLIN, 0};
    int const ready = poll(&p, 1, static_cast<int>(left.count()));
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0) return ready == 0 ? false : true;
    ssize_t n = read(fd, buffer, sizeof buffer);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return true;
    record.append(buffer, static_cast<std::size_t>(n));
  }
}

}  // namespace

CheckResult run_isolated(char const* id, unsigned timeout_seconds,
                         std::function<CheckResult()> const& check) {
  CheckResult result;
  int fds[2];
  std::fflush(nullptr);
  if (pipe(fds) != 0) {
    result = failed(std::string("could not make a pipe to a child: ") + std::strerror(errno));
  } else if (pid_t const pid = fork(); pid < 0) {
    result = failed(std::string("could not start a child process: ") + std::strerror(errno));
    close(fds[0]);
    close(fds[1]);
  } else if (pid == 0) {
    close(fds[0]);
    child_main(fds[1], check);
  } else {
    close(fds[1]);
    std::string record;
    bool const finished = read_record(fds[0], timeout_seconds, record);
    close(fds[0]);
    if (!finished) kill(pid, SIGKILL);
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
    } else if (WIFSIGNALED(status)) {
      int const sig = WTERMSIG(status);
      result = failed("crashed: signal " + std::to_string(sig) + " (" + strsignal(sig) +
                      "); standard error may hold the report");
    } else {
      int const code = WIFEXITED(status) ? WEXITSTATUS(status) : kChildCannotReport;
      result = failed("ended with exit status " + std::to_string(code) +
                      " before reporting (a sanitizer report or an exit inside the module; "
                      "see standard error)");
    }
  }
  result.id = id;
  return result;
}

}  // namespace qbfs::validate
