#include "TesselHost/host_output.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "TesselHost/host_error.h"

namespace TesselHost {

namespace {

constexpr std::size_t bufferSize = std::size_t{1} << 16U;
constexpr int maxTemporaries = 1000;
constexpr mode_t newFileMode = 0666;
constexpr mode_t permissionBits = 0777;

/// The path that `target` leads to through symbolic links, so that a link at the target survives.
std::string resolved(const std::string& target) {
  std::error_code failed;
  const auto path = std::filesystem::canonical(target, failed);
  return failed ? target : path.string();
}

bool isNotRegular(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
}

std::string temporaryName(const std::string& path, int attempt) {
  const auto slash = path.find_last_of('/');
  const auto nameStart = slash == std::string::npos ? 0 : slash + 1;
  return fmt::format("{}.{}.{}-{}", path.substr(0, nameStart), path.substr(nameStart), getpid(), attempt);
}

}  // namespace

OutputFile::OutputFile(const std::string& target) : name(target == "-" ? "standard output" : target) {
  buffer.reserve(bufferSize);
  if (target == "-") {
    descriptor = STDOUT_FILENO;
    return;
  }
  path = resolved(target);
  isNotRegular(path) ? openTarget() : openTemporary();
}

OutputFile::~OutputFile() { discard(); }

void OutputFile::openTarget() {
  descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC);
  if (descriptor < 0) throw OutputError(name, "can't be opened for writing", errno);
}

void OutputFile::openTemporary() {
  for (int attempt = 0; attempt < maxTemporaries && descriptor < 0; ++attempt) {
    temporary = temporaryName(path, attempt);
    descriptor = open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, newFileMode);
    if (descriptor < 0 && errno != EEXIST) break;
  }
  if (descriptor < 0) {
    const int error = errno;
    temporary.clear();
    throw OutputError(name, "can't be written", error);
  }
  struct stat old {};
  if (stat(path.c_str(), &old) == 0) (void)!fchmod(descriptor, old.st_mode & permissionBits);
}

void OutputFile::write(std::string_view bytes) {
  if (buffer.size() + bytes.size() > bufferSize) flush();
  if (bytes.size() >= bufferSize)
    writeThrough(bytes);
  else
    buffer += bytes;
}

void OutputFile::flush() {
  writeThrough(buffer);
  buffer.clear();
}

void OutputFile::writeThrough(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) throw OutputError(name, "can't be written", errno);
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

void OutputFile::commit() {
  flush();
  if (descriptor == STDOUT_FILENO) return;
  const int closing = descriptor;
  descriptor = -1;
  // Some file systems tell only now that the disk is full.
  if (close(closing) != 0) throw OutputError(name, "can't be written", errno);
  if (temporary.empty()) return;
  if (std::rename(temporary.c_str(), path.c_str()) != 0)
    throw OutputError(name, "can't be put in place", errno);
  temporary.clear();
}

void OutputFile::discard() noexcept {
  if (descriptor > STDERR_FILENO) close(descriptor);
  if (!temporary.empty()) unlink(temporary.c_str());
}

bool isSameFile(const std::string& a, const std::string& b) {
  std::error_code failed;
  return std::filesystem::equivalent(a, b, failed) && !failed;
}

}  // namespace TesselHost
