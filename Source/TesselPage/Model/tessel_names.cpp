#include "TesselPage/Model/tessel_names.h"

#include <list>
#include <string>

#include "TesselPage/Model/tessel_harvest.h"
#include "TesselPage/Model/tessel_keyscan.h"
#include "TesselPage/Structure/tessel_objectposition.h"
#include "TesselPage/Syntax/tessel_keywords.h"

namespace TESSEL {

namespace {

/// Reads the name dictionary without a count of nesting: a direct one is read up to the "endobj" of the
/// catalog.
class NamesScan {
 public:
  NamesScan(CNames& reader, CSourFile& in) : names(reader), source(in), main(in.mainSource()) {
    const CObjectPosition position(main);
    if (position.getObjType(names.id) == static_cast<int>(EntryType::atOffset))
      end = position.getEndPosition(names.id);
  }

  bool atEnd() { return end != CObjectPosition::nowhere && source.tellg() >= end; }
  Turn onReference(const SObj& ref);
  Turn onToken(const std::string& token);

  std::list<SObj> work;

 private:
  bool isLeftAlone() const { return key == nmIDS || key == nmURLS || key == nmOutlines; }

  CNames& names;
  CSourFile& source;
  CSourFile& main;
  std::string key;
  long long end = CObjectPosition::nowhere;
};

Turn NamesScan::onReference(const SObj& ref) {
  if (key == nmDests) {
    names.dests = ref;
  } else if (!isLeftAlone() && !main.isPage(ref)) {
    main.enterPageObject(ref);
    main.documentObjs.insert(ref);
    work.push_back(ref);
  }
  return Turn::goOn;
}

Turn NamesScan::onToken(const std::string& token) {
  key = token;
  if (token == kwendobj) return Turn::success;
  if (token == kwstream) source.FindStr(kwendstream);
  return Turn::goOn;
}

}  // namespace

bool CNames::Read(CSourFile& source) {
  NamesScan scan(*this, source);
  scanKeys(source, scan);
  return ReadOthers(source.mainSource(), scan.work);
}

bool CNames::ReadOthers(CSourFile& source, std::list<SObj>& work) { return harvestAll(*this, source, work); }

bool CNames::ReadObjs(CSourFile* main, CSourFile& source, std::list<SObj>& work) {
  return harvestObject(*main, source, id, work);
}

void CNames::Init() { dests = {}; }

}  // namespace TESSEL
