#pragma once

#include <stdexcept>
#include <string>

namespace TesselHost {

/// Something that ends the host's work; what() is one line for a person, without a full stop.
class HostError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The work can't start because of what was asked for, such as an output that is one of the inputs.
class UsageError : public HostError {
 public:
  using HostError::HostError;
};

/// A source that can't be used.
class SourceError : public HostError {
 public:
  /// @param code  a result of the library (TESSEL::Result)
  SourceError(const std::string& file, int code);
  /// The same where the host knows more of the reason than the code tells.
  SourceError(const std::string& file, int code, const std::string& reason);
  /// A source that can be read and yet gives nothing to work with.
  SourceError(const std::string& file, const std::string& reason);
  /// The library's result, 0 when the reason isn't one of its.
  int code() const { return resultCode; }
  /// what() without the file and the code.
  const std::string& reason() const { return words; }

 private:
  int resultCode = 0;
  std::string words;
};

/// The output can't be written: a full disk, a closed pipe, a directory that isn't there.
class OutputError : public HostError {
 public:
  /// @param error  an errno value; 0 when `what` says it all
  OutputError(const std::string& path, const std::string& what, int error);
};

/// The user stopped the work.
class Interrupted : public HostError {
 public:
  Interrupted() : HostError("interrupted") {}
};

/// A result of the library in words, such as "not a readable PDF".
std::string reasonOf(int code);

}  // namespace TesselHost
