#pragma once

#include <CLI/CLI.hpp>
#include <array>
#include <optional>
#include <string>

#include "TesselHost/host_protection.h"

namespace tessel_tool {

/// A password that may be given on the command line, in a file, or in an environment variable, where the
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

/// --password, alike for every command: opens the inputs that need one.
void addPassword(CLI::App& command, PasswordOption& password);

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
