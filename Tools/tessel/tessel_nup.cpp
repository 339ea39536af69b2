#include <fmt/format.h>

#include <memory>

#include "TesselHost/host_lengths.h"
#include "TesselHost/host_nup.h"
#include "tessel_commands.h"
#include "tessel_options.h"
#include "tessel_security.h"
#include "tessel_terminal.h"

namespace tessel_tool {

namespace {

using namespace TesselHost;

std::string counted(int count, const char* thing) {
  return fmt::format("{} {}{}", count, thing, count == 1 ? "" : "s");
}

struct NupCommand {
  NupOptions options;
  InputPasswords passwords;
  EncryptionOptions encryption;
  bool quiet = false;

  int run() {
    options.passwords = passwords.value();
    options.protection = encryption.value();
    Terminal terminal(quiet, "placing");
    const NupResult result = nup(options, terminal);
    if (result.lostLinks > 0)
      terminal.warn(fmt::format("{} {} to pages that aren't in the output", result.lostLinks,
                                result.lostLinks == 1 ? "link leads" : "links lead"));
    terminal.note(fmt::format("{}: {} on {}", options.output, counted(result.pages, "page"),
                              counted(result.sheets, "sheet")));
    return exitDone;
  }
};

void addLength(CLI::App& command, const std::string& name, double& value, const std::string& help) {
  addParsed(command, name, value, parseLength, help, "a length such as 10mm, 0.5in or 36pt")
      ->type_name("LENGTH");
}

void addSheetOptions(CLI::App& command, NupOptions& options) {
  addParsed(command, "-g,--grid", options.grid, Grid::parse,
            "Columns and rows of pages on a sheet, such as 2x1", "a grid such as 2x1")
      ->type_name("CxR")
      ->required();
  addParsed(command, "--paper", options.paper, Paper::parse,
            "auto (default), A4, A3, Letter and so on, also A4-portrait or A4-landscape, or a size such as "
            "210x297mm",
            "a paper such as auto, A4, Letter or 210x297mm")
      ->type_name("PAPER");
  addLength(command, "--margin", options.spacing.margin, "Space around all pages of a sheet (default: 0)");
  addLength(command, "--gutter", options.spacing.gutter, "Space between two pages (default: 0)");
  command.add_flag("--frame", options.frame, "Draw a thin line around each page");
}

constexpr const char* footer =
    "Pages go row by row, from left to right and from top to bottom, each one upright,\n"
    "centred and scaled to fit. A paper by name lies the way that shows the pages larger.\n"
    "With --paper auto the cells have the size of the largest page; on a 1x1 grid each\n"
    "sheet has the size of its own page.\n"
    "\n"
    "Examples:\n"
    "  tessel nup manual.pdf -o handout.pdf --grid 2x1 --paper A4\n"
    "  tessel nup a.pdf b.pdf -o cards.pdf --grid 3x3 --pages 1-9 --margin 10mm --gutter 4mm\n";

}  // namespace

void addNup(CLI::App& program, Job& job) {
  CLI::App* command = program.add_subcommand("nup", "Place several pages on each sheet");
  const auto nupCommand = std::make_shared<NupCommand>();
  NupOptions& options = nupCommand->options;
  command->add_option("IN", options.inputs, "PDF files, in order")->type_name("")->required();
  addOutput(*command, options.output, "The PDF to write; - for standard output")
      ->type_name("OUT")
      ->required();
  addSheetOptions(*command, options);
  addPages(*command, options.pages);
  addExtras(*command, options.extras);
  addOutputIntent(*command, options.outputIntent);
  command->add_flag("--object-streams", options.objectStreams,
                    "A smaller file, for readers of PDF 1.5 and later");
  command->add_flag("--ascii", options.ascii,
                    "Stay within seven-bit text; goes neither with --object-streams nor with --encrypt");
  nupCommand->passwords.addTo(*command);
  command->add_flag("--ignore-permissions", options.ignorePermissions,
                    "Place also pages whose permissions forbid it");
  nupCommand->encryption.addTo(*command);
  addQuiet(*command, nupCommand->quiet);
  command->footer(footer);
  command->callback([&job, nupCommand] { job = [nupCommand] { return nupCommand->run(); }; });
}

}  // namespace tessel_tool
