// The page's annotations and the form, as texts in the numbering of the harvest.

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "TesselPage/Interface/tessel_page_state.h"
#include "TesselPage/Interface/tessel_page_writer.h"
#include "TesselPage/Interface/tessel_pageinfo.h"
#include "TesselPage/Model/tessel_annot.h"
#include "TesselPage/Model/tessel_catalog.h"
#include "TesselPage/Model/tessel_harvest.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/tessel_page.h"

namespace TESSEL {

namespace {

constexpr std::size_t rectNumbers = 4;

/// Places the annotations that are written directly in a page: their rectangles and their array destinations.
class DirectAnnots {
 public:
  DirectAnnots(const std::string& array, CSourFile& main, const SObj& page)
      : text(array), source(array), document(main), pageObj(page) {}

  /// False when a /Rect can't be read.
  bool place(std::string& placed);

 private:
  void count(const std::string& token);
  bool placeRect();
  void replaceDest();
  std::size_t here() {
    const std::streamoff place = source.tellg();
    return place < 0 ? text.size() : static_cast<std::size_t>(place);
  }
  void copyToHere() { rebuilt.append(text, copied, here() - copied); }

  const std::string& text;
  CSourFile source;
  CSourFile& document;
  SObj pageObj;
  std::string rebuilt;
  std::size_t copied = 0;
  int arrays = 0;
  int dictionaries = 0;
  int index = 0;  ///< annotations that are finished
};

bool DirectAnnots::place(std::string& placed) {
  std::string token;
  do {
    source >> token;
    count(token);
    if (token == nmRect && !placeRect()) return false;
    if (token == nmDest) replaceDest();
    skipIfString(source, pageObj, token, StringsSkipped::both);
  } while (arrays > 0 && source.good());
  rebuilt.append(text, copied);
  placed = std::move(rebuilt);
  return true;
}

void DirectAnnots::count(const std::string& token) {
  if (token == "[") ++arrays;
  if (token == "]") --arrays;
  if (token == "<<") ++dictionaries;
  if (token == ">>" && --dictionaries == 0) ++index;
}

bool DirectAnnots::placeRect() {
  copyToHere();
  std::vector<float> n;
  CObj reader;
  if (!reader.ReadNumArrayObj(source, n) || n.size() < rectNumbers) return false;
  const RectTD upright{std::min(n[0], n[2]), std::min(n[1], n[3]), std::max(n[0], n[2]),
                       std::max(n[1], n[3])};
  const RectTD rect = CAnnot::TransRect(upright, document.switches.pageMatrix, true);
  constexpr std::size_t longestRect = 256;
  char numbers[longestRect];
  const int size = std::snprintf(numbers, sizeof numbers, "[ %f %f %f %f", static_cast<double>(rect.left),
                                 static_cast<double>(rect.bottom), static_cast<double>(rect.right),
                                 static_cast<double>(rect.top));
  rebuilt.append(numbers, static_cast<std::size_t>(size));
  copied = here() - 1;
  return true;
}

// A destination that is no array stays as it is.
void DirectAnnots::replaceDest() {
  const std::size_t key = here();
  std::string token;
  source >> token;
  const auto entry = document.destObjMap.find({pageObj, index});
  const std::size_t end = text.find(']', here());
  if (token != "[" || entry == document.destObjMap.end() || end == std::string::npos) {
    source.clear();
    source.seekg(static_cast<std::streamoff>(key));
    return;
  }
  rebuilt.append(text, copied, key - copied);
  rebuilt += ' ' + std::to_string(entry->second.newObject.objNum) + " 0 R ";
  copied = end + 1;
  source.seekg(static_cast<std::streamoff>(copied));
}

/// Makes the outer brackets of an array blanks.
void openArray(std::string& text) {
  const std::size_t open = text.find('[');
  if (open != std::string::npos) text[open] = ' ';
  const std::size_t close = text.rfind(']');
  if (close != std::string::npos) text[close] = ' ';
}

/// The annotations of the page's array objects, placed by their writer.
bool writeAnnots(PageState& state, std::string& text) {
  CSourFile& source = *state.sourFile;
  PageWriter writer(state);
  writer.numberDestinations(source);
  for (const SObj& array : source.pageAnnotObjs) {
    CAnnot copier;
    copier.setCurPageObj(state.curPageObj.first, state.curPageObj.second);
    copier.setIdentity(array);
    writer.clear();
    writer.currentObject = array;
    if (!copier.LocalObj(writer, source, nullptr)) return false;
    std::string body = writer.bodyText();
    openArray(body);
    text += body;
  }
  return true;
}

/// The annotations of the array that is written in the page.
bool placeDirectAnnots(PageState& state, const std::string& pageText, std::string& text) {
  CSourFile& source = *state.sourFile;
  PageWriter(state).numberDestinations(source);
  const std::string array = CPageInfo(pageText).getValueString("Annots");
  if (array.empty()) return true;
  const auto page = static_cast<std::size_t>(state.curPageNo) - 1;
  if (!DirectAnnots(array, source, source.pageList.at(page)).place(text)) return false;
  openArray(text);
  return true;
}

}  // namespace

int CTesselPage::setPageCm(const PgCmTD& cm) {
  state->sourFile->switches.pageMatrix = cm;
  return Result::success;
}

void CTesselPage::setAnnotsEnable(TESSEL_AnnotsEnableE enable) {
  state->sourFile->switches.annotsEnable = enable;
}

void CTesselPage::setAnnotsCustomSubtype(const std::vector<std::string>& subtypes) {
  std::vector<std::string>& custom = state->sourFile->switches.customSubtypes;
  if (&custom != &subtypes) custom = subtypes;
}

void CTesselPage::setAcroFormsEnable(TESSEL_AcroFormsEnableE enable) {
  state->sourFile->switches.formsEnable = enable;
}

int CTesselPage::getPageAnnots(const std::string** out) {
  std::string& text = state->annotsString;
  text.clear();
  const bool written = state->sourFile->pageAnnotObjs.empty()
                           ? placeDirectAnnots(*state, getPageRootString(0), text)
                           : writeAnnots(*state, text);
  if (!written) return Result::success;
  if (text.find_first_not_of(" \r\n") == std::string::npos) text.clear();
  *out = &text;
  return Result::success;
}

int CTesselPage::getAcroFormFields(const std::string** out, int objNo) {
  CSourFile& source = *state->sourFile;
  std::string& text = state->acroFormString;
  text.clear();
  if (source.switches.formsEnable == AcroFormsEnableNone) return Result::success;
  const SObj& form = source.catalogObj->form.id;
  if (form.objNum < 1) {
    text = CPageInfo(getRootString(objNo)).getValueString("AcroForm");
  } else {
    PageWriter writer(*state);
    writer.writeAs(objNo);
    if (!CObj(form).LocalObj(writer, source, nullptr)) return Result::objectNotWritten;
    text = writer.bodyText();
  }
  text = withoutBrackets(text);
  *out = &text;
  return Result::success;
}

}  // namespace TESSEL
