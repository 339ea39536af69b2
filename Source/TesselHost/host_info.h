#pragma once

#include <string>

#include "TesselHost/host_access.h"
#include "TesselHost/host_output.h"

namespace TesselHost {

/// Tells a person what a file holds: version, claims to PDF/A and PDF/X, output intents, pages, for each run
/// of like pages boxes, visible size, rotation, and what there is of annotations, fields, layers and named
/// destinations; of an encrypted one also how it is protected and what it allows. Throws SourceError when the
/// file can't be used.
/// @param passwords  ignored when none is needed
void describe(const std::string& file, const Passwords& passwords, ByteSink& sink);

/// The same for programs, as one line of JSON with each page by itself.
void describeAsJson(const std::string& file, const Passwords& passwords, ByteSink& sink);

/// Writes the ICC profile of an output intent, counted from 1, to a file. Throws SourceError, OutputError or
/// UsageError; a file that stood at the output's place is then as it was.
void extractProfile(const std::string& file, const Passwords& passwords, int number,
                    const std::string& output);

/// The line of JSON that stands for a file that can't be used.
/// @param code  result of the library, 0 when the reason isn't one of its
void failureAsJson(const std::string& file, int code, const std::string& reason, ByteSink& sink);

}  // namespace TesselHost
