#pragma once

#include <CLI/CLI.hpp>
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "TesselHost/host_access.h"
#include "TesselHost/host_protection.h"

namespace tessel_tool {

/// One password that may be given on the command line, in a file, or in an environment variable, where the
/// process list doesn't show it.
class PasswordOption {
 public:
  /// Adds --NAME and --NAME-file, which it returns.
  /// @param variable  looked at when neither is given
  std::array<CLI::Option*, 2> addTo(CLI::App& command, const std::string& name, const std::string& variable,
                                    const std::string& help);
  /// The password, which may be given as empty; a file's first line. Throws HostError when there is no such
  /// file, or no password in it.
  std::string value() const;

 private:
  std::string text;
  std::string file;
  std::string fallback;
  CLI::Option* direct = nullptr;
  CLI::Option* inFile = nullptr;
};

/// --password and --password-file, alike for every command: open the inputs that need one. Each may be given
/// more than once, since the inputs may differ in theirs.
class InputPasswords {
 public:
  /// Requires: stays where it is while the command line is parsed.
  void addTo(CLI::App& command);
  /// In the order of the command line; without any the environment's. Throws as PasswordOption::value.
  TesselHost::Passwords value() const;

 private:
  struct Given {
    std::string text;
    bool isFile;  ///< the text names one
  };
  std::vector<Given> given;
};

/// --encrypt and what belongs to it, alike for every command that writes a PDF.
class EncryptionOptions {
 public:
  void addTo(CLI::App& command);
  /// Nothing when --encrypt wasn't given. Throws UsageError when the options don't go together.
  std::optional<TesselHost::ProtectionOptions> value() const;

 private:
  std::optional<TesselHost::Cipher> cipher;
  PasswordOption user;
  PasswordOption owner;
  TesselHost::Permissions allowed;
  bool cleartextMetadata = false;
};

}  // namespace tessel_tool
