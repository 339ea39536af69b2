#pragma once

#include <vector>

#include "TesselHost/host_objects.h"

namespace TesselHost {

/// Builds a page tree (ISO 32000-2, 7.7.3) as its pages come, with nodes of bounded width, so that a reader
/// gets to any page of many in a few steps. Nodes are written as soon as they are full.
class PageTree {
 public:
  explicit PageTree(ObjectWriter& aWriter) : writer(aWriter) {}

  /// Number of the node that the next page's /Parent must name.
  int parentOfNext();
  /// The next page; its object may be written before or after.
  void add(int pageNumber);
  /// Writes what is left of the nodes; the root's number. At least one page must have been added.
  int finish();

 private:
  struct Node {
    int number = 0;
    int pages = 0;
    std::vector<int> kids;
  };
  Node& nodeWithRoom(std::size_t level);
  void close(std::size_t level);
  void write(const Node& node, int parent);

  ObjectWriter& writer;
  std::vector<Node> levels;  ///< the open node of each level, from the pages' parents up
};

}  // namespace TesselHost
