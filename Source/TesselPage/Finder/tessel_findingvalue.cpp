#include "TesselPage/Finder/tessel_findingvalue.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "TesselPage/Finder/pdf_rules.h"
#include "TesselPage/Finder/tessel_linkage.h"
#include "TesselPage/Finder/tessel_objecttext.h"
#include "TesselPage/Finder/tessel_valuescan.h"
#include "TesselPage/Finder/tessel_valueutility.h"
#include "TesselPage/Model/tessel_catalog.h"
#include "TesselPage/Structure/tessel_sourfile.h"

namespace TESSEL {

namespace {

/// The type that values have as texts of their own: `utility::getType` of each value of a range, in time
/// linear in the range for values that begin one behind the other.
///
/// It differs from the type that a value was found as only when a stream begins inside the value, since the
/// text is then looked at up to that place.
class OwnTypes {
 public:
  OwnTypes(const char* rangeBegin, const char* rangeEnd)
      : begin(rangeBegin), streams(yard::Stream(rangeBegin, rangeEnd)) {}

  EPDFType of(const FirstValue& value) {
    if (!value.begin || !streams.from(value.begin) || streams.found().second > value.end) return value.type;
    constexpr int dictionaryEnd = 2;  // ">>"
    const char* const end = streams.found().first + dictionaryEnd;
    if (end != cutEnd) beforeStream.emplace(value.begin, end, begin);
    cutEnd = end;
    return beforeStream->at(value.begin).type;
  }

 private:
  const char* begin;
  LeftmostMatch<PDF_RULES::MatchStreamBegin> streams;
  const char* cutEnd = nullptr;
  std::optional<ValueScan> beforeStream;  ///< up to `cutEnd`
};

/// `trimParenthes` for values that lie in each other, without going through the closing ones again for each.
class ParenthesisTrimmer {
 public:
  std::string_view trimmed(std::string_view text) {
    const char* begin = text.data();
    const char* end = begin + text.size();
    while (begin != end && *begin == '(') ++begin;
    return {begin, static_cast<std::size_t>(std::max(begin, beforeClosings(begin, end)) - begin)};
  }

 private:
  const char* beforeClosings(const char* begin, const char* end) {
    if (end > runBegin && end <= runEnd) return runBegin;
    runEnd = end;
    while (end > begin && end[-1] == ')') --end;
    runBegin = end;
    return end;
  }

  const char* runBegin = nullptr;
  const char* runEnd = nullptr;
};

}  // namespace

/// The scan of the first dictionary of one text.
class FindingValue::Scan {
 public:
  Scan(FindingValue& owner, const std::string& text)
      : finder(owner),
        begin(text.data()),
        range(utility::getRangeOfDictionary(begin, begin + text.size())),
        values(range.first, range.second, begin),
        ownTypes(range.first, range.second),
        references(yard::Stream(range.first, range.second, begin)) {}

  void run() {
    yard::Search<PDF_RULES::MatchNameObject> names(yard::Stream(range.first, range.second, begin));
    for (yard::Token name; names.next(name);) {
      const std::string key(name.first, name.second);
      if (finder.hints.keyExist(key.c_str())) answer(key, name.second);
    }
  }

 private:
  void answer(const std::string& key, const char* behindKey) {
    FirstValue value = values.at(behindKey);
    if (value.type == ePDFStream) return answerDecoded(key, behindKey);
    const EPDFType wanted = finder.hints.getPropertyType(key.c_str());
    if (wanted == ePDFString && value.type == ePDFName) value = stringBehind(value);
    if (ownTypes.of(value) == wanted) return store(key, wanted, value.text());
    if (!references.from(behindKey) || references.found().first >= value.end) return;
    follow(key, wanted, value.text());
  }

  /// A key that stands as a value has the next key behind it: "/Type/Info/Title(x)" tells "x" of "/Info".
  /// @return the string right behind the name, or else the name
  FirstValue stringBehind(const FirstValue& name) {
    const FirstValue next = values.at(name.end);
    const bool adjacent =
        next.type == ePDFString && std::all_of(name.end, next.begin, PDF_RULES::isWhiteSpace);
    return adjacent ? next : name;
  }

