#pragma once

#include <string>

namespace TesselHost {

/// Hears of a job while it runs. The default says nothing and lets the job go on.
class Observer {
 public:
  virtual ~Observer() = default;
  /// Something that the user should know and that doesn't end the job; one line.
  virtual void warn(const std::string& /*line*/) {}
  /// `done` of `total` pages are done. @return false to stop the job: it then throws Interrupted
  virtual bool progress(int /*done*/, int /*total*/) { return true; }
};

}  // namespace TesselHost
