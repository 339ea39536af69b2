#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>

#include "TesselHost/host_error.h"
#include "tessel_commands.h"
#include "tessel_terminal.h"

namespace tessel_tool {

namespace {

constexpr const char* footer =
    "tessel COMMAND --help tells more of a command.\n"
    "Exit status: 0 done, 1 a file can't be used or written, 2 wrong usage.\n";

/// Runs the job; every failure becomes one line and an exit status.
int runJob(const Job& job) {
  try {
    return job();
  } catch (const TesselHost::UsageError& wrong) {
    complain(wrong.what());
    return exitUsage;
  } catch (const std::bad_alloc&) {
    complain("out of memory");
  } catch (const std::exception& failure) {
    complain(failure.what());
  } catch (int result) {
    // The library throws its results where an operation has none.
    complain(fmt::format("{} ({})", TesselHost::reasonOf(result), result));
  }
  return exitFailed;
}

int run(int argc, char** argv) {
  CLI::App program("Places pages of PDF files onto the sheets of a new one.", "tessel");
  program.set_version_flag("--version", "tessel " TESSEL_VERSION);
  program.require_subcommand(1);
  program.footer(footer);
  Job job;
  addInfo(program, job);
  addNup(program, job);
  addDump(program, job);
  try {
    program.parse(argc, argv);
  } catch (const CLI::Success& done) {  // --help, --version
    return program.exit(done);
  } catch (const CLI::ParseError& wrong) {
    complain(fmt::format("{}; tessel --help tells more", wrong.what()));
    return exitUsage;
  }
  return runJob(job);
}

}  // namespace

}  // namespace tessel_tool

int main(int argc, char** argv) {
  tessel_tool::takeSignals();
  return tessel_tool::run(argc, argv);
}
