#pragma once

#include <exception>
#include <string>
#include <utility>

namespace TESSEL {

/// Where an exception was thrown.
struct ThrowPlace {
  const char* file;  ///< name of the source file, without its path
  int line;
};

/// What the value finder throws, at all its failures. Callers of the finder take it for a failed query.
class BaseException : public std::exception {
 public:
  /// "<message>", and the place.
  BaseException(const std::string& message, ThrowPlace place) : text(message + told(place)) {}

  /// "<message> error value: <value>", and the place.
  BaseException(const std::string& message, const std::string& value, ThrowPlace place)
      : text(message + " error value: " + value + told(place)) {}

  /// The whole message; valid as long as the exception.
  const char* what() const noexcept override { return text.c_str(); }

 private:
  static std::string told(ThrowPlace place) {
    return std::string("\nException in file: ") + place.file + " at line: " + std::to_string(place.line);
  }

  std::string text;
};

}  // namespace TESSEL

/// The place where it stands.
#define TESSEL_THROW_PLACE \
  ::TESSEL::ThrowPlace { __FILE_NAME__, __LINE__ }
