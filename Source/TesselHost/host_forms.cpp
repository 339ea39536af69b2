#include "TesselHost/host_forms.h"

#include <fmt/format.h>

#include <algorithm>

#include "TesselHost/host_dictionary.h"
#include "TesselHost/host_text.h"

namespace TesselHost {

namespace {

std::string spacedReference(int number) { return " " + referenceTo(number); }

/// The dictionary with further entries at its end.
std::string withEntries(const std::string& dictionary, const std::string& entries) {
  const auto end = entries.empty() ? std::string::npos : dictionary.rfind(">>");
  return end == std::string::npos ? dictionary : dictionary.substr(0, end) + entries + dictionary.substr(end);
}

/// The dictionary with another value of a key that it has.
std::string withValue(const std::string& dictionary, std::string_view key, const std::string& value) {
  const std::string_view old = valueOfKey(dictionary, key);
  const auto start = static_cast<std::size_t>(old.data() - dictionary.data());
  return dictionary.substr(0, start) + value + dictionary.substr(start + old.size());
}

bool isStreamBody(std::string_view body) {
  constexpr std::size_t longestTail = 32;
  return body.substr(body.size() - std::min(body.size(), longestTail)).find("endstream") !=
         std::string_view::npos;
}

/// Whether the object is a field with kids; nodes of name trees have kids too.
bool hasFieldKids(const std::string& body) {
  return body.find("/Kids") != std::string::npos && !valueOfKey(body, "/Kids").empty() &&
         valueOfKey(body, "/Limits").empty();
}

/// A partial name must not hold the full stop that stands between names (ISO 32000-2, 12.7.4.2).
std::string asPartialName(std::string name) {
  std::replace(name.begin(), name.end(), '.', '_');
  return name;
}

}  // namespace

std::string FormFields::freeName(const std::string& wanted) {
  std::string name = wanted;
  for (int i = 2; !names.insert(name).second; ++i) name = fmt::format("{}-{}", wanted, i);
  return name;
}

std::string FormFields::write() {
  if (fields.empty()) return {};
  std::string body = "<</Fields[" + fields + "]";
  if (!resources.empty()) {
    body += "/DR<<";
    for (const auto& [category, entries] : resources) {
      body += category + "<<";
      for (const auto& [key, value] : entries) body.append(key).append(" ").append(value);
      body += ">>";
    }
    body += ">>";
  }
  if (!appearance.empty()) body += "/DA" + appearance;
  if (!quadding.empty()) body += "/Q " + quadding;
  if (needsAppearances) body += "/NeedAppearances true";
  if (!calculationOrder.empty()) body += "/CO[" + calculationOrder + "]";
  const int number = writer.reserve();
  writer.writeBody({number, 0}, body + ">>");
  return "/AcroForm " + referenceTo(number);
}

SourceFields::SourceFields(FormFields& aForm, const SourceObjects& someObjects, std::string aName)
    : form(aForm), objects(someObjects), name(asPartialName(std::move(aName))) {
  dictionary = objects.entry(objects.catalog(), "/AcroForm");
  appearance = objects.entry(dictionary, "/DA");
  quadding = objects.entry(dictionary, "/Q");
  const std::string fields = objects.entry(dictionary, "/Fields");
  for (const auto field : elementsOf(fields))
    if (const auto root = referenceIn(field); root && rootSet.insert(*root).second) roots.push_back(*root);
}

bool SourceFields::take(const Identity& old, const Identity& object, const std::string& body) {
  if (roots.empty() || isStreamBody(body)) return false;
  if (hasFieldKids(body) && kept.try_emplace(old, Kept{object, body}).second) return true;
  if (rootSet.count(old) == 0) return false;
  const auto copies = placed.find(old);
  const std::size_t copy = copies == placed.end() ? 0 : copies->second.size() - 1;
  form.writer.writeHarvested(object, withEntries(body, entriesOfRoot(old, object.first, copy)));
  return true;
}

std::string SourceFields::nameOf(const Identity& root) const {
  return utf8OfString(objects.entry(objects.valueOf(root), "/T"));
}

/// What puts a field under the parent of this copy.
std::string SourceFields::parentEntry(std::size_t copy, int kid) {
  if (wrappers.size() <= copy) wrappers.resize(copy + 1);
  Wrapper& wrapper = wrappers[copy];
  if (wrapper.number == 0) wrapper.number = form.writer.reserve();
  wrapper.kids += spacedReference(kid);
  return "/Parent " + referenceTo(wrapper.number);
}

/// What a field at the top had from its own form and would not have from the output's.
std::string SourceFields::inheritedEntries(const Identity& root, int number) const {
  std::string entries;
  const auto keep = [&](std::string_view key, const std::string& own, const std::string& common) {
    if (!own.empty() && !common.empty() && own != common && valueOfKey(objects.valueOf(root), key).empty())
      entries += form.writer.ownText(number, fmt::format("{} {}", key, own));
  };
  keep("/DA", appearance, form.appearance);
  keep("/Q", quadding, form.quadding);
  return entries;
}

/// What a field that stood at the top of its form needs in the output's.
std::string SourceFields::entriesOfRoot(const Identity& root, int number, std::size_t copy) {
  std::string inherited = inheritedEntries(root, number);
  if (copy > 0 || isNameTaken(root)) return inherited + parentEntry(copy, number);
  atTop.emplace(root, number);
  return inherited;
}

/// The kids that are on sheets, each as often as it was placed, and those that have kids themselves.
std::string SourceFields::kidsOf(const Identity& old) const {
  const std::string own = objects.entry(objects.valueOf(old), "/Kids");
  std::string kids;
  for (const auto element : elementsOf(own)) {
    const auto kid = referenceIn(element);
    if (!kid) continue;
    if (const auto field = kept.find(*kid); field != kept.end()) {
      kids += spacedReference(field->second.object.first);
    } else if (const auto widgets = placed.find(*kid); widgets != placed.end()) {
      for (const int number : widgets->second) kids += spacedReference(number);
    }
  }
  return kids;
}

void SourceFields::writeKept() {
  for (const auto& [old, field] : kept) {
    std::string body = withValue(field.body, "/Kids", "[" + kidsOf(old) + "]");
    if (rootSet.count(old) != 0) body = withEntries(body, entriesOfRoot(old, field.object.first, 0));
    form.writer.writeHarvested(field.object, body);
  }
}

void SourceFields::finish(const TESSEL::CTesselPage& reader) {
  if (roots.empty()) return;
  writeKept();
  if (atTop.empty() && wrappers.empty()) return;
  const auto pairs = reader.getOld2NewObjectVector();
  addFormEntries(NewIds(pairs.begin(), pairs.end()));
  addRoots();
  writeWrappers();
}

/// In the order that they had, and with their names taken from now on.
void SourceFields::addRoots() {
  for (const Identity& root : roots) {
    const auto field = atTop.find(root);
    if (field == atTop.end()) continue;
    form.fields += spacedReference(field->second);
    form.names.insert(nameOf(root));
  }
}

void SourceFields::writeWrappers() {
  for (const Wrapper& wrapper : wrappers) {
    if (wrapper.number == 0) continue;
    form.fields += spacedReference(wrapper.number);
    form.writer.writeBody({wrapper.number, 0},
                          fmt::format("<</T{}/Kids[{}]>>", textString(form.freeName(name)), wrapper.kids));
  }
}

void SourceFields::addFormEntries(const NewIds& ids) {
  if (form.appearance.empty()) form.appearance = appearance;
  if (form.quadding.empty()) form.quadding = quadding;
  form.needsAppearances |= objects.entry(dictionary, "/NeedAppearances") == "true";
  const std::string calculated = objects.entry(dictionary, "/CO");
  for (const auto element : elementsOf(calculated)) {
    const auto old = referenceIn(element);
    const auto id = old ? ids.find(*old) : ids.end();
    if (id != ids.end()) form.calculationOrder += spacedReference(id->second.first);
  }
  addResources(ids);
}

/// Of two resources of one name the first source's stays.
void SourceFields::addResources(const NewIds& ids) {
  const auto newReference = [&ids](const Identity& old) {
    const auto id = ids.find(old);
    return id == ids.end() ? std::string("null") : referenceTo(id->second.first);
  };
  const std::string own = objects.entry(dictionary, "/DR");
  for (const auto& [category, value] : entriesOf(own)) {
    const std::string entries = objects.resolved(value);
    for (const auto& [key, resource] : entriesOf(entries))
      form.resources[std::string(category)].emplace(key, withReferences(resource, newReference));
  }
}

}  // namespace TesselHost
