#include "TesselHost/host_inventory.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "TesselHost/host_annotations.h"
#include "TesselHost/host_dictionary.h"
#include "TesselHost/host_extras.h"
#include "TesselHost/host_sourceobjects.h"
#include "TesselHost/host_text.h"

namespace TesselHost {

namespace {

std::string withoutSolidus(std::string_view name) {
  return std::string(name.substr(!name.empty() && name[0] == '/' ? 1 : 0));
}

/// Objects that a walk over a tree has been at.
class Visited {
 public:
  /// Whether the value is no reference, or one that is met for the first time.
  bool isNew(std::string_view value) {
    const auto object = referenceIn(value);
    return !object || seen.insert(*object).second;
  }

 private:
  std::set<Identity> seen;
};

void countAnnotations(const SourceObjects& objects, int pages, std::map<std::string, int>& counts) {
  for (int page = 1; page <= pages; ++page) {
    const std::string array = objects.entry(objects.page(page), "/Annots");
    for (const auto element : elementsOf(array)) {
      const std::string annotation = objects.resolved(element);
      if (const auto subtype = valueOfKey(annotation, "/Subtype"); !subtype.empty())
        ++counts[withoutSolidus(subtype)];
    }
  }
}

/// A node of the tree of fields, with what it has from those above it.
struct Field {
  std::string text;
  std::string type;
  std::string flags;
};

Field fieldUnder(const Field& parent, std::string text) {
  const auto inherited = [&text](std::string_view key, const std::string& otherwise) {
    const std::string_view own = valueOfKey(text, key);
    return own.empty() ? otherwise : std::string(own);
  };
  Field field{{}, inherited("/FT", parent.type), inherited("/Ff", parent.flags)};
  field.text = std::move(text);
  return field;
}

/// The kids that are fields themselves; others are widgets of the same field.
std::vector<Field> fieldsUnder(const SourceObjects& objects, const Field& parent, std::string_view key,
                               Visited& visited) {
  std::vector<Field> fields;
  const std::string array = objects.entry(parent.text, key);
  for (const auto element : elementsOf(array)) {
    if (!visited.isNew(element)) continue;
    std::string text = objects.resolved(element);
    if (!valueOfKey(text, "/T").empty()) fields.push_back(fieldUnder(parent, std::move(text)));
  }
  return fields;
}

void countFields(const SourceObjects& objects, std::map<std::string, int>& counts) {
  Visited visited;
  const Field form{objects.entry(objects.catalog(), "/AcroForm"), {}, {}};
  std::vector<Field> waiting = fieldsUnder(objects, form, "/Fields", visited);
  while (!waiting.empty()) {
    const Field field = std::move(waiting.back());
    waiting.pop_back();
    std::vector<Field> kids = fieldsUnder(objects, field, "/Kids", visited);
    if (kids.empty()) ++counts[fieldTypeName(fieldTypeOf(field.type, field.flags))];
    std::move(kids.begin(), kids.end(), std::back_inserter(waiting));
  }
}

std::set<Identity> referencesIn(const std::string& array) {
  std::set<Identity> objects;
  for (const auto element : elementsOf(array))
    if (const auto object = referenceIn(element)) objects.insert(*object);
  return objects;
}

void listLayers(const SourceObjects& objects, std::vector<Inventory::Layer>& layers) {
  const std::string properties = objects.entry(objects.catalog(), "/OCProperties");
  const std::string defaults = objects.entry(properties, "/D");
  const auto on = referencesIn(objects.entry(defaults, "/ON"));
  const auto off = referencesIn(objects.entry(defaults, "/OFF"));
  const bool startsOff = valueOfKey(defaults, "/BaseState") == "/OFF";
  const std::string groups = objects.entry(properties, "/OCGs");
  for (const auto group : elementsOf(groups)) {
    const Identity object = referenceIn(group).value_or(Identity{});
    const bool shown = on.count(object) != 0 || (!startsOff && off.count(object) == 0);
    layers.push_back({utf8OfString(objects.entry(objects.resolved(group), "/Name")), shown});
  }
}

/// The names of a name tree (ISO 32000-2, 7.9.6), in order.
void listNames(const SourceObjects& objects, std::string root, std::vector<std::string>& names) {
  Visited visited;
  std::vector<std::string> waiting{std::move(root)};
  while (!waiting.empty()) {
    const std::string node = std::move(waiting.back());
    waiting.pop_back();
    const std::string pairs = objects.entry(node, "/Names");
    const auto elements = elementsOf(pairs);
    for (std::size_t i = 0; i + 1 < elements.size(); i += 2) names.push_back(utf8OfString(elements[i]));
    const std::string array = objects.entry(node, "/Kids");
    const auto kids = elementsOf(array);
    for (auto kid = kids.rbegin(); kid != kids.rend(); ++kid)
      if (visited.isNew(*kid)) waiting.push_back(objects.resolved(*kid));
  }
}

void listDestinations(const SourceObjects& objects, std::vector<std::string>& names) {
  const std::string catalog = objects.catalog();
  const std::string old = objects.entry(catalog, "/Dests");
  for (const auto& [name, value] : entriesOf(old)) names.push_back(withoutSolidus(name));
  listNames(objects, objects.entry(objects.entry(catalog, "/Names"), "/Dests"), names);
}

}  // namespace

Inventory inventoryOf(const Source& source) {
  const SourceObjects objects(source.pages());
  Inventory inventory;
  countAnnotations(objects, source.pageCount(), inventory.annotations);
  countFields(objects, inventory.fields);
  listLayers(objects, inventory.layers);
  listDestinations(objects, inventory.destinations);
  return inventory;
}

}  // namespace TesselHost
