#pragma once

#include <string>
#include <string_view>

namespace TesselHost {

/// Takes the bytes of an output, in order.
class ByteSink {
 public:
  virtual ~ByteSink() = default;
  /// Throws OutputError when the bytes can't be taken.
  virtual void write(std::string_view bytes) = 0;
};

/// Keeps the output in memory.
class MemorySink : public ByteSink {
 public:
  void write(std::string_view bytes) override { text += bytes; }
  std::string text;
};

/// An output file that is there as a whole or not at all.
///
/// The bytes go to a temporary file in the target's directory, which has no name where the file system can do
/// that, so that nothing is left however the process ends; commit() names it as the target. Without a commit
/// the temporary is removed, and a file that stood at the target stays as it was. A target that isn't
/// a regular file (a device, a pipe), and "-" for standard output, are written to directly.
class OutputFile : public ByteSink {
 public:
  enum class Temporary {
    unnamed,  ///< has a name only where the file system knows no others
    named,
  };
  /// Throws OutputError when the file can't be made.
  explicit OutputFile(const std::string& target, Temporary kind = Temporary::unnamed);
  ~OutputFile() override;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void write(std::string_view bytes) override;
  /// Hands on what is still held back; only of use where the output is read while it grows.
  void flush();
  /// Puts the file in its place. Throws OutputError; the temporary is then gone.
  void commit();

 private:
  void openTemporary(Temporary kind);
  void openUnnamed();
  void openNamed();
  void nameTemporary();
  void openTarget();
  void writeThrough(std::string_view bytes);
  void discard() noexcept;

  std::string name;       ///< as the user gave it, for messages
  std::string path;       ///< where links lead to
  std::string temporary;  ///< empty while there is none, and when it has no name
  bool unnamed = false;
  int descriptor = -1;
  std::string buffer;
};

/// Whether an output, a path or "-" for standard output, is this existing file.
bool isSameFile(const std::string& file, const std::string& output);

}  // namespace TesselHost
