#include "TesselHost/host_info.h"

#include <memory>
#include <vector>

#include "TesselHost/host_error.h"
#include "tessel_commands.h"
#include "tessel_options.h"
#include "tessel_security.h"
#include "tessel_terminal.h"

namespace tessel_tool {

namespace {

using namespace TesselHost;

struct InfoCommand {
  std::vector<std::string> files;
  InputPasswords passwords;
  bool json = false;
  int profile = 0;     ///< of which output intent to write the profile; 0: none
  std::string output;  ///< where to

  /// A file that can't be used is told of, and the others are described all the same.
  int run() const {
    const Passwords opening = passwords.value();
    if (profile != 0) {
      if (files.size() != 1) throw UsageError("--profile takes one file");
      extractProfile(files.front(), opening, profile, output);
      return exitDone;
    }
    OutputFile out("-");
    int status = exitDone;
    for (const std::string& file : files)
      if (!describeOne(file, opening, out)) status = exitFailed;
    out.commit();
    return status;
  }

  bool describeOne(const std::string& file, const Passwords& opening, OutputFile& out) const {
    try {
      json ? describeAsJson(file, opening, out) : describe(file, opening, out);
      return true;
    } catch (const SourceError& failure) {
      out.flush();
      complain(failure.what());
      if (json) failureAsJson(file, failure.code(), failure.reason(), out);
      return false;
    }
  }
};

}  // namespace

void addInfo(CLI::App& program, Job& job) {
  CLI::App* command = program.add_subcommand(
      "info",
      "Tell version, protection, claims, output intents, pages, annotations, fields, layers and names");
  const auto info = std::make_shared<InfoCommand>();
  command->add_option("FILE", info->files, "PDF files")->type_name("")->required();
  command->add_flag("--json", info->json, "One line of JSON for each file");
  CLI::Option* profile =
      addParsed(*command, "--profile", info->profile, parsePositive,
                "Write the ICC profile of this output intent, counted from 1, and tell nothing",
                "the number of an output intent, counted from 1")
          ->type_name("N");
  CLI::Option* output = addOutput(*command, info->output, "Where the profile goes; - for standard output")
                            ->type_name("FILE.icc");
  profile->needs(output);
  output->needs(profile);
  info->passwords.addTo(*command);
  command->callback([&job, info] { job = [info] { return info->run(); }; });
}

}  // namespace tessel_tool
