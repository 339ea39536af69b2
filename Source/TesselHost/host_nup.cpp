#include "TesselHost/host_nup.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>

#include "TesselHost/host_document.h"
#include "TesselHost/host_error.h"
#include "TesselHost/host_number.h"
#include "TesselHost/host_output.h"
#include "TesselHost/host_placer.h"
#include "TesselHost/host_source.h"

namespace TesselHost {

namespace {

/// One input and what is wanted of it.
struct Input {
  std::unique_ptr<Source> source;
  std::vector<int> pages;
};

/// Keeps from the standard output what the library's ASCII-safe variant tells there of each stream: the
/// output may go to the same place.
class QuietOutput {
 public:
  explicit QuietOutput(bool wanted) : before(wanted ? std::cout.rdbuf(nullptr) : nullptr), active(wanted) {}
  ~QuietOutput() {
    if (active) std::cout.rdbuf(before);
  }
  QuietOutput(const QuietOutput&) = delete;
  QuietOutput& operator=(const QuietOutput&) = delete;

 private:
  std::streambuf* before;
  bool active;
};

void refuseForbidden(const Source& source) {
  if (!source.access().mayPlace())
    throw SourceError(source.path(),
                      "its permissions forbid to modify or assemble it; its owner password or "
                      "--ignore-permissions would do");
}

std::vector<Input> openInputs(const NupOptions& options) {
  const Source::Form form = options.ascii ? Source::Form::ascii : Source::Form::asStored;
  std::vector<Input> inputs;
  for (const std::string& path : options.inputs) {
    Input input{std::make_unique<Source>(path, options.passwords, form), {}};
    if (!options.ignorePermissions) refuseForbidden(*input.source);
    input.pages = options.pages.pagesOf(input.source->pageCount());
    inputs.push_back(std::move(input));
  }
  return inputs;
}

int countPages(const std::vector<Input>& inputs) {
  std::size_t count = 0;
  for (const Input& input : inputs) count += input.pages.size();
  return static_cast<int>(count);
}

Size sizeOf(const Source& source, int page) {
  const auto geometry = source.geometryOf(page);
  return geometry ? geometry->size() : letterSize;
}

std::vector<Size> sizesOf(const std::vector<Input>& inputs) {
  std::vector<Size> sizes;
  for (const Input& input : inputs)
    for (const int page : input.pages) sizes.push_back(sizeOf(*input.source, page));
  return sizes;
}

Size largestOf(const std::vector<Size>& sizes) {
  Size largest;
  for (const Size& size : sizes)
    largest = {std::max(largest.width, size.width), std::max(largest.height, size.height)};
  return largest;
}

double totalScale(const std::vector<Size>& sizes, const Rect& cell) {
  double total = 0;
  for (const Size& size : sizes) total += scaleToFit(size, cell);
  return total;
}

/// The way to lay the paper that shows the pages larger; upright when both do alike.
Size turnedForPages(const Size& paper, const std::vector<Size>& sizes, const NupOptions& options) {
  const double uprightScale = totalScale(sizes, cellOf(paper, options.grid, options.spacing, 0));
  const double acrossScale = totalScale(sizes, cellOf(paper.turned(), options.grid, options.spacing, 0));
  constexpr double clearlyLarger = 1.001;
  return acrossScale > uprightScale * clearlyLarger ? paper.turned() : paper;
}

/// A page that is too large by itself stays as it is.
void refuseHuge(const Size& sheet, const Size& page) {
  if ((sheet.width > largestPaperSide && sheet.width > page.width) ||
      (sheet.height > largestPaperSide && sheet.height > page.height))
    throw UsageError(
        fmt::format("sheets around these pages would be larger than {} points, which readers don't show; "
                    "--paper makes them smaller",
                    largestPaperSide));
}

/// Knows how large each sheet is.
class SheetPlan {
 public:
  SheetPlan(const NupOptions& someOptions, const std::vector<Input>& inputs) : options(someOptions) {
    const std::vector<Size> sizes = sizesOf(inputs);
    switch (options.paper.kind) {
      case Paper::Kind::fitted:
        common = sheetAround(largestOf(sizes), options.grid, options.spacing);
        refuseHuge(common, largestOf(sizes));
        break;
      case Paper::Kind::turnable:
        common = turnedForPages(options.paper.size, sizes, options);
        break;
      case Paper::Kind::fixed:
        common = options.paper.size;
        break;
    }
    if (ownSizes()) return;
    const Rect cell = cellOf(common, options.grid, options.spacing, 0);
    if (cell.width < 1 || cell.height < 1)
      throw UsageError("margins and gutters leave no room for the pages");
  }

