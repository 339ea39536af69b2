#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

/// Files that another program has encrypted, for tests that open them.
namespace tessel_test {

/// How a file is protected.
struct Protection {
  std::string_view name;    ///< for the test's name
  std::string_view method;  ///< key length and options of the program
  int revision = 0;
  int keyLength = 0;  ///< bits
  int cipher = 0;     ///< a pcrypt::Method
};
inline std::ostream& operator<<(std::ostream& out, const Protection& protection) {
  return out << protection.name;
}

/// All revisions of the standard handler, each with the ciphers that it has.
inline constexpr Protection allProtections[] = {
    {"R2", "40", 2, 40, 1},
    {"R3", "128 --use-aes=n", 3, 128, 1},
    {"R4RC4", "128 --use-aes=n --force-V4", 4, 128, 1},
    {"R4AES", "128 --use-aes=y", 4, 128, 2},
    {"R4AESClearMetadata", "128 --use-aes=y --cleartext-metadata", 4, 128, 2},
    {"R5", "256 --force-R5", 5, 256, 3},
    {"R6", "256", 6, 256, 3},
    {"R6ClearMetadata", "256 --cleartext-metadata", 6, 256, 3},
};

struct Passwords {
  std::string user;
  std::string owner;
};

enum class Layout { classicTable, objectStreams };

/// `plain` as qpdf encrypts it. Fails the test, and gives nothing, when qpdf does.
std::string protectedPdf(const std::string& plain, const Protection& protection, const Passwords& passwords,
                         Layout layout = Layout::classicTable, const std::string& options = {});

/// `encrypted` as qpdf decrypts it; empty when the password doesn't open it.
std::string decryptedByQpdf(const std::string& encrypted, const std::string& password);

inline std::string protectionName(const testing::TestParamInfo<Protection>& info) {
  return std::string(info.param.name);
}

}  // namespace tessel_test
