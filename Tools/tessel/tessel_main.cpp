#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <iostream>

#include "TesselHost/host_error.h"
#include "tessel_commands.h"
#include "tessel_terminal.h"

namespace tessel_tool {

namespace {

constexpr const char* footer =
    "tessel COMMAND --help tells more of a command.\n"
    "Exit status: 0 done, 1 a file can't be used or written, 2 wrong usage; a signal when interrupted.\n";

/// What fails after an interrupt, such as waiting for an input, fails because of it.
void complainOf(const std::string& failure) { complain(stopSignal() != 0 ? "interrupted" : failure); }

/// Runs the job; every failure becomes one line and an exit status.
int runJob(const Job& job) {
  try {
    return job();
  } catch (const TesselHost::UsageError& wrong) {
    complain(wrong.what());
    return exitUsage;
  } catch (const std::bad_alloc&) {
    complainOf("out of memory");
  } catch (const std::exception& failure) {
    complainOf(failure.what());
  } catch (int result) {
    // The library throws its results where an operation has none.
    complainOf(fmt::format("{} ({})", TesselHost::reasonOf(result), result));
  }
  return exitFailed;
}

/// " nup" and the like; empty while no command is known.
std::string commandOf(const CLI::App& program) {
  const auto used = program.get_subcommands();
  return used.empty() ? "" : " " + used.front()->get_name();
}

std::string reasonOf(const CLI::ParseError& wrong, const CLI::App& program, char** argv) {
  if (argv[0] == nullptr || argv[1] == nullptr) return "a command is missing: info, nup or dump";
  if (!commandOf(program).empty()) return wrong.what();
  return fmt::format("'{}' is none of the commands info, nup and dump", argv[1]);
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
    const int status = program.exit(done);
    if (std::cout.flush()) return status;
    complain("standard output: can't be written");
    return exitFailed;
  } catch (const CLI::ParseError& wrong) {
    complain(
        fmt::format("{}; tessel{} --help tells more", reasonOf(wrong, program, argv), commandOf(program)));
    return exitUsage;
  }
  return runJob(job);
}

}  // namespace

}  // namespace tessel_tool

int main(int argc, char** argv) {
  tessel_tool::ignoreWriteSignals();
  const int status = tessel_tool::run(argc, argv);
  if (status == tessel_tool::exitFailed) tessel_tool::endAsAsked();
  return status;
}
