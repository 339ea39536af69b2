#pragma once

#include <string>
#include <string_view>

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_stream.h"
#include "TesselPage/Writer/tessel_destfile.h"

namespace TESSEL {

/// What the writers of objects share: an object's text goes from a source to a destination span by span,
/// untouched bytes as they are, while the writer looks at the words and decides what is cut or replaced.
///
/// Positions in the source, in the order of the bytes:
///   mark      all before it is dealt with: copied, cut or replaced
///   lastEnd   end of what was taken before the present word or reference
///   here      end of the present word or reference; the source stands there
/// A writer loops over turns: `takeReference`, else `readWord`, then one of the operations below. A turn that
/// does nothing leaves the bytes to a later copy. What is behind the mark when the loop ends is not copied.
class SpanCopier {
 public:
  /// Starts at the source's present place. Neither is owned.
  /// @param owner  the object that is copied: it keys the decryption of its strings and its stream
  SpanCopier(CDestFile& target, CSourFile& from, const SObj& owner);

  bool good() const { return source.good(); }
  long long here() const { return herePlace; }

  /// Takes a reference at the present place. Never with the destination's raw flag: references are then
  /// words.
  bool takeReference();
  const SObj& reference() const { return ref; }
  /// Takes the next word; the present one becomes the previous.
  void readWord();
  const std::string& word() const { return present; }
  const std::string& previous() const { return former; }
  /// Makes the present word an empty one.
  void forgetWord() { present.clear(); }
  /// With the raw flag: whether the present word is the number of a reference.
  bool wordBeginsReference();

  /// Copies up to the end of what was taken before.
  void copyToLast() { copyTo(lastEndPlace); }
  /// Copies up to the present word's first byte.
  void copyToWord() { copyTo(herePlace - static_cast<long long>(present.size())); }
  /// Copies up to the previous word's first byte. Requires: nothing was taken between the two words.
  void copyToPrevious() { copyTo(lastEndPlace - static_cast<long long>(former.size())); }
  /// Copies up to and with the present word.
  void copyThrough() { copyTo(herePlace); }
  /// All up to the present place counts as dealt with.
  void cut() { mark = herePlace; }
  /// Copies up to the present word and cuts the word.
  void cutWord();
  /// Reads words up to one that equals `closing`, and cuts all that.
  void cutThrough(std::string_view closing);
  /// Takes over the place to which the source was moved from outside.
  void moveHere() { herePlace = place(); }
  /// Puts the source in front of the present word.
  void rewindToWord() { source.seekg(herePlace - static_cast<long long>(present.size())); }
  /// Puts the source back behind the present word or reference.
  void rewind() { source.seekg(herePlace); }

  /// Appends " n g R".
  void writeReference(const SObj& id);

  /// Behind the key /Length: reads its value for the stream to come. Moves the source.
  bool readLength() { return stream.ReadLen(source); }
  /// Replaces the reference behind /Length by blanks, which the stream's true length will replace.
  void leaveHole();
  /// Remembers the number behind /Length, which is copied, as the place of the stream's true length.
  void markHole();

  enum class Body { none, copied, end };
  /// Deals with "stream", "(", "<" and what follows it, and with "endobj", which ends the text. None: another
  /// word.
  /// @param placement  when not null, a string is a default appearance, whose font sizes it scales
  Body copyBody(const PgCmTD* placement = nullptr);

 private:
  long long place() const;
  void copyTo(long long end);
  void appendSpan(long long begin, long long end);
  void copyStream();
  void copyString(bool hexadecimal, const PgCmTD* placement);

  CDestFile& dest;
  CSourFile& source;
  SObj id;
  CStreamType stream;
  bool inMemory = false;
  std::string_view text;  ///< the source's bytes, when they lie in memory

  long long mark = 0;
  long long lastEndPlace = 0;
  long long herePlace = 0;
  std::string present;
  std::string former;
  SObj ref;

  long long lengthPosition = 0;  ///< of the hole, in the destination
  long long lengthWidth = 0;     ///< 0: there is none
};

}  // namespace TESSEL
