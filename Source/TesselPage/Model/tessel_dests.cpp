// A node counts for a name when the name lies within its /Limits. Each node is read once and kept: with its
// names in the table of names and its kids visited as soon as one name lies within its limits, until then as
// a whole.

#include "TesselPage/Model/tessel_dests.h"

#include <utility>

#include "TesselPage/Model/tessel_catalog.h"
#include "TesselPage/Model/tessel_dest.h"
#include "TesselPage/Model/tessel_harvest.h"
#include "TesselPage/Model/tessel_keyscan.h"
#include "TesselPage/Model/tessel_objectend.h"
#include "TesselPage/Syntax/tessel_bytecursor.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_positionguard.h"

namespace TESSEL {

namespace {

/// Reads one node of the tree.
class NodeScan {
 public:
  /// How strings are read. In the root they are taken as they stand up to the first ")", and hexadecimal ones
  /// not at all; in other nodes they are decrypted and unescaped.
  enum class Strings { raw, decoded };

  NodeScan(CSourFile& in, const SObj& object, Strings how)
      : source(in), id(object), strings(how), end(in, object) {}

  bool atEnd() { return end.passed(); }
  Turn onReference(const SObj& ref);
  Turn onToken(const std::string& token);

  NameTreeNode node;

 private:
  enum class Within { none, kids, names, limits };

  static Within arrayOf(const std::string& token);
  Turn onBracket(bool opens);
  std::string readString(char open);
  void takeString(std::string text);
  void takeLimit(std::string text);

  CSourFile& source;
  SObj id;
  Strings strings;
  ObjectEnd end;
  Within within = Within::none;
  int depth = 0;  ///< of arrays
  std::string key;
  int limits = 0;  ///< strings of /Limits so far
};

NodeScan::Within NodeScan::arrayOf(const std::string& token) {
  if (token == nmKids) return Within::kids;
  if (token == nmNames) return Within::names;
  return token == nmLimits ? Within::limits : Within::none;
}

Turn NodeScan::onReference(const SObj& ref) {
  if (within == Within::kids) node.kids.push_back(ref);
  // In a direct array as the value stands a page.
  if (within == Within::names && depth == 1) node.names.emplace_back(key, ref);
  return Turn::goOn;
}

Turn NodeScan::onToken(const std::string& token) {
  if (endsObject(token) || token.empty()) return Turn::success;
  if (token == "[" || token == "]") return onBracket(token == "[");
  const bool literal = token == "(";
  if (literal || (token == "<" && strings == Strings::decoded)) {
    takeString(readString(token.front()));
  } else if (depth == 0 && arrayOf(token) != Within::none) {
    within = arrayOf(token);
  }
  return Turn::goOn;
}

Turn NodeScan::onBracket(bool opens) {
  depth += opens ? 1 : -1;
  if (!opens && (within != Within::names || depth == 0)) within = Within::none;
  return Turn::goOn;
}

std::string NodeScan::readString(char open) {
  if (strings == Strings::raw) {
    std::string text;
    std::getline(source, text, ')');
    return text;
  }
  CStringType string(id);
  string.hexadecimal = open == '<';
  string.Read(source);
  return std::move(string.value);
}

void NodeScan::takeString(std::string text) {
  if (within == Within::names && depth == 1)
    key = std::move(text);
  else if (within == Within::limits)
    takeLimit(std::move(text));
}

void NodeScan::takeLimit(std::string text) {
  if (++limits == 1)
    node.lower = std::move(text);
  else if (limits == 2)
    node.upper = std::move(text);
  if (limits != 2) return;
  node.limited = true;
  node.namesBeforeLimits = node.names.size();
  node.kidsBeforeLimits = node.kids.size();
}

}  // namespace

/// Enters what the node has for the name, and puts the rest aside.
void CDests::take(CSourFile& main, NameTreeNode& node, std::list<SObj>& work) {
  const bool all = node.covers(name);
  const auto namesEnd =
      node.names.begin() + static_cast<std::ptrdiff_t>(all ? node.names.size() : node.namesBeforeLimits);
  const auto kidsEnd =
      node.kids.begin() + static_cast<std::ptrdiff_t>(all ? node.kids.size() : node.kidsBeforeLimits);
  for (auto entry = node.names.begin(); entry != namesEnd; ++entry)
    main.destLookup.names.insert(std::move(*entry));
  work.insert(work.end(), node.kids.begin(), kidsEnd);
  node.names.erase(node.names.begin(), namesEnd);
  node.kids.erase(node.kids.begin(), kidsEnd);
  node.namesBeforeLimits = node.kidsBeforeLimits = 0;
}

void CDests::visitRoot(CSourFile& source, std::list<SObj>& work) {
  CSourFile& main = source.mainSource();
  main.destLookup.rootRead = true;
  main.destLookup.nodesRead.insert(id);
  NodeScan scan(source, id, NodeScan::Strings::raw);
  scanKeys(source, scan);
  take(main, scan.node, work);
  if (!scan.node.covers(name)) main.destLookup.outOfRange.push_back(std::move(scan.node));
}

void CDests::visitKnown(CSourFile& main, std::list<SObj>& work) {
  auto& nodes = main.destLookup.outOfRange;
  for (auto node = nodes.begin(); node != nodes.end();) {
    const bool covers = node->covers(name);
    if (covers) take(main, *node, work);
    node = covers ? nodes.erase(node) : std::next(node);
  }
}

bool CDests::Read(CSourFile& source) {
  CSourFile& main = search ? search->mainSource() : source.mainSource();
  DestLookup& lookup = main.destLookup;
  if (lookup.names.count(name) == 0) {
    std::list<SObj> work;
    visitKnown(main, work);
    if (!lookup.rootRead) visitRoot(source, work);
    ReadOthers(main, work);
  }
  return resolve(main);
}

bool CDests::ReadOthers(CSourFile& source, std::list<SObj>& work) {
  CSourFile& main = source.mainSource();
  return harvest(*this, main, work, MissingObjects::endTheLoop,
                 [&](CSourFile& body) { return ReadObjs(&main, body, work); });
}

bool CDests::ReadObjs(CSourFile* main, CSourFile& source, std::list<SObj>& work) {
  if (!main->destLookup.nodesRead.insert(id).second) return true;
  NodeScan scan(source, id, NodeScan::Strings::decoded);
  scanKeys(source, scan);
  take(*main, scan.node, work);
  if (!scan.node.covers(name)) main->destLookup.outOfRange.push_back(std::move(scan.node));
  return true;
}

bool CDests::resolve(CSourFile& main) {
  const auto found = main.destLookup.names.find(name);
  if (found == main.destLookup.names.end()) return false;
  destination = found->second;
  main.clear();
  CDest dest;
  dest.readReference(main, destination);
  result = {dest.page, 0, 0, dest.style, dest.left, dest.top, dest.right, dest.bottom};
  return main.good();
}

bool CSourFile::getNameDest(const std::string& name, DestTD& destination) {
  if (name.empty()) return false;
  CSourFile& main = mainSource();
  PositionGuard back(main, PositionGuard::State::clear);
  CDests search;
  search.name = name;
  search.id = main.catalogObj->names.dests;
  search.search = &main;
  main.clear();
  if (main.destLookup.rootRead)
    search.Read(main);
  else
    search.fromStream(main);
  destination = search.result;
  return true;
}

}  // namespace TESSEL
