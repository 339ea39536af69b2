#pragma once

#include <list>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "TesselPage/Structure/tessel_sobj.h"

namespace TESSEL {

/// A node of a name tree (ISO 32000-2, 7.9.6), with what stands in front of its /Limits kept apart: that
/// counts for every name.
struct NameTreeNode {
  using Entry = std::pair<std::string, SObj>;

  std::vector<Entry> names;
  std::vector<SObj> kids;
  std::string lower;
  std::string upper;
  bool limited = false;  ///< both limits were read
  std::size_t namesBeforeLimits = 0;
  std::size_t kidsBeforeLimits = 0;

  bool covers(const std::string& name) const { return !limited || (lower <= name && name <= upper); }
};

/// What the target of a destination is looked up in. Filled on demand, never emptied.
struct DestLookup {
  // Named destinations.
  std::map<std::string, SObj> names;   ///< name to the object of its destination
  std::list<NameTreeNode> outOfRange;  ///< nodes read, none of the names asked for within their limits yet
  std::set<SObj> nodesRead;
  bool rootRead = false;

  // Nodes of the two trees that can lead to a page.
  std::map<SObj, SObj> partPages;     ///< document part to its page
  std::map<SObj, SObj> elementPages;  ///< structure element to its page
  std::optional<SObj> partTree;       ///< /DPartRoot, until the tree is walked
  std::optional<SObj> structTree;     ///< /StructTreeRoot, until the tree is walked

  std::unordered_map<SObj, int, SObjHash> pageNumbers;  ///< first place in the page list, from 1
};

}  // namespace TESSEL
