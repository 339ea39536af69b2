#pragma once

#include <CLI/CLI.hpp>
#include <functional>

namespace tessel_tool {

/// What the process ends with.
enum ExitStatus {
  exitDone = 0,
  exitFailed = 1,  ///< a source can't be used, or the output can't be written
  exitUsage = 2,   ///< the command line is wrong
};

/// Does the work of the command that was given; returns an exit status, or throws a HostError.
using Job = std::function<int()>;

/// Each adds one command to the program; its options are read into memory that `job` then owns.
void addInfo(CLI::App& program, Job& job);
void addNup(CLI::App& program, Job& job);
void addDump(CLI::App& program, Job& job);

}  // namespace tessel_tool
