#include "tessel_security.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>

#include "TesselHost/host_error.h"
#include "tessel_options.h"

namespace tessel_tool {

using namespace TesselHost;

namespace {

std::string firstLineOf(std::istream& in, const std::string& name) {
  constexpr std::size_t longestLine = 4096;
  std::string line;
  for (char c = 0; in.get(c) && c != '\n';) {
    if (c == '\0' || line.size() == longestLine) throw HostError(name + ": its first line is no password");
    line += c;
  }
  if (in.bad()) throw HostError(name + ": the password can't be read");
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

std::string firstLineOf(const std::string& file) {
  if (file == "-") return firstLineOf(std::cin, "standard input");
  std::ifstream in(file, std::ios::binary);
  if (!in) throw HostError(fmt::format("{}: the password can't be read: {}", file, std::strerror(errno)));
  return firstLineOf(in, file);
}

std::string environmentOf(const std::string& variable) {
  const char* text = std::getenv(variable.c_str());
  return text != nullptr ? text : "";
}

constexpr const char* inFileHelp =
    "The same as the first line of a file; - for standard input, a line for each such option";
constexpr const char* directType = "PASSWORD";
constexpr const char* inFileType = "FILE";

}  // namespace

std::array<CLI::Option*, 2> PasswordOption::addTo(CLI::App& command, const std::string& name,
                                                  const std::string& variable, const std::string& help) {
  fallback = variable;
  direct = command.add_option("--" + name, text, help + "; without it $" + variable + " counts");
  inFile = command.add_option("--" + name + "-file", file, inFileHelp);
  direct->type_name(directType);
  inFile->type_name(inFileType)->excludes(direct);
  return {direct, inFile};
}

std::string PasswordOption::value() const {
  if (direct->count() > 0) return text;
  return inFile->count() > 0 ? firstLineOf(file) : environmentOf(fallback);
}

namespace {

constexpr const char* inputVariable = "TESSEL_PASSWORD";

}  // namespace

void InputPasswords::addTo(CLI::App& command) {
  const auto add = [this, &command](const char* name, const char* type, bool isFile,
                                    const std::string& help) {
    command
        .add_option_function<std::string>(
            name,
            [this, isFile](const std::string& text) {
              given.push_back({text, isFile});
            },
            help)
        ->type_name(type)
        ->trigger_on_parse();  // each time, so that the order of both options is known
  };
  add("--password", directType, false,
      fmt::format("Opens the inputs that need a password; give all that they have, each is tried on each "
                  "input; without any ${} counts",
                  inputVariable));
  add("--password-file", inFileType, true, inFileHelp);
}

Passwords InputPasswords::value() const {
  if (given.empty()) return {environmentOf(inputVariable)};
  Passwords passwords;
  for (const Given& one : given) passwords.push_back(one.isFile ? firstLineOf(one.text) : one.text);
  return passwords;
}

void EncryptionOptions::addTo(CLI::App& command) {
  CLI::Option* encrypt = addParsed(command, "--encrypt", cipher, parseCipher,
                                   "Protect the output: rc4-40, rc4-128, aes-128 or aes-256",
                                   "a cipher: rc4-40, rc4-128, aes-128 or aes-256");
  encrypt->type_name("CIPHER");
  const auto users = user.addTo(command, "user-password", "TESSEL_USER_PASSWORD",
                                "Opens the output, with what --allow allows");
  const auto owners = owner.addTo(command, "owner-password", "TESSEL_OWNER_PASSWORD",
                                  "Opens the output without restrictions");
  CLI::Option* allow = addParsed(command, "--allow", allowed, Permissions::parse,
                                 "all (default), none, or of these, with commas: " + Permissions::allWords() +
                                     " (which always is)",
                                 "all, none, or words such as print,copy")
                           ->type_name("WORDS");
  CLI::Option* cleartext =
      command.add_flag("--cleartext-metadata", cleartextMetadata,
                       "Leave the document's metadata readable for everyone; with AES only");
  for (CLI::Option* option : {users[0], users[1], owners[0], owners[1], allow, cleartext})
    option->needs(encrypt);
}

std::optional<ProtectionOptions> EncryptionOptions::value() const {
  if (!cipher) return std::nullopt;
  ProtectionOptions options{*cipher, user.value(), owner.value(), allowed, cleartextMetadata};
  if (options.userPassword.empty() && options.ownerPassword.empty())
    throw UsageError("--encrypt needs a --user-password or an --owner-password");
  if (cleartextMetadata && !hasMetadataSwitch(*cipher))
    throw UsageError("--cleartext-metadata needs --encrypt aes-128 or aes-256");
  return options;
}

}  // namespace tessel_tool
