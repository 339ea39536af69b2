#pragma once

#include <optional>
#include <string>
#include <vector>

#include "TesselHost/host_access.h"
#include "TesselHost/host_extras.h"
#include "TesselHost/host_layout.h"
#include "TesselHost/host_observer.h"
#include "TesselHost/host_outputintent.h"
#include "TesselHost/host_paper.h"
#include "TesselHost/host_protection.h"
#include "TesselHost/host_range.h"

namespace TesselHost {

/// What to lay on sheets, and how.
struct NupOptions {
  std::vector<std::string> inputs;
  std::string output;  ///< a path, or "-" for standard output
  Grid grid;           ///< pages on a sheet
  Paper paper;         ///< "auto" takes cells of the largest page's size, or of each page's own on a 1x1 grid
  PageRange pages;     ///< applies to each input
  Spacing spacing;
  bool frame = false;                           ///< a thin line around each page
  Extras extras;                                ///< what goes along with the pages
  IntentChoice outputIntent;                    ///< of the output
  bool objectStreams = false;                   ///< a smaller file, for readers of PDF 1.5 and later
  bool ascii = false;                           ///< within seven bits; neither packed nor encrypted then
  Passwords passwords;                          ///< of whichever inputs need one
  bool ignorePermissions = false;               ///< place also what its author didn't want placed
  std::optional<ProtectionOptions> protection;  ///< encrypts the output
};

/// What came of it.
struct NupResult {
  int pages = 0;
  int sheets = 0;
  int lostLinks = 0;  ///< links to pages that aren't in the output
};

/// Lays the pages of the inputs on sheets, row by row, upright, centred and scaled to fit their cells.
///
/// Throws SourceError, OutputError, UsageError or Interrupted; a file that stood at the output's place is
/// then as it was.
NupResult nup(const NupOptions& options, Observer& observer);

}  // namespace TesselHost
