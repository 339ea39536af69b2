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

void wantStop(int /*signal*/) { stopWanted = 1; }

}  // namespace

Terminal::Terminal(bool isQuiet, std::string aVerb)
    : quiet(isQuiet),
      onTerminal(isatty(STDERR_FILENO) != 0),
      verb(std::move(aVerb)),
      nextShow(Clock::now() + firstShow) {}

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

void takeSignals() {
  std::signal(SIGINT, wantStop);
  std::signal(SIGTERM, wantStop);
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace tessel_tool
