#include "TesselPage/Model/tessel_catalog.h"

#include <memory>
#include <string>
#include <string_view>

#include "TesselPage/Model/tessel_dpart.h"
#include "TesselPage/Model/tessel_harvest.h"
#include "TesselPage/Model/tessel_keyscan.h"
#include "TesselPage/Model/tessel_newobject.h"
#include "TesselPage/Model/tessel_pages.h"
#include "TesselPage/Model/tessel_structtree.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_positionguard.h"
#include "TesselPage/Writer/tessel_destfile.h"

namespace TESSEL {

namespace {

/// /Version as a number: 0 to 7 for 1.0 to 1.7, 10 for 2.0. False for any other text; the third byte is not
/// looked at.
bool parseVersion(std::string_view text, int& version) {
  constexpr std::size_t versionBytes = 4;
  constexpr int version20 = 10;
  if (text.size() != versionBytes || text[0] != '/') return false;
  const char minor = text[3];
  if (text[1] == '1' && minor >= '0' && minor <= '7') {
    version = minor - '0';
    return true;
  }
  if (text[1] != '2' || minor != '0') return false;
  version = version20;
  return true;
}

/// The text of an object, without "endobj" and the white space in front of it.
std::string valueText(CSourFile& main, const SObj& object) {
  CDestFile text;
  CObj(object).LocalObj(text, main, nullptr);
  const std::size_t end = text.rfind(kwendobj);
  std::string value = text.substr(0, end);
  while (!value.empty() && getCharTokenType(value.back()) == static_cast<char>(TokenClass::whiteSpace))
    value.pop_back();
  return value;
}

class MarkInfoScan {
 public:
  MarkInfoScan(CMarkInfo& reader, CSourFile& in) : markInfo(reader), source(in) {}

  Turn onToken(const std::string& token) {
    if (token == kwendobj || depth.closes(token)) return Turn::success;
    if (token == "/Marked") {
      std::string value;
      source >> value;
      if (value == "true") markInfo.marked = true;
    }
    return Turn::goOn;
  }

 private:
  CMarkInfo& markInfo;
  CSourFile& source;
  DictDepth depth;
};

}  // namespace

bool CMarkInfo::Read(CSourFile& source) {
  SObj ref;
  if (!tryReference(source, ref)) {
    MarkInfoScan scan(*this, source);
    return scanKeys(source, scan);
  }
  PositionGuard back(source);
  std::unique_ptr<CSourFile> memory;
  CSourFile* const value = openValue(source, memory, ref);
  if (!value) return false;
  MarkInfoScan scan(*this, *value);
  return scanKeys(*value, scan);
}

namespace {

/// Reads the catalog. Not a plain key scan: values of unknown keys are skipped by counting brackets, and the
/// second pass takes /Names alone.
class CatalogScan {
 public:
  CatalogScan(CCatalog& reader, CSourFile& in) : catalog(reader), source(in), main(in.mainSource()) {}

  Turn onToken(const std::string& token);

 private:
  Turn finish();
  Turn startObject();
  Turn skipToken(const std::string& token);
  bool skipString();
  void stepOver(std::streampos value);
  bool isDictionary();

  Turn readPages() { return tryReference(source, catalog.pages) ? Turn::goOn : Turn::failure; }
  Turn readMetadata() { return tryReference(source, catalog.metadata) ? Turn::goOn : Turn::failure; }
  Turn readAcroForm() { return readPart(catalog.form, catalog.form.byReference); }
  Turn readOCProperties() { return readPart(catalog.optionalContent, catalog.optionalContent.indirect); }
  Turn readMarkInfo();
  Turn readVersion();
  Turn readNames();
  Turn readDPartRoot();
  Turn readStructTreeRoot();
  template <class Part>
  Turn readPart(Part& part, bool& byReference);

