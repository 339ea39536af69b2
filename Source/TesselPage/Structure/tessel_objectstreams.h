#pragma once

#include <list>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace TESSEL {

class CSourFile;

/// One decoded object stream (ISO 32000-2, 7.5.7).
struct ObjectStream {
  int first = 0;                               ///< /First
  int count = 0;                               ///< /N
  int length = 0;                              ///< bytes of `text`
  std::string text;                            ///< decoded
  std::vector<std::pair<int, int>> pairs;      ///< number and start of each object, as far as they could be read
};

/// The object streams of a source, each decoded once and kept, with a bound on the bytes kept: what was used longest ago
/// goes first. An object stream that can't be read is remembered as such.
class ObjectStreams {
 public:
  static constexpr std::size_t bytesKept = 64U << 20;

  /// The object stream of that number, or null when it can't be read. The source's position is not kept.
  std::shared_ptr<const ObjectStream> get(CSourFile& source, int number);
  /// Forgets all, as when the source's key has changed.
  void clear();

 private:
  struct Kept {
    std::shared_ptr<const ObjectStream> stream;
    std::list<int>::iterator use;
  };
  std::map<int, Kept> kept;
  std::list<int> uses;  ///< newest first
  std::size_t bytes = 0;
};

}  // namespace TESSEL
