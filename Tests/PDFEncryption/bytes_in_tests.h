#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>

#include "Tests/Support/hex.h"

/// Raw bytes as the tests of the ciphers write and compare them.
namespace raw {

/// Bytes of hexadecimal digits; blanks between them are passed over.
inline std::string hex(std::string_view digits) {
  std::string result, pair;
  for (const char c : digits) {
    if (c == ' ') continue;
    pair += c;
    if (pair.size() < 2) continue;
    result += static_cast<char>(std::stoi(pair, nullptr, 16));
    pair.clear();
  }
  return result;
}

using tessel_test::toHex;

/// The 32 bytes that passwords up to revision 4 are padded with (ISO 32000-2, 7.6.4.3.2, Algorithm 2, step
/// a).
inline const std::string padText = hex("28bf4e5e4e758a4164004e56fffa01082e2e00b6d0683e802f0ca9fe6453697a");

inline unsigned char* at(std::string& s) { return reinterpret_cast<unsigned char*>(s.data()); }
inline const unsigned char* at(const std::string& s) {
  return reinterpret_cast<const unsigned char*>(s.data());
}
inline int size(const std::string& s) { return static_cast<int>(s.size()); }

/// The same random bytes in each run.
inline std::string random(std::size_t count, unsigned int seed) {
  std::mt19937 engine(seed);
  std::string result;
  for (std::size_t i = 0; i < count; ++i) result += static_cast<char>(engine());
  return result;
}

/// What the `openssl` program prints for `input`, given as its last argument.
inline std::string openssl(const std::string& arguments, const std::string& input) {
  const auto file = std::filesystem::temp_directory_path() / ("cipher-" + std::to_string(getpid()));
  std::ofstream(file, std::ios::binary) << input;
  FILE* const pipe = popen(("openssl " + arguments + " " + file.string()).c_str(), "r");
  if (pipe == nullptr) std::abort();
  std::string result;
  std::array<char, 4096> part;
  while (const std::size_t got = fread(part.data(), 1, part.size(), pipe)) result.append(part.data(), got);
  EXPECT_EQ(pclose(pipe), 0) << "openssl " << arguments;
  std::filesystem::remove(file);
  return result;
}

}  // namespace raw
