#pragma once

#include <cstddef>
#include <unordered_set>
#include <vector>

#include "TesselPage/Structure/tessel_sourfile.h"

namespace TESSEL {

/// The walk over the page tree (ISO 32000-2, 7.7.3): depth first, kids in their array order, so that the
/// pages come out in document order. A node that occurs twice is walked twice; one that is its own ancestor
/// is where the walk turns back.
class PageTreeWalk {
 public:
  /// What becomes of a node that is neither /Pages nor /Page, or that can't be reached.
  enum class UnknownNode { fail, skip };

  /// What one walk may cost. A small file whose nodes share kids could ask for any number of visits, and many
  /// table entries may lead to one long body.
  struct Limits {
    std::size_t nodes = std::size_t{1} << 21;  ///< more than any document has
    long long leastBytes = 256LL << 20;        ///< of node bodies, and more for a larger file:
    long long bytesPerFileByte = 16;
  };

  PageTreeWalk(CSourFile& file, UnknownNode rule, const Limits& bounds)
      : source(file), unknown(rule), limits(bounds) {}
  PageTreeWalk(CSourFile& file, UnknownNode rule) : PageTreeWalk(file, rule, Limits()) {}

  /// Walks from `root` and fills the source's page list, as far as the limits reach.
  /// @return false when a node failed the walk; the pages up to it are then in the list
  bool run(const SObj& root);

 private:
  struct Level {
    SObj node;
    std::vector<SObj> kids;
    std::size_t next = 0;
  };

  bool visit(const SObj& node);
  void enter(const SObj& node, std::vector<SObj> kids);
  void leave();
  void charge(const SObj& node);

  CSourFile& source;
  UnknownNode unknown;
  Limits limits;
  std::vector<Level> path;
  std::unordered_set<SObj, SObjHash> ancestors;
  std::size_t nodes = 0;
  long long bytesLeft = 0;
};

}  // namespace TESSEL
