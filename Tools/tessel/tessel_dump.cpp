#include <memory>

#include "TesselHost/host_dump.h"
#include "TesselHost/host_error.h"
#include "tessel_commands.h"
#include "tessel_options.h"
#include "tessel_security.h"
#include "tessel_terminal.h"

namespace tessel_tool {

namespace {

using namespace TesselHost;

struct DumpCommand {
  DumpOptions options;
  InputPasswords passwords;
  bool quiet = false;

  int run() {
    options.passwords = passwords.value();
    OutputFile out("-");
    Terminal terminal(quiet, "dumping");
    const Opening opening = dump(options, out, terminal);
    out.commit();
    if (opening.result != 0) throw SourceError(options.input, opening.result, opening.reason);
    return exitDone;
  }
};

constexpr const char* footer =
    "The first line tells how opening went, the number of pages and the catalog. Each further\n"
    "line is a page: its geometry, the objects that it brings, its content and resources, and the\n"
    "table of old and new object numbers so far. Bytes stand in base64.\n";

}  // namespace

void addDump(CLI::App& program, Job& job) {
  CLI::App* command = program.add_subcommand("dump", "Write what the library hands over as JSON lines");
  const auto dumpCommand = std::make_shared<DumpCommand>();
  DumpOptions& options = dumpCommand->options;
  command->add_option("FILE", options.input, "A PDF file")->type_name("")->required();
  addPages(*command, options.pages);
  addParsed(*command, "--start", options.start, parsePositive,
            "First object number of the output (default: 1)", "an object number")
      ->type_name("K");
  command->add_flag("--summary", options.summary, "SHA-256 digests in place of the bytes");
  dumpCommand->passwords.addTo(*command);
  addQuiet(*command, dumpCommand->quiet);
  command->footer(footer);
  command->callback([&job, dumpCommand] { job = [dumpCommand] { return dumpCommand->run(); }; });
}

}  // namespace tessel_tool