  /// Whether each sheet is as large as its only page.
  bool ownSizes() const { return options.paper.kind == Paper::Kind::fitted && options.grid.cells() == 1; }
  /// A margin or a frame makes a page a part of its sheet.
  FormUse formUse() const {
    return ownSizes() && options.spacing.margin == 0 && !options.frame ? FormUse::wholeSheet
                                                                       : FormUse::placed;
  }
  Size sheetFor(const Size& first) const {
    return ownSizes() ? sheetAround(first, options.grid, options.spacing) : common;
  }

 private:
  const NupOptions& options;
  Size common;
};

/// Fills sheets with pages as they come and hands each full sheet to the document.
class SheetFiller {
 public:
  SheetFiller(const NupOptions& someOptions, const SheetPlan& aPlan, OutputDocument& aDocument)
      : options(someOptions), plan(aPlan), document(aDocument) {}

  /// Where the next page, of this size, will lie.
  SheetPlace placeFor(const Size& page) {
    if (sheet.placements.empty()) begin(page);
    const auto cell = static_cast<int>(sheet.placements.size());
    const Affine matrix = fitInto(page, cellOf(sheet.size, options.grid, options.spacing, cell));
    return {sheet.number, matrix, plan.formUse() == FormUse::wholeSheet};
  }

  /// Puts the page there.
  void add(const PlacedPage& page, const SheetPlace& place) {
    if (sheet.placements.empty() && plan.ownSizes()) sheet.userUnit = page.form.userUnit;
    sheet.placements.push_back({page.form, place.matrix, options.frame});
    sheet.annotations.insert(sheet.annotations.end(), page.annotations.begin(), page.annotations.end());
    if (static_cast<int>(sheet.placements.size()) == options.grid.cells()) flush();
  }

  void flush() {
    if (sheet.placements.empty()) return;
    document.add(sheet);
    sheet = {};
    ++count;
  }

  int sheets() const { return count; }

 private:
  void begin(const Size& first) {
    sheet.number = document.reserveSheet();
    sheet.size = plan.sheetFor(first);
  }

