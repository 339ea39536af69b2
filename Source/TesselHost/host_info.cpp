#include "TesselHost/host_info.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>

#include "TesselHost/host_conformance.h"
#include "TesselHost/host_error.h"
#include "TesselHost/host_inventory.h"
#include "TesselHost/host_json.h"
#include "TesselHost/host_number.h"
#include "TesselHost/host_paper.h"
#include "TesselHost/host_source.h"
#include "TesselPage/tessel_types.h"

namespace TesselHost {

namespace {

using TESSEL::CTesselPage;
using TESSEL::RectTD;

constexpr std::array boxNames = {"media", "crop", "bleed", "trim", "art"};
constexpr int decimalsShown = 3;

/// What is told of a page.
struct PageFacts {
  std::array<RectTD, boxNames.size()> boxes;
  int sizeResult = 0;
  float width = 0;
  float height = 0;
  int rotate = 0;

  friend bool operator==(const PageFacts&, const PageFacts&) = default;
};

/// Without an entry of its own a box is the crop box, and the crop box the media box (ISO 32000-2, 14.11.2).
std::size_t usualBox(std::size_t box) {
  return box == CTesselPage::cropBox ? CTesselPage::mediaBox : CTesselPage::cropBox;
}

/// The library leaves boxes that a page hasn't at 0.
void fillBoxes(PageFacts& facts) {
  for (std::size_t i = CTesselPage::cropBox; i < facts.boxes.size(); ++i)
    if (facts.boxes[i] == RectTD{}) facts.boxes[i] = facts.boxes[usualBox(i)];
}

PageFacts factsOf(const CTesselPage& reader, int page) {
  PageFacts facts;
  for (std::size_t i = 0; i < boxNames.size(); ++i) {
    RectTD& box = facts.boxes[i];
    reader.getPageBox(page, static_cast<CTesselPage::EBox>(i), box.left, box.bottom, box.right, box.top);
  }
  fillBoxes(facts);
  facts.sizeResult = reader.getPageSize(page, facts.width, facts.height, CTesselPage::visibleBox);
  reader.getPageRotate(page, facts.rotate);
  return facts;
}

std::string numberText(float value) { return decimal(unblurred(value, value), decimalsShown); }

std::string boxText(const RectTD& box) {
  return fmt::format("[{} {} {} {}]", numberText(box.left), numberText(box.bottom), numberText(box.right),
                     numberText(box.top));
}

/// The boxes that are not what they would be without an entry of their own.
std::string boxesText(const PageFacts& facts) {
  std::string text;
  for (std::size_t i = 0; i < boxNames.size(); ++i) {
    // Without an entry of its own a box is the crop box, and the crop box the media box (ISO
    // 32000-2, 14.11.2).
    const RectTD& usual = facts.boxes[i == 1 ? 0 : 1];
    if (i == 0 || facts.boxes[i] != usual)
      text += fmt::format("  {} {}", boxNames[i], boxText(facts.boxes[i]));
  }
  return text;
}

std::string sizeText(const PageFacts& facts) {
  if (facts.sizeResult != TESSEL::Result::success) return "no usable size";
  std::string text = fmt::format("{} x {} pt", numberText(facts.width), numberText(facts.height));
  const std::string name = paperNameOf({facts.width, facts.height});
  return name.empty() ? text : text + fmt::format(" ({})", name);
}

std::string runText(int first, int last, const PageFacts& facts) {
  std::string text =
      first == last ? fmt::format("  page {}: ", first) : fmt::format("  pages {}-{}: ", first, last);
  text += sizeText(facts);
  if (facts.rotate != 0) text += fmt::format(", rotated by {}", facts.rotate);
  return text + boxesText(facts) + "\n";
}

void writePageJson(JsonWriter& json, int page, const PageFacts& facts) {
  json.beginObject().key("page").value(page);
  json.key("size").beginArray().value(facts.width).value(facts.height).endArray();
  json.key("rotate").value(facts.rotate).key("boxes").beginObject();
  for (std::size_t i = 0; i < boxNames.size(); ++i) {
    const RectTD& box = facts.boxes[i];
    json.key(boxNames[i])
        .beginArray()
        .value(box.left)
        .value(box.bottom)
        .value(box.right)
        .value(box.top)
        .endArray();
  }
  json.endObject().endObject();
}

std::string accessText(const Access& access) {
  std::string allowed;
  for (const std::string& word : access.permissions().words(access.revision()))
    allowed += (allowed.empty() ? "" : ", ") + word;
  return fmt::format(
      "  encrypted with {}, revision {}{}, opened with {}; allowed without the owner password: {}\n",
      access.method(), access.revision(), access.metadataEncrypted() ? "" : ", metadata in the clear",
      access.opener(), allowed.empty() ? "nothing" : allowed);
}

void writeAccessJson(JsonWriter& json, const Access& access) {
  if (!access.encrypted()) {
    json.null();
    return;
  }
  json.beginObject().key("method").value(access.method()).key("revision").value(access.revision());
  json.key("metadataEncrypted").value(access.metadataEncrypted());
  json.key("openedWith").value(access.openerWord()).key("allowed").beginArray();
  for (const std::string& word : access.permissions().words(access.revision())) json.value(word);
  json.endArray().endObject();
}

std::string countsText(std::string_view title, const std::map<std::string, int>& counts) {
  std::string text;
  for (const auto& [kind, count] : counts)
    text += fmt::format("{}{} {}", text.empty() ? "" : ", ", count, kind);
  return text.empty() ? text : fmt::format("  {}: {}\n", title, text);
}

/// What there is besides pages, a line for each kind of thing.
std::string inventoryText(const Inventory& inventory) {
  std::string text =
      countsText("annotations", inventory.annotations) + countsText("form fields", inventory.fields);
  const auto off = std::count_if(inventory.layers.begin(), inventory.layers.end(),
                                 [](const Inventory::Layer& layer) { return !layer.shown; });
  if (!inventory.layers.empty())
    text += fmt::format("  layers: {}, {} of them off\n", inventory.layers.size(), off);
  if (!inventory.destinations.empty())
    text += fmt::format("  named destinations: {}\n", inventory.destinations.size());
  return text;
}

void writeCountsJson(JsonWriter& json, const std::map<std::string, int>& counts) {
  json.beginObject();
  for (const auto& [kind, count] : counts) json.key(kind).value(count);
  json.endObject();
}

void writeInventoryJson(JsonWriter& json, const Inventory& inventory) {
  json.key("annotations");
  writeCountsJson(json, inventory.annotations);
  json.key("fields");
  writeCountsJson(json, inventory.fields);
  json.key("layers").beginArray();
  for (const Inventory::Layer& layer : inventory.layers)
    json.beginObject().key("name").value(layer.name).key("shown").value(layer.shown).endObject();
  json.endArray().key("destinations").beginArray();
  for (const std::string& name : inventory.destinations) json.value(name);
  json.endArray();
}

void endLine(JsonWriter& json, ByteSink& sink) {
  json.endObject();
  sink.write(json.text());
  sink.write("\n");
}

}  // namespace

void describe(const std::string& file, const Passwords& passwords, ByteSink& sink) {
  const Source source(file, passwords);
  const int count = source.pageCount();
  sink.write(
      fmt::format("{}: PDF {}, {} page{}\n", file, source.version().text(), count, count == 1 ? "" : "s"));
  if (const Access access = source.access(); access.encrypted()) sink.write(accessText(access));
  sink.write(conformanceText(source));
  int first = 1;
  PageFacts facts;
  for (int page = 1; page <= count; ++page) {
    const PageFacts next = factsOf(source.pages(), page);
    if (page > 1 && !(next == facts)) {
      sink.write(runText(first, page - 1, facts));
      first = page;
    }
    facts = next;
  }
  if (count > 0) sink.write(runText(first, count, facts));
  sink.write(inventoryText(inventoryOf(source)));
}

void describeAsJson(const std::string& file, const Passwords& passwords, ByteSink& sink) {
  const Source source(file, passwords);
  JsonWriter json;
  json.beginObject().key("file").value(file).key("version").value(source.version().text());
  json.key("encryption");
  writeAccessJson(json, source.access());
  json.key("pageCount").value(source.pageCount()).key("pages").beginArray();
  for (int page = 1; page <= source.pageCount(); ++page)
    writePageJson(json, page, factsOf(source.pages(), page));
  json.endArray();
  writeConformance(json, source);
  writeInventoryJson(json, inventoryOf(source));
  endLine(json, sink);
}

void extractProfile(const std::string& file, const Passwords& passwords, int number,
                    const std::string& output) {
  if (isSameFile(file, output))
    throw UsageError(fmt::format("{}: the output would overwrite this input", file));
  const std::string profile = profileOf(Source(file, passwords), number);
  OutputFile target(output);
  target.write(profile);
  target.commit();
}

void failureAsJson(const std::string& file, int code, const std::string& reason, ByteSink& sink) {
  JsonWriter json;
  json.beginObject().key("file").value(file).key("error").beginObject();
  json.key("code").value(code).key("reason").value(reason).endObject();
  endLine(json, sink);
}

}  // namespace TesselHost