  CCatalog& catalog;
  CSourFile& source;
  CSourFile& main;
  bool namesSeen = false;
  bool skipping = false;  ///< within the value of an unknown key
  int dictionaries = 0;   ///< open while skipping
  int arrays = 0;
};

Turn CatalogScan::onToken(const std::string& token) {
  static constexpr KeyRow<CatalogScan> rows[] = {
      {nmPages, &CatalogScan::readPages},
      {nmMetadata, &CatalogScan::readMetadata},
      {nmAcroForm, &CatalogScan::readAcroForm},
      {nmMarkInfo, &CatalogScan::readMarkInfo},
      {nmVersion, &CatalogScan::readVersion},
      {nmNames, &CatalogScan::readNames},
      {nmOCProperties, &CatalogScan::readOCProperties},
      {nmDPartRoot, &CatalogScan::readDPartRoot},
      {nmStructTreeRoot, &CatalogScan::readStructTreeRoot},
  };
  if (token == kwendobj) return finish();
  if (token == kwobj) return startObject();
  if (catalog.secondPass && token != nmNames) return Turn::goOn;
  if (skipping) return skipToken(token);
  Turn turn = Turn::goOn;
  // Behind /Names, unknown keys and their values are taken token by token.
  if (!dispatch(*this, rows, token, turn)) skipping = !namesSeen;
  return turn;
}

Turn CatalogScan::finish() {
  catalog.secondPass = namesSeen;
  return Turn::success;
}

Turn CatalogScan::startObject() {
  std::string dropped;
  source >> dropped;
  skipping = false;
  dictionaries = 0;
  arrays = 0;
  return Turn::goOn;
}

Turn CatalogScan::skipToken(const std::string& token) {
  if (token == "<<") ++dictionaries;
  if (token == ">>" && --dictionaries < 0) return Turn::failure;
  if (token == "[") ++arrays;
  if (token == "]" && --arrays < 0) return Turn::failure;
  if (token == "(" && !skipString()) return Turn::failure;
  skipping = dictionaries != 0 || arrays != 0;
  return Turn::goOn;
}

bool CatalogScan::skipString() {
  std::string token;
  for (int depth = 1; depth > 0;) {
    source >> token;
    if (token.empty()) return false;
    if (token == "(") ++depth;
    if (token == ")") --depth;
  }
  return true;
}

void CatalogScan::stepOver(std::streampos value) {
  main.clear();
  source.clear();
  source.seekg(value);
  skipping = true;
}

bool CatalogScan::isDictionary() {
  PositionGuard back(source, PositionGuard::State::clear);
  std::string token;
  source >> token;
  return token == "<<";
}

// A damaged part doesn't stop the catalog: a direct one is stepped over as a whole.
template <class Part>
Turn CatalogScan::readPart(Part& part, bool& byReference) {
  SObj ref;
  byReference = tryReference(source, ref);
  const std::streampos value = source.tellg();
  if (byReference) {
    part.id = ref;
    part.fromStream(main);
    main.clear();
    source.clear();
    source.seekg(value);
  } else if (!isDictionary() || !part.Read(source) || !source.good() || !main.good()) {
    stepOver(value);
  }
  return Turn::goOn;
}

Turn CatalogScan::readMarkInfo() {
  catalog.markInfo.fromStream(source);
  return source.good() ? Turn::goOn : Turn::failure;
}

Turn CatalogScan::readVersion() {
  std::string value;
  SObj ref;
  if (tryReference(source, ref)) {
    PositionGuard back(source, PositionGuard::State::clear);
    value = valueText(main, ref);
  } else {
    source >> value;
  }
  return parseVersion(value, catalog.version) ? Turn::goOn : Turn::failure;
}

Turn CatalogScan::readDPartRoot() {
  noteDocumentParts(source);
  skipping = true;
  return Turn::goOn;
}

Turn CatalogScan::readStructTreeRoot() {
  noteStructTree(source);
  skipping = true;
  return Turn::goOn;
}

Turn CatalogScan::readNames() {
  namesSeen = true;
  if (!catalog.secondPass) return Turn::goOn;
  if (catalog.names.id.objNum != 0) return Turn::success;
  SObj ref;
  const bool byReference = tryReference(source, ref);
  const std::streampos value = source.tellg();
  if (byReference) {
    catalog.names.id = ref;
    catalog.names.fromStream(main);
  } else {
    catalog.names.Read(source);
  }
  finish();
  if (!source.good() || !main.good()) return Turn::failure;
  source.seekg(value);
  return Turn::success;
}

}  // namespace

bool CCatalog::Read(CSourFile& source) {
  CatalogScan scan(*this, source);
  return scanKeys(source, scan);
}

bool CCatalog::Write(CDestFile& dest, CSourFile&) {
  openNewObject(dest, dest.fileInfo.root);
  dest.append(nmType).append(nmCatalog).append(nmPages).append(kw_);
  writeNumbers(dest, dest.rootPages().id);
  dest.append("R ");
  const std::pair<const char*, SObj> parts[] = {
      {nmAcroForm, form.id}, {nmOCProperties, optionalContent.id}, {nmNames, names.id}};
  for (const auto& [key, object] : parts) {
    if (object.objNum < 1) continue;
    dest.append(key).append(kw_);
    writeNumbers(dest, object);
    dest.append("R ");
  }
  closeNewObject(dest);
  return true;
}

void CCatalog::Init() {
  form.Init();
  names.id = {};
  pages = {};
}

}  // namespace TESSEL