  const NupOptions& options;
  const SheetPlan& plan;
  OutputDocument& document;
  Sheet sheet;
  int count = 0;
};

PdfVersion versionFor(const NupOptions& options, const std::vector<Input>& inputs) {
  PdfVersion version = options.objectStreams ? pdf15 : pdf14;
  for (const Input& input : inputs) version = std::max(version, input.source->version());
  return version;
}

ObjectWriter::Options writerOptions(const NupOptions& options, const std::vector<Input>& inputs,
                                    const std::optional<OutputProtection>& protection) {
  ObjectWriter::Options result{versionFor(options, inputs), options.objectStreams};
  result.ascii = options.ascii;
  if (!protection) return result;
  result.version = std::max(result.version, protection->version());
  result.protection = &*protection;
  return result;
}

void addFile(Fingerprint& fingerprint, const std::string& path) {
  constexpr std::size_t blockSize = std::size_t{1} << 18U;
  std::ifstream file(path, std::ios::binary);
  std::string block(blockSize, '\0');
  while (file.read(block.data(), static_cast<std::streamsize>(block.size())), file.gcount() > 0)
    fingerprint.add(std::string_view(block).substr(0, static_cast<std::size_t>(file.gcount())));
}

/// What came through a pipe is gone.
bool canReadAgain(const std::vector<Input>& inputs) {
  return std::all_of(inputs.begin(), inputs.end(), [](const Input& input) {
    std::error_code failed;
    return std::filesystem::is_regular_file(input.source->path(), failed);
  });
}

/// Equal inputs and options give equal identifiers, and so equal outputs; the files' names don't count.
std::string identifierFor(const NupOptions& options, const std::vector<Input>& inputs,
                          const OutputClaims& claims) {
  Fingerprint fingerprint;
  fingerprint.add(fmt::format("{}x{} {} {} {} {} {} {} {} {}{}", options.grid.columns, options.grid.rows,
                              static_cast<int>(options.paper.kind), decimal(options.paper.size.width),
                              decimal(options.paper.size.height), decimal(options.spacing.margin),
                              decimal(options.spacing.gutter), options.frame, options.objectStreams,
                              options.extras.text(), options.ascii ? " ascii" : ""));
  fingerprint.add(claims.text());
  for (const Input& input : inputs) {
    for (const int page : input.pages) fingerprint.add(fmt::format(" {}", page));
    addFile(fingerprint, input.source->path());
  }
  return fingerprint.bytes();
}

OutputClaims claimsFor(const NupOptions& options, const std::vector<Input>& inputs, Observer& observer) {
  std::vector<const Source*> sources;
  for (const Input& input : inputs)
    if (!input.pages.empty()) sources.push_back(input.source.get());
  return OutputClaims(options.outputIntent, sources, observer);
}

void refuseOverwriting(const NupOptions& options) {
  for (const std::string& input : options.inputs)
    if (isSameFile(input, options.output))
      throw UsageError(fmt::format("{}: the output would overwrite this input", input));
  const IntentChoice& intent = options.outputIntent;
  if (intent.kind == IntentChoice::Kind::profile && isSameFile(intent.file, options.output))
    throw UsageError(fmt::format("{}: the output would overwrite this profile", intent.file));
}

void fillSheets(std::vector<Input>& inputs, PagePlacer& placer, SheetFiller& filler, Observer& observer) {
  const int total = countPages(inputs);
  int done = 0;
  for (Input& input : inputs) {
    for (const int page : input.pages) {
      const SheetPlace place = filler.placeFor(sizeOf(*input.source, page));
      filler.add(placer.place(*input.source, page, place), place);
      if (!observer.progress(++done, total)) throw Interrupted();
    }
    placer.finishSource(*input.source);
    // What this source holds in memory isn't needed any more.
    input.source.reset();
  }
  filler.flush();
}

}  // namespace

NupResult nup(const NupOptions& options, Observer& observer) {
  refuseOverwriting(options);
  if (options.ascii && (options.objectStreams || options.protection))
    throw UsageError("--ascii goes neither with --encrypt nor with --object-streams");
  const QuietOutput quiet(options.ascii);
  std::vector<Input> inputs = openInputs(options);
  const int pages = countPages(inputs);
  if (pages == 0) throw SourceError(options.inputs.front(), "no page to place");
  const SheetPlan plan(options, inputs);
  const OutputClaims claims = claimsFor(options, inputs, observer);
  const bool drawn = options.protection || !canReadAgain(inputs);
  const std::string id = drawn ? randomIdentifier() : identifierFor(options, inputs, claims);
  std::optional<OutputProtection> protection;
  if (options.protection) {
    protection.emplace(*options.protection, id);
    for (const std::string& doubt : doubtsAbout(*options.protection)) observer.warn(doubt);
  }
  OutputFile file(options.output);
  const ObjectWriter::Options writing = writerOptions(options, inputs, protection);
  OutputDocument document(file, writing, id);
  PagePlacer placer(document.objects(), observer, plan.formUse(), options.extras);
  SheetFiller filler(options, plan, document);
  fillSheets(inputs, placer, filler, observer);
  const std::string catalog = placer.catalogEntries();
  document.finish(catalog + claims.catalogEntries(document.objects(), writing.version, catalog));
  file.commit();
  return {pages, filler.sheets(), placer.lostLinks()};
}

}  // namespace TesselHost
