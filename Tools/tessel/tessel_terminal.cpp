#include "tessel_terminal.h"

#include <fmt/format.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

namespace tessel_tool {

namespace {

using namespace std::chrono_literals;

constexpr auto firstShow = 500ms;
constexpr auto showInterval = 100ms;
constexpr const char* clearToEnd = "\r\033[K";

volatile std::sig_atomic_t stopWanted = 0;

void wantStop(int signal) { stopWanted = signal; }

/// What is ignored stays so: the process may have been started to outlive its terminal.
void catchStop(int signal) {
  struct sigaction action {};
  if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) return;
  action = {};
  action.sa_handler = wantStop;
  // Not SA_RESTART, so that waiting for an input ends.
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigaction(signal, &action, nullptr);
}

}  // namespace

Terminal::Terminal(bool isQuiet, std::string aVerb)
    : quiet(isQuiet),
      onTerminal(isatty(STDERR_FILENO) != 0),
      verb(std::move(aVerb)),
      nextShow(Clock::now() + firstShow) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) catchStop(signal);
}

Terminal::~Terminal() { clearLine(); }

void Terminal::clearLine() {
  if (lineShown) std::fputs(clearToEnd, stderr);
  lineShown = false;
}

void Terminal::warn(const std::string& line) {
  if (quiet) return;
  clearLine();
  fmt::print(stderr, "tessel: warning: {}\n", line);
}

bool Terminal::progress(int done, int total) {
  if (quiet || !onTerminal) return stopWanted == 0;
  const auto now = Clock::now();
  if (now >= nextShow) {
    fmt::print(stderr, "{}{} page {} of {}", clearToEnd, verb, done, total);
    std::fflush(stderr);
    lineShown = true;
    nextShow = now + showInterval;
  }
  return stopWanted == 0;
}

void Terminal::note(const std::string& line) {
  clearLine();
  if (!quiet && onTerminal) fmt::print(stderr, "{}\n", line);
}

void complain(const std::string& line) { fmt::print(stderr, "tessel: {}\n", line); }

int stopSignal() { return stopWanted; }

void endAsAsked() {
  if (stopWanted == 0) return;
  std::signal(stopWanted, SIG_DFL);
  std::raise(stopWanted);
}

void ignoreWriteSignals() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace tessel_tool
