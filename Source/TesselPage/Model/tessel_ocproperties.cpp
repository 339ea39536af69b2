#include "TesselPage/Model/tessel_ocproperties.h"

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "TesselPage/Model/tessel_harvest.h"
#include "TesselPage/Model/tessel_keyscan.h"
#include "TesselPage/Model/tessel_newobject.h"
#include "TesselPage/Syntax/tessel_keywords.h"

namespace TESSEL {

/// Reads the dictionary: a direct one ends with itself, one that is an object of its own at "endobj".
class OCScan {
 public:
  OCScan(COCProperties& reader, CSourFile& in) : properties(reader), source(in) {}

  Turn onReference(const SObj&) { return Turn::goOn; }
  Turn onToken(const std::string& token);

 private:
  Turn endObject() { return properties.indirect ? Turn::success : Turn::goOn; }
  Turn openDictionary();
  Turn closeDictionary();
  Turn skipStream();
  Turn readD();

  COCProperties& properties;
  CSourFile& source;
  int depth = 0;
};

Turn OCScan::onToken(const std::string& token) {
  static constexpr KeyRow<OCScan> rows[] = {
      {kwendobj, &OCScan::endObject},  {"<<", &OCScan::openDictionary}, {">>", &OCScan::closeDictionary},
      {kwstream, &OCScan::skipStream}, {nmD, &OCScan::readD},
  };
  return dispatch(*this, rows, token);
}

Turn OCScan::openDictionary() {
  ++depth;
  return Turn::goOn;
}

Turn OCScan::closeDictionary() { return --depth == 0 && !properties.indirect ? Turn::success : Turn::goOn; }

Turn OCScan::skipStream() {
  source.FindStr(kwendstream);
  return Turn::goOn;
}

// A "/D" that can't be read leaves the scan within it, so its open dictionaries count on here.
Turn OCScan::readD() {
  int left = 0;
  if (!properties.readConfiguration(source, left)) depth += left;
  return Turn::goOn;
}

namespace {

constexpr int configurationDepth = 1;

/// Reads "/D". It knows no nesting but its own depth, and for an object of its own not even that.
class ConfigurationScan {
 public:
  ConfigurationScan(COCProperties& reader, CSourFile& in) : properties(reader), source(in) {}

  Turn onReference(const SObj&) { return Turn::goOn; }
  Turn onToken(const std::string& token);
  int opened() const { return depth - configurationDepth; }

 private:
  Turn endObject();
  Turn openDictionary();
  Turn closeDictionary();
  Turn skipStream();
  Turn readOff() { return readStates(properties.off); }
  Turn readOn() { return readStates(properties.on); }
  Turn readStates(std::vector<SObj>& list);
  Turn readOrder();
  Turn skipValue();

