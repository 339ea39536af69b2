#include "TesselPage/Finder/tessel_linkage.h"

#include <set>

#include "TesselPage/Finder/pdf_rules.h"
#include "TesselPage/Finder/tessel_finderexception.h"
#include "TesselPage/Finder/tessel_objecttext.h"
#include "TesselPage/Finder/tessel_searchbudget.h"
#include "TesselPage/Finder/tessel_valueutility.h"
#include "TesselPage/Structure/tessel_sourfile.h"

namespace TESSEL {

namespace {

/// @return whether the text holds a reference
bool firstReference(const std::string& text, SObj& object) {
  yard::OneTokenizer<PDF_RULES::MatchIndirectObject> found;
  found.Tokenize(text.data(), text.data() + text.size());
  if (found.empty()) return false;
  object = referenceFromText(found.front().first, found.front().second);
  return true;
}

/// Leaves a stream's dictionary without its data.
void cutStreamData(std::string& text) {
  constexpr std::ptrdiff_t dictionaryEnd = 2;  // ">>"
  yard::OneTokenizer<PDF_RULES::MatchStreamBegin> found;
  found.Tokenize(text.data(), text.data() + text.size());
  if (!found.empty())
    text.resize(static_cast<std::size_t>(found.front().first + dictionaryEnd - text.data()));
}

}  // namespace

std::string Linkage::link(const char* begin, const char* end) { return link(std::string(begin, end)); }

std::string Linkage::link(const std::string& text) {
  std::set<SObj> followed;
  std::string reached = text;
  for (SObj next; utility::getType(reached) == ePDFIndirect && firstReference(reached, next);
       reached = textOf(next, reached))
    if (!followed.insert(next).second) break;
  return utility::getValue(reached.data(), reached.data() + reached.size(), type);
}

std::string Linkage::linkImpl(const std::string& text) {
  SObj object;
  return firstReference(text, object) ? textOf(object, text) : text;
}

std::string Linkage::textOf(const SObj& object, const std::string& text) {
  std::string loaded;
  if (!loadObjectText(*source, object, loaded))
    throw BaseException("TESSEL_LocalObjErr", text, TESSEL_THROW_PLACE);
  if (searchBudget) searchBudget->chargeLoad(loaded.size());
  if (type != ePDFStream) cutStreamData(loaded);
  return loaded;
}

}  // namespace TESSEL