  /// A stream's data begin in the dictionary: what stands behind the key is the object, and the value is
  /// looked at once it is decoded.
  void answerDecoded(const std::string& key, const char* behindKey) {
    finder.budget->chargeLoad(static_cast<std::size_t>(range.second - behindKey));
    const std::string data = utility::getValue(behindKey, range.second, ePDFStream);
    finder.budget->charge(data.size());
    const EPDFType wanted = finder.hints.getPropertyType(key.c_str());
    if (utility::getType(data) != wanted) return follow(key, wanted, data);
    finder.hints.insertPropertyValue(key.c_str(), wanted == ePDFString ? trimParenthes(data) : data);
  }

  void store(const std::string& key, EPDFType wanted, std::string_view text) {
    if (wanted == ePDFString) text = trimmer.trimmed(text);
    if (text.size() <= leastShared) return finder.hints.insertPropertyValue(key.c_str(), std::string(text));
    if (!shared) shared = std::make_shared<const std::string>(range.first, range.second);
    const auto offset = static_cast<std::size_t>(text.data() - range.first);
    finder.hints.insertPropertyValue(key.c_str(), shared,
                                     std::string_view(*shared).substr(offset, text.size()));
  }

  /// Walks the references of a value that has another type, or takes what they lead to.
  void follow(const std::string& key, EPDFType wanted, std::string_view value) {
    finder.budget->charge(value.size());
    const char* const end = value.data() + value.size();
    yard::Search<PDF_RULES::MatchIndirectObject> search(yard::Stream(value.data(), end));
    Linkage linkage(wanted, finder.source, finder.budget);
    for (yard::Token reference; search.next(reference);) {
      if (wanted == ePDFUnknown) {
        finder.references.push({referenceFromText(reference.first, reference.second), finder.path.size()});
      } else {
        const std::string result = linkage.link(reference.first, reference.second);
        finder.budget->charge(result.size());
        finder.hints.insertPropertyValue(key.c_str(), result);
      }
    }
  }

  static constexpr std::size_t leastShared = 64;  ///< longer values share their text

  FindingValue& finder;
  const char* begin;
  yard::Token range;
  ValueScan values;
  OwnTypes ownTypes;
  LeftmostMatch<PDF_RULES::MatchIndirectObject> references;
  ParenthesisTrimmer trimmer;
  std::shared_ptr<const std::string> shared;  ///< the range
};

FindingValue::FindingValue(FindingHint& hint, CSourFile* file) : source(file), hints(hint) {
  const SObj& catalog = file->catalogObj->identity();
  enterPath({catalog, 0});
  loadInto(catalog);
}

FindingValue::FindingValue(FindingHint& hint, CSourFile* file, const std::string& text)
    : source(file), hints(hint) {
  texts.push(text);
}

FindingValue::FindingValue(FindingHint& hint, CSourFile* file, int objNo, int genNo)
    : source(file), hints(hint) {
  references.push({SObj(objNo, genNo), 0});
}

void FindingValue::find(bool recursive) {
  do {
    if (recursive && references.empty() && texts.empty()) return;
    findParsedString();
    FindingReference();
  } while (recursive);
}

void FindingValue::findParsedString() {
  if (references.empty()) return;
  const Waiting reached = references.top();
  references.pop();
  if (enterPath(reached)) loadInto(reached.object);
}

void FindingValue::FindingReference() {
  if (texts.empty()) return;
  const std::string text = std::move(texts.top());
  texts.pop();
  Scan(*this, text).run();
}

/// Goes back on the path to where the object was found. @return false when the object lies on it
bool FindingValue::enterPath(const Waiting& reached) {
  for (; path.size() > reached.depth; path.pop_back()) onPath.erase(path.back());
  if (!onPath.insert(reached.object).second) return false;
  path.push_back(reached.object);
  return true;
}

void FindingValue::loadInto(const SObj& object) {
  std::string text;
  if (!loadObjectText(*source, object, text)) throw BaseException("TESSEL_LocalObjErr", TESSEL_THROW_PLACE);
  budget->chargeLoad(text.size());
  texts.push(std::move(text));
}

}  // namespace TESSEL
