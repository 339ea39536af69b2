#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

#include "TesselHost/host_extras.h"
#include "TesselHost/host_number.h"
#include "TesselHost/host_outputintent.h"
#include "TesselHost/host_range.h"

namespace tessel_tool {

/// An option whose text `Parse` turns into a value, or refuses by giving nothing.
/// @param wanted  what the text should be, for the message
template <class Value, class Parse>
CLI::Option* addParsed(CLI::App& command, const std::string& name, Value& value, Parse parse,
                       const std::string& help, const std::string& wanted) {
  return command.add_option_function<std::string>(
      name,
      [&value, parse, name, wanted](const std::string& text) {
        const auto parsed = parse(text);
        if (!parsed) throw CLI::ValidationError(name, "'" + text + "' is not " + wanted);
        value = *parsed;
      },
      help);
}

/// A number that counts from 1.
inline std::optional<int> parsePositive(const std::string& text) {
  const auto number = TesselHost::parseCount(text);
  return number && *number > 0 ? number : std::nullopt;
}

/// A path; an empty one is a variable of a script that wasn't set.
inline std::optional<std::string> parsePath(const std::string& text) {
  return text.empty() ? std::nullopt : std::optional<std::string>(text);
}

/// --output, alike for every command that writes a file.
inline CLI::Option* addOutput(CLI::App& command, std::string& path, const std::string& help) {
  return addParsed(command, "-o,--output", path, parsePath, help, "a path, or - for standard output");
}

/// --pages, alike for every command.
inline void addPages(CLI::App& command, TesselHost::PageRange& pages) {
  addParsed(command, "--pages", pages, TesselHost::PageRange::parse,
            "Pages to take, such as 1-4,7,12- (default: all)", "a selection of pages such as 1-4,7,12-")
      ->type_name("RANGE");
}

/// What goes along with pages, alike for every command that writes.
inline void addExtras(CLI::App& command, TesselHost::Extras& extras) {
  addParsed(command, "--annotations", extras.annotations, TesselHost::AnnotationChoice::parse,
            "Annotations to keep: all (default), none, or subtypes such as link,text,widget",
            "all, none or subtypes such as link,text,widget")
      ->type_name("LIST");
  addParsed(
      command, "--forms", extras.forms, TesselHost::FormChoice::parse,
      "Form fields to keep: all (default), none, or some of radio, button, checkbox, list, combo, text, "
      "signature",
      "all, none or types such as text,checkbox")
      ->type_name("LIST");
  command.add_flag_callback(
      "--no-layers", [&extras] { extras.layers = false; }, "Show all layers, also those that are off");
}

/// --output-intent, alike for every command that writes a PDF.
inline void addOutputIntent(CLI::App& command, TesselHost::IntentChoice& choice) {
  addParsed(
      command, "--output-intent", choice, TesselHost::IntentChoice::parse,
      "from-source (default) takes over the output intents of the inputs, when they agree; none; or an ICC "
      "profile, which the output gets as its own",
      "from-source, none or a file")
      ->type_name("INTENT");
}

/// --quiet, alike for every command that works for long.
inline void addQuiet(CLI::App& command, bool& quiet) {
  command.add_flag("-q,--quiet", quiet, "No progress and no warnings");
}

}  // namespace tessel_tool
