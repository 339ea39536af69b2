#pragma once

#include <string>

#include "TesselHost/host_access.h"
#include "TesselHost/host_observer.h"
#include "TesselHost/host_output.h"
#include "TesselHost/host_range.h"

namespace TesselHost {

struct DumpOptions {
  std::string input;
  Passwords passwords;  ///< ignored when none is needed
  PageRange pages;
  int start = 1;         ///< first object number of the output
  bool summary = false;  ///< SHA-256 digests in hexadecimal in place of the bytes in base64
};

/// Writes what the library hands over for a document as JSON lines: one for the document, one for each page.
///
/// @return how opening went; when the result isn't 0 the first line stands alone
Opening dump(const DumpOptions& options, ByteSink& sink, Observer& observer);

}  // namespace TesselHost
