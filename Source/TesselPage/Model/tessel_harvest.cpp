#include "TesselPage/Model/tessel_harvest.h"

#include <set>
#include <utility>

#include "TesselPage/Syntax/tessel_keywords.h"

namespace TESSEL {

bool endsObject(std::string_view token) { return token == kwendobj || token == kwstream; }

bool skipIfString(CSourFile& source, const SObj& owner, std::string_view token, StringsSkipped which) {
  const bool literal = token == "(" && which != StringsSkipped::none;
  const bool hexadecimal = token == "<" && which == StringsSkipped::both;
  if (literal || hexadecimal) skipString(source, owner, token.front());
  return literal || hexadecimal;
}

bool DictDepth::closes(std::string_view token) {
  if (token == "<<") ++level;
  return token == ">>" && --level == 0;
}

CSourFile* openValue(CSourFile& source, std::unique_ptr<CSourFile>& memory, SObj ref) {
  std::set<SObj> seen;
  CSourFile* at = &source;
  do {
    if (!seen.insert(ref).second) return nullptr;
    std::unique_ptr<CSourFile> next;
    at = CObj::ParseObj(*at, next, ref);
    if (next) memory = std::move(next);
  } while (at && tryReference(*at, ref));
  return at;
}

bool isMissing(CSourFile& main, const SObj& object) {
  return CFileBlock::GetObjState(main, object).entryOffset < 1;
}

bool harvestObject(CSourFile& main, CSourFile& source, const SObj& owner, std::list<SObj>& work) {
  forEachReference(source, owner, StringsSkipped::both, [&](const SObj& ref) {
    if (main.isPageObject(ref)) return;
    main.insertFileObject(ref);
    work.push_back(ref);
  });
  return true;
}

bool harvestAll(CObj& reader, CSourFile& main, std::list<SObj>& work) {
  return harvest(reader, main, work, MissingObjects::endTheLoop,
                 [&](CSourFile& body) { return harvestObject(main, body, reader.id, work); });
}

}  // namespace TESSEL