  COCProperties& properties;
  CSourFile& source;
  int depth = configurationDepth;
};

Turn ConfigurationScan::onToken(const std::string& token) {
  static constexpr KeyRow<ConfigurationScan> rows[] = {
      {kwendobj, &ConfigurationScan::endObject},   {"<<", &ConfigurationScan::openDictionary},
      {">>", &ConfigurationScan::closeDictionary}, {kwstream, &ConfigurationScan::skipStream},
      {nmOFF, &ConfigurationScan::readOff},        {nmON, &ConfigurationScan::readOn},
      {nmOrder, &ConfigurationScan::readOrder},    {nmBaseState, &ConfigurationScan::skipValue},
  };
  return dispatch(*this, rows, token);
}

// The scan around this one ends at the same word.
Turn ConfigurationScan::endObject() {
  constexpr std::string_view word = kwendobj;
  source.seekg(-static_cast<std::streamoff>(word.size()), std::ios::cur);
  return Turn::success;
}

Turn ConfigurationScan::openDictionary() {
  ++depth;
  return Turn::goOn;
}

Turn ConfigurationScan::closeDictionary() {
  return --depth <= configurationDepth && !properties.indirect ? Turn::success : Turn::goOn;
}

Turn ConfigurationScan::skipStream() {
  source.FindStr(kwendstream);
  return Turn::goOn;
}

Turn ConfigurationScan::readStates(std::vector<SObj>& list) {
  list.clear();
  return properties.ReadArray(source, list) ? Turn::goOn : Turn::failure;
}

Turn ConfigurationScan::skipValue() {
  std::string value;
  source >> value;
  return Turn::goOn;
}

/// What an array inside an array means: nothing, or that this isn't a plain list.
enum class InnerArrays { passedOver, refused };

/// References up to the first "]", each once. Other tokens are passed over.
bool readList(CSourFile& source, std::vector<SObj>& list, InnerArrays inner) {
  char byte = 0;
  readByte(source, byte);
  if (byte != '[') return false;
  std::set<SObj> known(list.begin(), list.end());
  std::string token;
  SObj ref;
  while (source.good()) {
    if (tryReference(source, ref)) {
      if (known.insert(ref).second) list.push_back(ref);
      continue;
    }
    source >> token;
    if (token == "]") return true;
    if (token == "[" && inner == InnerArrays::refused) return false;
  }
  return false;
}

/// Steps behind the ")" of a title whose "(" was read.
bool skipTitle(CSourFile& source) {
  std::string token;
  for (int depth = 1; depth > 0;) {
    source >> token;
    if (!source.good()) return false;
    if (token == "(") ++depth;
    if (token == ")") --depth;
  }
  return true;
}

/// An array with groups in it, made flat. A group holds references and a title, and nothing else.
bool readGroups(CSourFile& source, std::vector<SObj>& list) {
  std::string token;
  SObj ref;
  source >> token;
  if (token != "[") return false;
  for (bool inGroup = false; source.good();) {
    if (tryReference(source, ref)) {
      list.push_back(ref);
      continue;
    }
    source >> token;
    if (token == "]" && !inGroup) return true;
    if (inGroup && token != "]" && !(token == "(" && skipTitle(source))) return false;
    if (token == "[") inGroup = true;
    if (token == "]") inGroup = false;
  }
  return false;
}

Turn ConfigurationScan::readOrder() {
  std::vector<SObj>& order = properties.order;
  order.clear();
  SObj ref;
  if (tryReference(source, ref)) {
    order.push_back(ref);
    return Turn::goOn;
  }
  const std::streampos start = source.tellg();
  if (readList(source, order, InnerArrays::refused)) return Turn::goOn;
  order.clear();
  source.clear();
  source.seekg(start);
  return readGroups(source, order) ? Turn::goOn : Turn::failure;
}

void writeGroups(CDestFile& dest, const std::vector<SObj>& groups) {
  for (const SObj& group : groups) {
    if (const SObj* travelled = dest.findNewObj(group)) {
      dest += " ";
      dest << travelled->objNum;
      dest += " ";
      dest << travelled->genNum;
      dest += " R";
    } else {
      dest += " null ";
    }
  }
}

}  // namespace

bool COCProperties::Read(CSourFile& source) {
  OCScan scan(*this, source);
  scanKeys(source, scan);
  return source.good();
}

bool COCProperties::ReadD(CSourFile& source) {
  int left = 0;
  return readConfiguration(source, left);
}

bool COCProperties::readConfiguration(CSourFile& source, int& left) {
  ConfigurationScan scan(*this, source);
  const bool read = scanKeys(source, scan);
  left = read ? 0 : scan.opened();
  return read;
}

bool COCProperties::ReadArray(CSourFile& source, std::vector<SObj>& list) {
  SObj ref;
  if (!tryReference(source, ref)) return readList(source, list, InnerArrays::passedOver);
  const std::streampos behind = source.tellg();
  std::unique_ptr<CSourFile> memory;
  CSourFile* array = openValue(source, memory, ref);
  const bool read = array && readList(*array, list, InnerArrays::passedOver);
  source.seekg(behind);
  return read && source.good();
}

// /Order and /OCGs aren't written: the host supplies what more it wants.
bool COCProperties::Write(CDestFile& dest, CSourFile&) {
  openNewObject(dest, id);
  dest += "/D<</OFF[";
  writeGroups(dest, off);
  dest += "]/ON[";
  writeGroups(dest, on);
  dest += "]>> ";
  closeNewObject(dest);
  return true;
}

}  // namespace TESSEL
