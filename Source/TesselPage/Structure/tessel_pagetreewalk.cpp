#include "TesselPage/Structure/tessel_pagetreewalk.h"

#include <algorithm>
#include <utility>

#include "TesselPage/Model/tessel_pages.h"
#include "TesselPage/Syntax/tessel_keywords.h"

namespace TESSEL {

bool PageTreeWalk::run(const SObj& root) {
  source.seekg(0, std::ios_base::end);
  const long long fileBytes = source.good() ? std::streamoff(source.tellg()) : 0;
  bytesLeft = limits.leastBytes + limits.bytesPerFileByte * fileBytes;
  if (!visit(root)) return false;
  while (!path.empty()) {
    Level& level = path.back();
    if (level.next == level.kids.size()) {
      leave();
      continue;
    }
    const SObj kid = level.kids[level.next++];
    if (ancestors.count(kid) == 0 && bytesLeft > 0 && !visit(kid)) return false;
  }
  return true;
}

bool PageTreeWalk::visit(const SObj& node) {
  CPages pages;
  pages.setIdentity(node);
  pages.fromStream(source);
  charge(node);
  if (pages.type == nmPages) {
    enter(node, std::move(pages.kids));
    return true;
  }
  if (pages.type != nmPage) return unknown == UnknownNode::skip;
  source.pageList.push_back(node);
  source.pageSet.insert(node);
  return true;
}

void PageTreeWalk::enter(const SObj& node, std::vector<SObj> kids) {
  kids.resize(std::min(kids.size(), limits.nodes - nodes));
  nodes += kids.size();
  ancestors.insert(node);
  path.push_back({node, std::move(kids)});
}

void PageTreeWalk::leave() {
  ancestors.erase(path.back().node);
  path.pop_back();
}

void PageTreeWalk::charge(const SObj& node) {
  const SObjState entry = source.fileInfo.GetObjState(node);
  if (entry.inObjectStream())
    bytesLeft -= source.objectStreams.lengthOf(entry);
  else if (source.good())
    bytesLeft -= std::max<long long>(source.tellg() - std::streamoff(entry.entryOffset), 0);
}

}  // namespace TESSEL
