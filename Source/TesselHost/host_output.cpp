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
constexpr const char* descriptorDirectory = "/proc/self/fd";

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

std::size_t nameStart(const std::string& path) {
  const auto slash = path.find_last_of('/');
  return slash == std::string::npos ? 0 : slash + 1;
}

std::string directoryOf(const std::string& path) { return path.substr(0, nameStart(path)) + "."; }

std::string temporaryName(const std::string& path, int attempt) {
  const std::string directory = path.substr(0, nameStart(path));
  return fmt::format("{}.{}.{}-{}", directory, path.substr(directory.size()), getpid(), attempt);
}

}  // namespace

OutputFile::OutputFile(const std::string& target, Temporary kind)
    : name(target == "-" ? "standard output" : target) {
  buffer.reserve(bufferSize);
  if (target == "-") {
    descriptor = STDOUT_FILENO;
    return;
  }
  path = resolved(target);
  isNotRegular(path) ? openTarget() : openTemporary(kind);
}

OutputFile::~OutputFile() { discard(); }

void OutputFile::openTarget() {
  descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC);
  if (descriptor < 0) throw OutputError(name, "can't be opened for writing", errno);
}

void OutputFile::openTemporary(Temporary kind) {
  if (kind == Temporary::unnamed) openUnnamed();
  if (!unnamed) openNamed();
  struct stat old {};
  if (stat(path.c_str(), &old) == 0) (void)!fchmod(descriptor, old.st_mode & permissionBits);
}

/// Needs a file system that has such files, and the directory of descriptors to name it later.
void OutputFile::openUnnamed() {
  if (::access(descriptorDirectory, X_OK) != 0) return;
  descriptor = open(directoryOf(path).c_str(), O_WRONLY | O_TMPFILE | O_CLOEXEC, newFileMode);
  unnamed = descriptor >= 0;
}

void OutputFile::openNamed() {
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
}

/// A name of its own first: a link doesn't take the place of another file, a renaming does.
void OutputFile::nameTemporary() {
  const std::string source = fmt::format("{}/{}", descriptorDirectory, descriptor);
  for (int attempt = 0; attempt < maxTemporaries; ++attempt) {
    const std::string link = temporaryName(path, attempt);
    if (linkat(AT_FDCWD, source.c_str(), AT_FDCWD, link.c_str(), AT_SYMLINK_FOLLOW) == 0) {
      temporary = link;
      return;
    }
    if (errno != EEXIST) break;
  }
  throw OutputError(name, "can't be put in place", errno);
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
  if (unnamed) nameTemporary();
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

bool isSameFile(const std::string& file, const std::string& output) {
  std::error_code failed;
  return std::filesystem::is_regular_file(file, failed) &&
         std::filesystem::equivalent(file, output == "-" ? "/dev/stdout" : output, failed) && !failed;
}

}  // namespace TesselHost
