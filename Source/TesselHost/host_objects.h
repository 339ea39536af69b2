#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "TesselHost/host_deflate.h"
#include "TesselHost/host_output.h"
#include "TesselHost/host_protection.h"
#include "TesselHost/host_version.h"

namespace TesselHost {

/// Object number and generation.
using Identity = std::pair<int, int>;

/// "12 0 R".
std::string referenceTo(int number);

/// What the trailer says (ISO 32000-2, 7.5.5).
struct Trailer {
  int root = 0;    ///< number of the catalog
  int info = 0;    ///< number of the information dictionary, 0 for none
  std::string id;  ///< 16 bytes, written as both file identifiers
};

/// Writes the objects of a PDF file as they come and keeps nothing of them but where they lie.
///
/// Numbers are given out by reserve and reserveThrough; each number gets at most one object, at any time
/// before finish, in any order. A number that gets none is a free entry, which a reader takes for null. One
/// thread at a time.
class ObjectWriter {
 public:
  struct Options {
    PdfVersion version = pdf14;
    /// Objects that aren't streams go packed into object streams, and the file ends in a cross-reference
    /// stream (ISO 32000-2, 7.5.7, 7.5.8).
    bool objectStreams = false;
    /// Encrypts what is written; null for none. Must outlive the writer.
    const OutputProtection* protection = nullptr;
    /// Stays within seven bits. Not with object streams, and not with protection.
    bool ascii = false;
  };

  /// Writes the file's header. The sink must outlive the writer.
  ObjectWriter(ByteSink& aSink, const Options& someOptions);

  /// A number that nobody has yet.
  int reserve() { return next++; }
  /// The number that reserve would give.
  int nextNumber() const { return next; }
  /// Takes a number back that nobody used, if it is the last one given; else it stays a free entry.
  void giveBack(int number) {
    if (number + 1 == next) next = number;
  }
  /// Gives away all numbers up to this one.
  void reserveThrough(int number);

  /// What encrypts the output; null when nothing does.
  const OutputProtection* protection() const { return options.protection; }
  /// Whether the output stays within seven bits.
  bool isAscii() const { return options.ascii; }

  /// An object that the host made, by its body, which is no stream; white space around the body is the body's
  /// own matter.
  void writeBody(const Identity& object, std::string_view body);
  /// An object that the library handed over, stream or not. In an encrypted output it comes encrypted.
  void writeHarvested(const Identity& object, std::string_view body);
  /// A part of an object that the library handed over, made by the host, as writeHarvested wants it.
  std::string ownText(int number, std::string_view text) const;
  /// A stream object that the host made.
  /// @param entries  entries of its dictionary, without /Length
  void writeStream(int number, std::string_view entries, std::string_view data);
  /// A stream object whose data is packed here, if that makes it smaller.
  void writePackedStream(int number, std::string_view entries, std::string_view data);

  /// Writes what is held back, the cross-reference data and the trailer; nothing may follow.
  void finish(const Trailer& trailer);

 private:
  enum class EntryKind : std::uint8_t { free, atOffset, inObjectStream };
  struct Entry {
    std::uint64_t place = 0;   ///< offset in the file, or the number of the object stream
    std::uint32_t detail = 0;  ///< generation, or the index in the object stream
    EntryKind kind = EntryKind::free;
  };

  void put(std::string_view bytes);
  void writePlainBody(const Identity& object, std::string_view body);
  void writePlainStream(int number, std::string_view entries, std::string_view data);
  bool writeInTheClear(const Identity& object, std::string_view body);
  bool writeAsciiStream(const Identity& object, std::string_view body);
  int writeEncryption();
  void beginObject(const Identity& object);
  Entry& entryOf(int number);
  void collect(int number, std::string_view body);
  void flushObjectStream();
  void writeTable(const std::string& trailer);
  void writeTableRows();
  void writeCrossReferenceStream(const std::string& trailer);
  void writeEnd(std::uint64_t start);

  ByteSink& sink;
  Options options;
  Deflater deflater;
  std::uint64_t offset = 0;
  int next = 1;
  std::vector<Entry> entries;  ///< by object number
  std::string scratch;

  std::vector<int> collectedNumbers;  ///< objects of the object stream that is growing
  std::vector<std::size_t> collectedOffsets;
  std::string collected;
};

}  // namespace TesselHost
