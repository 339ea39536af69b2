#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_obj.h"

namespace TESSEL {

/// A node of a tree whose nodes each lead to a page: document parts and structure elements. `scan` collects
/// what one node holds; the walk then hands in what its kids have found.
class PageTreeNode : public CObj {
 public:
  using CObj::CObj;

  /// Nothing of these trees is written.
  bool Write(CDestFile&, CSourFile&) override { return true; }

  std::vector<SObj> children;  ///< for each kid that was read, its page
  SObj page;                   ///< number and generation 0: not known
  std::vector<SObj> kids;      ///< in the order of the file

 protected:
  static bool isKnown(const SObj& object) { return object.objNum != 0 || object.genNum != 0; }
};

/// The walk over such a tree, kids before their parents. Its depth costs heap; a node that occurs again, also
/// as its own ancestor, is not read again.
///
///   bool Node::scan(CSourFile& source);    false when the stream failed
///   bool Node::settle();                   with the kids done: whether the node has an entry in `pages`
template <class Node>
class PageTreeReader {
 public:
  PageTreeReader(CSourFile& file, std::map<SObj, SObj>& found) : main(file), pages(found) {}

  /// Reads the tree below a node that has been scanned already.
  /// @return false when a node's stream failed; its ancestors then have no entry
  bool readBelow(Node& root) {
    nodesRead.insert(root.id);
    path.push_back(Level{std::move(root), 0});
    while (true) {
      Level& level = path.back();
      if (level.next < level.node.kids.size()) {
        if (!descend(level.node.kids[level.next++])) return false;
        continue;
      }
      if (level.node.settle()) pages[level.node.id] = level.node.page;
      Node done = std::move(level.node);
      path.pop_back();
      if (path.empty()) {
        root = std::move(done);
        return true;
      }
      path.back().node.children.push_back(done.page);
    }
  }

  /// Opens a node, scans it and reads the tree below it.
  bool read(const SObj& object) {
    if (nodesRead.count(object) != 0) return true;
    Node node(object);
    return open(node) && readBelow(node);
  }

 private:
  struct Level {
    Node node;
    std::size_t next;
  };

  bool open(Node& node) {
    std::unique_ptr<CSourFile> memory;
    main.clear();
    CSourFile* const body = CObj::ParseObj(main, memory, node.id);
    return body && node.scan(*body);
  }

  bool descend(const SObj& kid) {
    if (main.isPage(kid) || !nodesRead.insert(kid).second) {
      const auto known = pages.find(kid);
      path.back().node.children.push_back(known == pages.end() ? SObj() : known->second);
      return true;
    }
    Node node(kid);
    if (!open(node)) return false;
    path.push_back(Level{std::move(node), 0});
    return true;
  }

  CSourFile& main;
  std::map<SObj, SObj>& pages;
  std::vector<Level> path;
  std::set<SObj> nodesRead;
};

}  // namespace TESSEL
