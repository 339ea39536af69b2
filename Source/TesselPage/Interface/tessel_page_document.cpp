// What a host may want of the source's catalog, in the numbering of the harvest.

#include "TesselPage/Interface/tessel_page_state.h"
#include "TesselPage/Interface/tessel_page_writer.h"
#include "TesselPage/Interface/tessel_pageinfo.h"
#include "TesselPage/Model/tessel_catalog.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/tessel_page.h"

namespace TESSEL {

std::string CTesselPage::getRootString(int objNo) const {
  CSourFile& source = *state->sourFile;
  const SObj& root = source.fileInfo.root;
  PageWriter writer(*state);
  writer.numberUnlessKnown(root, SObj(objNo, 0));
  writer.writeAs(objNo);
  CObj(root).LocalObj(writer, source, nullptr);
  return std::move(static_cast<std::string&>(writer));
}

int CTesselPage::getNames(const std::string** out) {
  CSourFile& source = *state->sourFile;
  const SObj& names = source.catalogObj->names.id;
  if (names.objNum < 1) {
    // A direct /Names yields nothing: the key is none of those that values are taken of.
    state->namesString = CPageInfo(getRootString(0)).getValueString("Names");
  } else {
    PageWriter writer(*state);
    if (!CObj(names).LocalObj(writer, source, nullptr)) return Result::objectNotWritten;
    state->namesString = withoutBrackets(writer.bodyText());
  }
  *out = &state->namesString;
  return Result::success;
}

std::vector<DestTD> CTesselPage::getDestVector() const {
  CSourFile& source = *state->sourFile;
  std::vector<DestTD> destinations;
  destinations.reserve(source.destObjMap.size());
  for (const auto& [key, info] : source.destObjMap) {
    DestTD record{info.page, 0, 0, info.style, info.left, info.top, info.right, info.bottom};
    if (!info.name.empty()) source.getNameDest(info.name, record);
    record.objNum = info.newObject.objNum;
    record.genNum = info.newObject.genNum;
    destinations.push_back(record);
  }
  return destinations;
}

void CTesselPage::getCatalogOCProperties(std::map<Identity, bool>& shown, std::vector<Identity>& order) {
  if (!state->sourFile) return;
  const COCProperties& layers = state->sourFile->catalogObj->optionalContent;
  const auto show = [&](const std::vector<SObj>& groups, bool on) {
    for (const SObj& group : groups)
      if (const Identity* newId = state->numbering.inOutput(group.identity())) shown.emplace(*newId, on);
  };
  show(layers.on, true);
  show(layers.off, false);
  for (const SObj& group : layers.order)
    if (const Identity* newId = state->numbering.inOutput(group.identity())) order.push_back(*newId);
}

std::string CTesselPage::getSourceObject(const Identity& object) const {
  CDestFile text;
  text.rawFlag = true;
  if (!CObj(SObj(object.first, object.second)).LocalObj(text, *state->sourFile, nullptr)) return {};
  return text.substr(0, text.rfind(kwendobj));
}

CTesselPage::Identity CTesselPage::getRootObject() const { return state->sourFile->fileInfo.root.identity(); }

CTesselPage::Identity CTesselPage::getPageObject(int page) const {
  const auto& pages = state->sourFile->pageList;
  const auto index = static_cast<unsigned>(page) - 1;
  return index < pages.size() ? pages[index].identity() : Identity{0, 0};
}

const std::string& CTesselPage::getHeaderVersion() const { return state->versionString; }

}  // namespace TESSEL
