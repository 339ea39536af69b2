#include "TesselHost/host_info.h"

#include <memory>
#include <vector>

#include "TesselHost/host_error.h"
#include "tessel_commands.h"
#include "tessel_security.h"
#include "tessel_terminal.h"

namespace tessel_tool {

namespace {

using namespace TesselHost;

struct InfoCommand {
  std::vector<std::string> files;
  PasswordOption password;
  bool json = false;

  /// A file that can't be used is told of, and the others are described all the same.
  int run() const {
    const std::string opening = password.value();
    OutputFile out("-");
    int status = exitDone;
    for (const std::string& file : files)
      if (!describeOne(file, opening, out)) status = exitFailed;
    out.commit();
    return status;
  }

  bool describeOne(const std::string& file, const std::string& opening, OutputFile& out) const {
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
  CLI::App* command =
      program.add_subcommand("info", "Tell version, protection, pages, boxes, sizes and rotations");
  const auto info = std::make_shared<InfoCommand>();
  command->add_option("files", info->files, "PDF files")->type_name("FILE")->required();
  command->add_flag("--json", info->json, "One line of JSON for each file");
  addPassword(*command, info->password);
  command->callback([&job, info] { job = [info] { return info->run(); }; });
}

}  // namespace tessel_tool
