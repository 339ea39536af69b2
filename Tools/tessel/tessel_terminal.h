#pragma once

#include <chrono>
#include <string>

#include "TesselHost/host_observer.h"

namespace tessel_tool {

/// Tells the user of warnings and, on a terminal and when the work is long, of progress. Writes to standard
/// error. While one lives, the first interrupt stops the job at its next page; a second one ends the process.
class Terminal : public TesselHost::Observer {
 public:
  /// @param isQuiet  says nothing but errors
  /// @param aVerb    what is being done, such as "placing"
  Terminal(bool isQuiet, std::string aVerb);
  ~Terminal() override;
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  void warn(const std::string& line) override;
  bool progress(int done, int total) override;
  /// A closing line, on a terminal only.
  void note(const std::string& line);

 private:
  void clearLine();

  using Clock = std::chrono::steady_clock;
  bool quiet;
  bool onTerminal;
  bool lineShown = false;
  std::string verb;
  Clock::time_point nextShow;
};

/// One line about what went wrong, to standard error.
void complain(const std::string& line);

/// Lets failed writes be reported in place of ending the process.
void ignoreWriteSignals();

/// The signal that asked to stop while there was a Terminal; 0 for none.
int stopSignal();

/// Ends the process as the signal would have that asked to stop, so that whoever started it sees that.
void endAsAsked();

}  // namespace tessel_tool
