#pragma once

#include <cstddef>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "TesselPage/Structure/tessel_sobj.h"

namespace TESSEL {

class CSourFile;

/// One decoded object stream (ISO 32000-2, 7.5.7).
struct ObjectStream {
  int first = 0;                           ///< /First
  int count = 0;                           ///< /N
  int length = 0;                          ///< bytes of `text`
  std::string text;                        ///< decoded
  std::vector<std::pair<int, int>> pairs;  ///< number and start of each object, as far as they could be read
};

/// What the decoding of object streams may cost over the life of a source, in bytes: a few kilobytes of a
/// file can stand for many megabytes, and objects that lie in several such streams can be asked for in turn.
struct DecodingBudget {
  static constexpr long long leastBytes = 1LL << 30;
  static constexpr long long bytesPerFileByte = 256;  ///< object streams of real files stay below 20
  /// A byte of a stream that can't be decoded counts as so many, since nobody knows how far it came.
  static constexpr long long ratioOfFailed = 64;

  explicit DecodingBudget(long long fileBytes = 0) : bytes(leastBytes + bytesPerFileByte * fileBytes) {}

  long long bytes;
};

/// The object streams of a source, each decoded once and kept, with a bound on the bytes kept: what was used
/// longest ago goes first. An object stream that can't be read is remembered as such. One whose /Length lies
/// in itself, or at the end of a long chain of such streams, can't be read; nor can one that would be decoded
/// when the budget is used up.
class ObjectStreams {
 public:
  /// Bytes kept: few at first; a part of what had to be decoded again is added, up to the most.
  static constexpr std::size_t leastKept = 1U << 19;
  static constexpr std::size_t mostKept = 256U << 20;
  static constexpr std::size_t growth = 4;
  /// How many object streams may be read for each other's /Length at a time.
  static constexpr int maxNesting = 16;

  /// @param bound   bytes kept at first; the one used last is kept in any case
  /// @param costs   what may be decoded; without it, as much as the size of the first source asked allows
  explicit ObjectStreams(std::size_t bound = leastKept, std::optional<DecodingBudget> costs = {})
      : limit(bound), budget(costs) {}

  /// The object stream of that number, or null when it can't be read. The position of the source with the
  /// file behind it is not kept, and its state is that of a seek to the object stream: it fails when the
  /// state was failed before.
  std::shared_ptr<const ObjectStream> get(CSourFile& source, int number);
  /// Bytes of the object that `entry` names, when its object stream is kept; else 0.
  long long lengthOf(const SObjState& entry) const;
  /// Forgets all, as when the source's key has changed.
  void clear();

 private:
  struct Kept {
    std::shared_ptr<const ObjectStream> stream;  ///< null: can't be read, or is being read
    std::list<int>::iterator use;                ///< valid with a stream
  };
  std::shared_ptr<const ObjectStream> decode(CSourFile& file, int number);
  bool maySpend(CSourFile& file);
  void keep(int number, std::shared_ptr<const ObjectStream> stream);
  void dropOldest();

  std::map<int, Kept> kept;
  std::list<int> uses;  ///< newest first
  std::unordered_set<int> dropped;
  std::size_t limit;
  std::optional<DecodingBudget> budget;
  std::size_t bytes = 0;
  int nesting = 0;
};

}  // namespace TESSEL
