#include "TesselHost/host_document.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <iterator>

#include "TesselHost/host_number.h"

namespace TesselHost {

namespace {

// A line of half a point in middle grey: to be seen on paper, and no part of the page.
constexpr std::string_view frameStyle = "0.5 w 0.5 G";

std::string coordinates(const Affine& m) {
  return fmt::format("{} {} {} {} {} {}", decimal(m.a), decimal(m.b), decimal(m.c), decimal(m.d),
                     decimal(m.e), decimal(m.f));
}

std::string formName(std::size_t index) { return fmt::format("/P{}", index + 1); }

void appendFrame(std::string& content, const Placement& placement) {
  const Affine& m = placement.matrix;
  const Size& size = placement.form.size;
  fmt::format_to(std::back_inserter(content), "q {} {} {} {} {} re S Q\n", frameStyle, decimal(m.e),
                 decimal(m.f), decimal(m.a * size.width), decimal(m.d * size.height));
}

void appendForm(std::string& content, const Placement& placement, std::size_t index) {
  content += "q ";
  if (placement.matrix != Affine{}) content += coordinates(placement.matrix) + " cm ";
  content += formName(index) + " Do Q\n";
}

std::string contentOf(const Sheet& sheet) {
  std::string content;
  for (std::size_t i = 0; i < sheet.placements.size(); ++i) {
    const Placement& placement = sheet.placements[i];
    if (placement.form.number != 0) appendForm(content, placement, i);
    if (placement.framed) appendFrame(content, placement);
  }
  return content;
}

std::string resourcesOf(const Sheet& sheet) {
  std::string forms;
  for (std::size_t i = 0; i < sheet.placements.size(); ++i)
    if (const int number = sheet.placements[i].form.number; number != 0)
      forms += formName(i) + " " + referenceTo(number);
  return forms.empty() ? "<<>>" : "<</XObject<<" + forms + ">>>>";
}

/// The sheet blends in the colour space of the first of its pages that names one.
std::string groupOf(const Sheet& sheet) {
  const auto found = std::find_if(sheet.placements.begin(), sheet.placements.end(),
                                  [](const Placement& placement) { return !placement.form.group.empty(); });
  return found == sheet.placements.end() ? std::string() : found->form.group;
}

std::string pageOf(const Sheet& sheet, int parent, int contents) {
  std::string page = fmt::format("<</Type/Page/Parent {}/MediaBox[0 0 {} {}]/Resources{}/Contents {}",
                                 referenceTo(parent), decimal(sheet.size.width), decimal(sheet.size.height),
                                 resourcesOf(sheet), referenceTo(contents));
  if (const std::string group = groupOf(sheet); !group.empty()) page += "/Group " + group;
  if (!sheet.annotations.empty()) page += fmt::format("/Annots[{}]", fmt::join(sheet.annotations, " "));
  if (sheet.userUnit != 1) page += "/UserUnit " + decimal(sheet.userUnit);
  return page + ">>";
}

}  // namespace

OutputDocument::OutputDocument(ByteSink& sink, const ObjectWriter::Options& options, std::string anId)
    : writer(sink, options), tree(writer), id(std::move(anId)) {}

void OutputDocument::add(const Sheet& sheet) {
  const int contentsNumber = contentsFor(sheet);
  const int parent = tree.parentOfNext();
  writer.writeBody({sheet.number, 0}, pageOf(sheet, parent, contentsNumber));
  tree.add(sheet.number);
}

/// Sheets of pages of one size have the same content, but for the forms that its names stand for.
int OutputDocument::contentsFor(const Sheet& sheet) {
  const std::string content = contentOf(sheet);
  const int fresh = writer.reserve();
  const int number = contents.numberFor({}, content, fresh);
  if (number == fresh)
    writer.writePackedStream(number, {}, content);
  else
    writer.giveBack(fresh);
  return number;
}

void OutputDocument::finish(std::string_view catalogEntries) {
  const int root = tree.finish();
  const int catalog = writer.reserve();
  writer.writeBody({catalog, 0},
                   fmt::format("<</Type/Catalog/Pages {}{}>>", referenceTo(root), catalogEntries));
  const int info = writer.reserve();
  writer.writeBody({info, 0}, "<</Producer(tessel)>>");
  writer.finish({catalog, info, id});
}

}  // namespace TesselHost
