#include "TesselHost/host_layers.h"

#include <fmt/format.h>

#include <array>
#include <map>
#include <string_view>

#include "TesselHost/host_dictionary.h"

namespace TesselHost {

namespace {

using NewIds = std::map<Identity, Identity>;

std::string inBrackets(std::string_view key, const std::string& elements) {
  return elements.empty() ? std::string() : fmt::format("{}[{}]", key, elements);
}

std::string spacedReference(const Identity& object) {
  return fmt::format(" {} {} R", object.first, object.second);
}

/// One source's properties, with references to what has reached the output.
class SourceLayers {
 public:
  SourceLayers(const SourceObjects& someObjects, const NewIds& someIds) : objects(someObjects), ids(someIds) {
    properties = objects.entry(objects.catalog(), "/OCProperties");
    defaults = objects.entry(properties, "/D");
  }

  std::vector<Identity> groups() const {
    std::vector<Identity> found;
    for (const std::string& group : elements(properties, "/OCGs"))
      if (const Identity* id = newId(group)) found.push_back(*id);
    return found;
  }
  bool startsOff() const { return valueOfKey(defaults, "/BaseState") == "/OFF"; }
  /// Adds what the lists of the default configuration say, wherever they stand.
  void addStates(std::map<Identity, bool>& shown) const {
    for (const std::string& group : elements(defaults, "/ON"))
      if (const Identity* id = newId(group)) shown.emplace(*id, true);
    for (const std::string& group : elements(defaults, "/OFF"))
      if (const Identity* id = newId(group)) shown.emplace(*id, false);
  }
  /// The elements of an array of the default configuration.
  /// @param missing  what stands for a reference that stayed behind
  std::string translated(std::string_view key, const std::string& missing = {}) const {
    constexpr int arraysWithin = 2;
    return translatedElements(objects.entry(defaults, key), missing, arraysWithin);
  }
  std::string naming() const {
    constexpr std::array<std::string_view, 3> keys = {"/Name", "/Creator", "/Intent"};
    std::string entries;
    for (const auto key : keys)
      if (const std::string value = objects.entry(defaults, key); !value.empty())
        entries += std::string(key) + " " + value;
    return entries;
  }

 private:
  std::vector<std::string> elements(std::string_view dictionary, std::string_view key) const {
    const std::string array = objects.entry(dictionary, key);
    std::vector<std::string> values;
    for (const auto element : elementsOf(array)) values.emplace_back(element);
    return values;
  }
  /// Arrays that are objects of their own have stayed behind, and are put where the reference was.
  std::string translatedElements(std::string_view array, const std::string& missing, int depth) const {
    if (array.size() < 2 || array.front() != '[' || array.back() != ']') return {};
    return withReferences(array.substr(1, array.size() - 2), [&](const Identity& old) {
      if (const auto found = ids.find(old); found != ids.end()) return spacedReference(found->second);
      const std::string inner = depth > 0 && inlined++ < mostInlined
                                    ? translatedElements(objects.valueOf(old), missing, depth - 1)
                                    : "";
      return inner.empty() ? missing : "[" + inner + "]";
    });
  }
  const Identity* newId(std::string_view value) const {
    const auto old = referenceIn(value);
    const auto found = old ? ids.find(*old) : ids.end();
    return found == ids.end() ? nullptr : &found->second;
  }

  // Far more than any document has; an enemy's arrays don't multiply.
  static constexpr int mostInlined = 64;

  const SourceObjects& objects;
  const NewIds& ids;        ///< the caller's
  mutable int inlined = 0;  ///< arrays put in the place of references
  std::string properties;
  std::string defaults;
};

}  // namespace

void Layers::add(TESSEL::CTesselPage& reader) {
  const SourceObjects objects(reader);
  if (valueOfKey(objects.catalog(), "/OCProperties").empty()) return;
  const auto pairs = reader.getOld2NewObjectVector();
  const NewIds ids(pairs.begin(), pairs.end());
  const SourceLayers source(objects, ids);
  std::map<Identity, bool> shown;
  std::vector<Identity> flatOrder;
  reader.getCatalogOCProperties(shown, flatOrder);
  // The library looks at a direct configuration only.
  source.addStates(shown);
  const std::vector<Identity> found = source.groups();
  if (found.empty()) return;
  if (groups.empty()) naming = source.naming();
  for (const Identity& group : found) {
    groups += spacedReference(group);
    const auto state = shown.find(group);
    if (state == shown.end() ? source.startsOff() : !state->second) off += spacedReference(group);
  }
  const std::string ownOrder = source.translated("/Order");
  order += ownOrder;
  if (ownOrder.empty())
    for (const Identity& group : flatOrder) order += spacedReference(group);
  radioButtons += source.translated("/RBGroups");
  usage += source.translated("/AS", " null");
  locked += source.translated("/Locked");
}

std::string Layers::write(ObjectWriter& writer) const {
  if (groups.empty()) return {};
  const int number = writer.reserve();
  writer.writeBody({number, 0}, fmt::format("<<{}/D<<{}{}{}{}{}{}>>>>", inBrackets("/OCGs", groups), naming,
                                            inBrackets("/OFF", off), inBrackets("/Order", order),
                                            inBrackets("/RBGroups", radioButtons), inBrackets("/AS", usage),
                                            inBrackets("/Locked", locked)));
  return "/OCProperties " + referenceTo(number);
}

}  // namespace TesselHost
