#include "TesselHost/host_pagetree.h"

#include <fmt/format.h>

#include <iterator>

namespace TesselHost {

namespace {

constexpr std::size_t kidsPerNode = 64;

}  // namespace

PageTree::Node& PageTree::nodeWithRoom(std::size_t level) {
  if (level == levels.size()) levels.emplace_back();
  if (levels[level].kids.size() == kidsPerNode) close(level);
  if (levels[level].number == 0) levels[level].number = writer.reserve();
  return levels[level];
}

/// Writes the level's open node, which becomes a kid one level up. As deep as the tree is high.
void PageTree::close(std::size_t level) {
  Node& parent = nodeWithRoom(level + 1);
  Node& node = levels[level];
  write(node, parent.number);
  parent.kids.push_back(node.number);
  parent.pages += node.pages;
  node = Node{};
}

void PageTree::write(const Node& node, int parent) {
  std::string body = "<</Type/Pages";
  if (parent != 0) body += "/Parent " + referenceTo(parent);
  fmt::format_to(std::back_inserter(body), "/Count {}/Kids[", node.pages);
  for (const int kid : node.kids) fmt::format_to(std::back_inserter(body), "{} 0 R ", kid);
  body.back() = ']';
  writer.writeBody({node.number, 0}, body += ">>");
}

int PageTree::parentOfNext() { return nodeWithRoom(0).number; }

void PageTree::add(int pageNumber) {
  Node& node = nodeWithRoom(0);
  node.kids.push_back(pageNumber);
  ++node.pages;
}

int PageTree::finish() {
  for (std::size_t level = 0; level + 1 < levels.size(); ++level) close(level);
  write(levels.back(), 0);
  return levels.back().number;
}

}  // namespace TesselHost
