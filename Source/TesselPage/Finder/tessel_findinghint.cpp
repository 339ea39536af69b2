#include "TesselPage/Finder/tessel_findinghint.h"

#include <utility>

#include "TesselPage/Finder/tessel_finderexception.h"

namespace TESSEL {

bool FindingHint::keyExist(const char* key) const { return properties.count(key) != 0; }

bool FindingHint::insertHintInfo(const char* key, EPDFType type) {
  return properties.emplace(key, type).second;
}

EPDFType FindingHint::getPropertyType(const char* key) const {
  const auto found = properties.find(key);
  if (found == properties.end()) throw BaseException("Not Found. input param is: ", key, TESSEL_THROW_PLACE);
  return found->second;
}

std::string FindingHint::getPropertyValue(const char* key) const {
  const auto found = values.lower_bound(key);
  return found != values.end() && found->first == key ? std::string(found->second.text) : std::string();
}

long FindingHint::getPropertyValueCount(const char* key) const {
  return static_cast<long>(values.count(key));
}

void FindingHint::insertPropertyValue(const char* key, const std::string& value) {
  auto text = std::make_shared<const std::string>(value);
  const std::string_view whole = *text;
  insertPropertyValue(key, std::move(text), whole);
}

void FindingHint::insertPropertyValue(const char* key, std::shared_ptr<const std::string> text,
                                      std::string_view value) {
  values.emplace(key, Value{std::move(text), value});
}

void FindingHint::outPutValue(std::ostream& out) const {
  for (const auto& [key, value] : values) out << key << std::endl << value.text << std::endl;
}

}  // namespace TESSEL
