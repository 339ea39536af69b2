#include "TesselHost/host_objects.h"

#include <fmt/format.h>

#include <iterator>

#include "TesselHost/host_ascii.h"
#include "TesselHost/host_dictionary.h"
#include "TesselHost/host_error.h"
#include "TesselHost/host_strings.h"

namespace TesselHost {

namespace {

// Tells transfer programs that the file is binary (ISO 32000-2, 7.5.2).
constexpr std::string_view binaryMark = "%\xE2\xE3\xCF\xD3\n";
// A table's row has ten digits for the offset (ISO 32000-2, 7.5.4).
constexpr std::uint64_t largestTableOffset = 9'999'999'999;
// Small enough that a reader that wants one object doesn't unpack much.
constexpr std::size_t objectsPerStream = 200;
constexpr std::size_t bytesPerObjectStream = 64U * 1024U;
constexpr std::size_t smallestPackedStream = 32;
// Leaves data as it is (ISO 32000-2, 7.4.10).
constexpr std::string_view cryptFilter = "/Crypt";
constexpr std::string_view identityCrypt = "<</Type/CryptFilterDecodeParms/Name/Identity>>";

std::string trailerEntries(const Trailer& trailer, int encryption) {
  const std::string id = hexString(trailer.id);
  std::string text = fmt::format("/Root {}", referenceTo(trailer.root));
  if (trailer.info != 0) text += "/Info " + referenceTo(trailer.info);
  if (encryption != 0) text += "/Encrypt " + referenceTo(encryption);
  return text + fmt::format("/ID[{}{}]", id, id);
}

bool holdsStream(std::string_view body) { return body.rfind("endstream") != std::string_view::npos; }

/// Width of the field that holds the largest place, in bytes.
unsigned bytesFor(std::uint64_t value) {
  unsigned bytes = 1;
  while (bytes < sizeof value && value >> (8 * bytes) != 0) ++bytes;
  return bytes;
}

void appendField(std::string& row, std::uint64_t value, unsigned bytes) {
  while (bytes-- > 0) row += static_cast<char>(value >> (8 * bytes));
}

// PNG's "up" predictor (ISO 32000-2, 7.4.4.4): rows of one table differ little from row to row.
constexpr char predictorUp = 2;
constexpr int predictorParameter = 12;

void appendPredicted(std::string& out, const std::string& row, const std::string& above) {
  out += predictorUp;
  for (std::size_t i = 0; i < row.size(); ++i)
    out += static_cast<char>(static_cast<unsigned char>(row[i]) - static_cast<unsigned char>(above[i]));
}

/// Whether a stream's dictionary says that its data isn't encrypted although other streams are.
bool choosesIdentity(std::string_view dictionary) {
  if (dictionary.find(cryptFilter) == dictionary.npos) return false;
  const std::string_view parameters = valueOfKey(dictionary, "/DecodeParms");
  return valueOfKey(dictionary, "/Filter").find(cryptFilter) != dictionary.npos &&
         (parameters.find("/Name") == dictionary.npos || parameters.find("/Identity") != dictionary.npos);
}

}  // namespace

std::string referenceTo(int number) { return fmt::format("{} 0 R", number); }

ObjectWriter::ObjectWriter(ByteSink& aSink, const Options& someOptions)
    : sink(aSink), options(someOptions), entries(1) {
  put(fmt::format("%PDF-{}\n", options.version.text()));
  if (!options.ascii) put(binaryMark);
}

void ObjectWriter::reserveThrough(int number) {
  if (number >= next) next = number + 1;
}

void ObjectWriter::put(std::string_view bytes) {
  sink.write(bytes);
  offset += bytes.size();
}

ObjectWriter::Entry& ObjectWriter::entryOf(int number) {
  const auto index = static_cast<std::size_t>(number);
  if (entries.size() <= index) entries.resize(index + 1);
  return entries[index];
}

void ObjectWriter::beginObject(const Identity& object) {
  reserveThrough(object.first);
  entryOf(object.first) = {offset, static_cast<std::uint32_t>(object.second), EntryKind::atOffset};
  scratch.clear();
  fmt::format_to(std::back_inserter(scratch), "{} {} obj\n", object.first, object.second);
}

void ObjectWriter::writeBody(const Identity& object, std::string_view body) {
  // Only objects of generation 0 may lie in an object stream, which is encrypted as a whole (ISO 32000-2,
  // 7.5.7).
  if (options.objectStreams && object.second == 0) return collect(object.first, body);
  if (!options.protection) return writePlainBody(object, body);
  writePlainBody(object, options.protection->withStringsEncrypted(object.first, body));
}

void ObjectWriter::writeHarvested(const Identity& object, std::string_view body) {
  if (options.ascii && writeAsciiStream(object, body)) return;
  if (options.protection && writeInTheClear(object, body)) return;
  return options.protection || holdsStream(body) ? writePlainBody(object, body) : writeBody(object, body);
}

/// A stream that isn't encrypted although the output is: metadata that is left so, or a source's own choice.
/// The library encrypts them like all others.
bool ObjectWriter::writeInTheClear(const Identity& object, std::string_view body) {
  const OutputProtection& protection = *options.protection;
  const std::string_view dictionary = valueAt(body);
  if (!protection.hasCryptFilters() || !isDictionary(dictionary)) return false;
  const bool saysSo = choosesIdentity(dictionary);
  const bool isMetadata = protection.leavesMetadata() && valueOfKey(dictionary, "/Type") == "/Metadata";
  const auto parts = saysSo || isMetadata ? partsOfStream(body) : std::nullopt;
  if (!parts) return false;
  writePlainStream(object.first,
                   saysSo ? parts->entries : withFilter(parts->entries, cryptFilter, identityCrypt),
                   protection.decrypted(object.first, parts->data));
  return true;
}

/// A stream of the library's ASCII-safe variant, which leaves a byte behind the data that it encodes and
/// takes no care of parameters and of streams without a filter.
bool ObjectWriter::writeAsciiStream(const Identity& object, std::string_view body) {
  const auto parts = partsOfStream(body);
  if (!parts || object.second != 0) return false;
  writePlainStream(object.first, withParametersInStep(parts->entries), parts->data);
  return true;
}

std::string ObjectWriter::ownText(int number, std::string_view text) const {
  return options.protection ? options.protection->withStringsEncrypted(number, text) : std::string(text);
}

void ObjectWriter::writePlainBody(const Identity& object, std::string_view body) {
  beginObject(object);
  put(scratch);
  options.ascii ? put(asciiText(body)) : put(body);
  put("\nendobj\n");
}

void ObjectWriter::writeStream(int number, std::string_view dictionaryEntries, std::string_view data) {
  if (!options.protection) return writePlainStream(number, dictionaryEntries, data);
  writePlainStream(number, options.protection->withStringsEncrypted(number, dictionaryEntries),
                   options.protection->encrypted(number, data));
}

void ObjectWriter::writePlainStream(int number, std::string_view dictionaryEntries, std::string_view data) {
  if (options.ascii && !TesselHost::isAscii(data))
    return writePlainStream(number, withAscii85(dictionaryEntries), ascii85(data));
  if (options.ascii && !TesselHost::isAscii(dictionaryEntries))
    return writePlainStream(number, asciiText(dictionaryEntries), data);
  beginObject({number, 0});
  fmt::format_to(std::back_inserter(scratch), "<<{}/Length {}>>\nstream\n", dictionaryEntries, data.size());
  put(scratch);
  put(data);
  put("\nendstream\nendobj\n");
}

void ObjectWriter::writePackedStream(int number, std::string_view dictionaryEntries, std::string_view data) {
  constexpr std::string_view filter = "/Filter/FlateDecode";
  if (data.size() >= smallestPackedStream) {
    const std::string_view packed = deflater.pack(data);
    if (packed.size() + filter.size() < data.size())
      return writeStream(number, std::string(dictionaryEntries).append(filter), packed);
  }
  writeStream(number, dictionaryEntries, data);
}

void ObjectWriter::collect(int number, std::string_view body) {
  reserveThrough(number);
  collectedNumbers.push_back(number);
  collectedOffsets.push_back(collected.size());
  collected += body;
  // A line end, since the body may close with a comment.
  collected += '\n';
  if (collectedNumbers.size() >= objectsPerStream || collected.size() >= bytesPerObjectStream)
    flushObjectStream();
}

void ObjectWriter::flushObjectStream() {
  if (collectedNumbers.empty()) return;
  const int number = reserve();
  std::string data;
  for (std::size_t i = 0; i < collectedNumbers.size(); ++i) {
    fmt::format_to(std::back_inserter(data), "{} {} ", collectedNumbers[i], collectedOffsets[i]);
    entryOf(collectedNumbers[i]) = {static_cast<std::uint64_t>(number), static_cast<std::uint32_t>(i),
                                    EntryKind::inObjectStream};
  }
  data.back() = '\n';
  const auto first = data.size();
  data += collected;
  writePackedStream(number, fmt::format("/Type/ObjStm/N {}/First {}", collectedNumbers.size(), first), data);
  collectedNumbers.clear();
  collectedOffsets.clear();
  collected.clear();
}

void ObjectWriter::finish(const Trailer& trailer) {
  flushObjectStream();
  const std::string last = trailerEntries(trailer, writeEncryption());
  options.objectStreams ? writeCrossReferenceStream(last) : writeTable(last);
}

/// The number of the encryption dictionary; 0 when there is none.
int ObjectWriter::writeEncryption() {
  if (!options.protection) return 0;
  const int number = reserve();
  writePlainBody({number, 0}, options.protection->dictionary());
  return number;
}

void ObjectWriter::writeTable(const std::string& trailer) {
  const std::uint64_t start = offset;
  if (start > largestTableOffset)
    throw OutputError("the output", "too large for a classic cross-reference table; object streams have room",
                      0);
  entries.resize(static_cast<std::size_t>(next));
  put(fmt::format("xref\n0 {}\n", next));
  writeTableRows();
  put(fmt::format("trailer\n<</Size {}{}>>\n", next, trailer));
  writeEnd(start);
}

void ObjectWriter::writeTableRows() {
  constexpr std::size_t rowSize = 20;
  // A free entry outside the list of free ones points to object 0 with generation 65535 (ISO 32000-2, 7.5.4).
  constexpr std::string_view freeRow = "0000000000 65535 f \n";
  scratch.clear();
  scratch.reserve(entries.size() * rowSize);
  for (const Entry& entry : entries) {
    if (entry.kind == EntryKind::free)
      scratch += freeRow;
    else
      fmt::format_to(std::back_inserter(scratch), "{:010} {:05} n \n", entry.place, entry.detail);
  }
  put(scratch);
}

void ObjectWriter::writeCrossReferenceStream(const std::string& trailer) {
  const std::uint64_t start = offset;
  const int number = reserve();
  entries.resize(static_cast<std::size_t>(next));
  entryOf(number) = {start, 0, EntryKind::atOffset};
  const unsigned placeBytes = bytesFor(start);
  constexpr unsigned kindBytes = 1;
  constexpr unsigned detailBytes = 2;
  const unsigned columns = kindBytes + placeBytes + detailBytes;
  std::string rows;
  std::string row;
  std::string above(columns, '\0');
  for (const Entry& entry : entries) {
    row.clear();
    appendField(row, static_cast<std::uint64_t>(entry.kind), kindBytes);
    appendField(row, entry.place, placeBytes);
    appendField(row, entry.detail, detailBytes);
    appendPredicted(rows, row, above);
    above.swap(row);
  }
  const std::string dictionary = fmt::format(
      "/Type/XRef/W[{} {} {}]/Filter/FlateDecode/DecodeParms<</Predictor {}/Columns {}>>/Size {}{}",
      kindBytes, placeBytes, detailBytes, predictorParameter, columns, next, trailer);
  writePlainStream(number, dictionary, deflater.pack(rows));
  writeEnd(start);
}

void ObjectWriter::writeEnd(std::uint64_t start) { put(fmt::format("startxref\n{}\n%%EOF\n", start)); }

}  // namespace TesselHost
