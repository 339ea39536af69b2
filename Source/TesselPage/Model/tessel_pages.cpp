#include "TesselPage/Model/tessel_pages.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <vector>

#include "TesselPage/Model/tessel_harvest.h"
#include "TesselPage/Model/tessel_keyscan.h"
#include "TesselPage/Structure/tessel_objflags.h"
#include "TesselPage/Structure/tessel_paperinfo.h"
#include "TesselPage/Syntax/tessel_keywords.h"

namespace TESSEL {

namespace {

constexpr int quarterTurn = 90;
constexpr std::size_t rectNumbers = 4;

/// Reads one node and hands on what it states: a page to its paper record, a /Pages node to the inherited
/// attributes.
class NodeScan {
 public:
  NodeScan(CPages& reader, CSourFile& in) : node(reader), source(in), main(in.mainSource()) {}

  Turn onToken(const std::string& token);
  void publish();

 private:
  struct FoundReference {
    SObj object;
    bool found = false;
  };

  Turn end() { return Turn::success; }
  Turn readType();
  Turn readParent();
  Turn readResources();
  Turn readFont() {
    readReference(font, ObjFlag::underFont);
    return Turn::goOn;
  }
  Turn readXObject() {
    readReference(xobject, ObjFlag::underXObject);
    return Turn::goOn;
  }
  Turn readMediaBox() { return readBox(PageBox::media); }
  Turn readCropBox() { return readBox(PageBox::crop); }
  Turn readBleedBox() { return readBox(PageBox::bleed); }
  Turn readTrimBox() { return readBox(PageBox::trim); }
  Turn readArtBox() { return readBox(PageBox::art); }
  Turn readRotate();
  Turn readKids() { return node.ReadKids(source, node.kids) ? Turn::goOn : Turn::failure; }
  Turn readCount() { return node.ReadIntObj(source, node.count) ? Turn::goOn : Turn::failure; }

  bool readReference(FoundReference& into, int flag);
  Turn readBox(PageBox which);
  void readDirectResources();
  bool readRotation(int& value);
  void publishPage();
  void publishPages();
  bool foundAny() const;

  CPages& node;
  CSourFile& source;
  CSourFile& main;
  std::array<RectTD, pageBoxCount> boxes{};
  std::array<bool, pageBoxCount> boxFound{};
  int rotation = 0;
  bool rotationFound = false;
  FoundReference resources;
  FoundReference font;
  FoundReference xobject;
};

Turn NodeScan::onToken(const std::string& token) {
  static constexpr KeyRow<NodeScan> rows[] = {
      {kwendobj, &NodeScan::end},
      {nmType, &NodeScan::readType},
      {nmParent, &NodeScan::readParent},
      {nmResources, &NodeScan::readResources},
      {nmFont, &NodeScan::readFont},
      {nmXObject, &NodeScan::readXObject},
      {nmMediaBox, &NodeScan::readMediaBox},
      {nmCropBox, &NodeScan::readCropBox},
      {nmBleedBox, &NodeScan::readBleedBox},
      {nmTrimBox, &NodeScan::readTrimBox},
      {nmArtBox, &NodeScan::readArtBox},
      {nmRotate, &NodeScan::readRotate},
      {nmKids, &NodeScan::readKids},
      {nmCount, &NodeScan::readCount},
  };
  return dispatch(*this, rows, token);
}

// A nested /Type in front of the node's own one is replaced by it; the first that says /Page or /Pages stays.
Turn NodeScan::readType() {
  if (node.type != nmPage && node.type != nmPages) source >> node.type;
  return Turn::goOn;
}

Turn NodeScan::readParent() {
  if (tryReference(source, node.parent)) main.parentMap.emplace(node.id, node.parent);
  return Turn::goOn;
}

// Only a reference counts as found, so a /Pages node publishes no direct dictionary.
Turn NodeScan::readResources() {
  if (readReference(resources, ObjFlag::underResources))
    node.ownResources = resources.object;
  else
    readDirectResources();
  return Turn::goOn;
}

void NodeScan::readDirectResources() {
  std::string token;
  source >> token;
  if (token != "<<") return;
  SObj ref;
  for (DictDepth depth(1); source.good();) {
    if (tryReference(source, ref)) {
      node.resourceReferences.push_back(ref);
      continue;
    }
    source >> token;
    if (depth.closes(token)) return;
    skipIfString(source, node.id, token, StringsSkipped::both);
  }
}

bool NodeScan::readReference(FoundReference& into, int flag) {
  SObj ref;
  if (!tryReference(source, ref)) return false;
  ref.objFlags = flag;
  into = {ref, true};
  return true;
}

Turn NodeScan::readBox(PageBox which) {
  std::vector<float> numbers;
  if (!node.ReadNumArrayObj(source, numbers) || numbers.size() < rectNumbers) return Turn::goOn;
  const auto [left, right] = std::minmax(numbers[0], numbers[2]);
  const auto [bottom, top] = std::minmax(numbers[1], numbers[3]);
  const auto index = static_cast<std::size_t>(which);
  boxes[index] = {left, bottom, right, top};
  boxFound[index] = true;
  return Turn::goOn;
}

Turn NodeScan::readRotate() {
  int value = 0;
  rotationFound = readRotation(value);
  rotation = value % quarterTurn == 0 ? value : 0;
  return Turn::goOn;
}

bool NodeScan::readRotation(int& value) {
  const std::streampos before = source.tellg();
  SObj ref;
  if (!tryReference(source, ref)) return node.ReadIntObj(source, value);
  const std::streampos behind = source.tellg();
  IdentityGuard own(node);
  node.id = ref;
  source.seekg(before);
  const bool read = node.ReadIntObj(source, value);
  source.seekg(behind);
  return read;
}

void NodeScan::publish() {
  if (node.type == nmPage) publishPage();
  if (node.type == nmPages && foundAny()) publishPages();
}

void NodeScan::publishPage() {
  const InheritedAttrs& inherited = main.inheritedAttrs;
  CPaperInfo paper;
  for (std::size_t i = 0; i < boxes.size(); ++i) paper.boxes[i] = boxFound[i] ? boxes[i] : inherited.boxes[i];
  paper.rotation = rotationFound ? rotation : inherited.rotation;
  main.switches.currentRotation = paper.rotation;
  main.paperInfoMap.emplace(node.id, paper);
}

// A /Font carries the XObject along, found or not; an /XObject without a /Font is not published.
void NodeScan::publishPages() {
  InheritedAttrs& inherited = main.inheritedAttrs;
  for (std::size_t i = 0; i < boxes.size(); ++i)
    if (boxFound[i]) inherited.boxes[i] = boxes[i];
  if (rotationFound) inherited.rotation = rotation;
  if (resources.found) inherited.resources = resources.object;
  if (!font.found) return;
  inherited.font = font.object;
  inherited.xobject = xobject.object;
}

bool NodeScan::foundAny() const {
  return std::find(boxFound.begin(), boxFound.end(), true) != boxFound.end() || rotationFound ||
         resources.found || font.found || xobject.found;
}

/// References up to the first thing that isn't one, which must be the "]".
bool readReferenceArray(CSourFile& source, std::vector<SObj>& list) {
  char byte = 0;
  readByte(source, byte);
  if (byte != '[') return false;
  SObj ref;
  while (tryReference(source, ref)) list.push_back(ref);
  byte = 0;
  readByte(source, byte);
  return byte == ']';
}

}  // namespace

bool CPages::Read(CSourFile& source) {
  NodeScan scan(*this, source);
  if (!scanKeys(source, scan)) return false;
  scan.publish();
  return true;
}

bool CPages::ReadKids(CSourFile& source, std::vector<SObj>& list) {
  SObj ref;
  if (!tryReference(source, ref)) return readReferenceArray(source, list);
  const std::streampos behind = source.tellg();
  std::unique_ptr<CSourFile> memory;
  CSourFile* array = openValue(source, memory, ref);
  if (!array || !readReferenceArray(*array, list) || !source.good()) return false;
  source.seekg(behind);
  return true;
}

void CPages::Init() {
  count = 0;
  sourceIndex = 0;
  writtenMask = 0;
  ancestors.clear();
  id.objNum = 0;
  kids.clear();
  type.clear();
}

}  // namespace TESSEL
