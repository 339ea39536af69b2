#include "TesselHost/host_extras.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace TesselHost {

namespace {

struct Name {
  std::string_view name;
  unsigned bit;
};

constexpr unsigned widgetBit = TESSEL::AnnotsEnableOther;  // stands for no subtype

constexpr std::array subtypeNames = {
    Name{"link", TESSEL::AnnotsEnableLink},
    Name{"text", TESSEL::AnnotsEnableText},
    Name{"sound", TESSEL::AnnotsEnableSound},
    Name{"movie", TESSEL::AnnotsEnableMovie},
    Name{"stamp", TESSEL::AnnotsEnableStamp},
    Name{"line", TESSEL::AnnotsEnableLine},
    Name{"square", TESSEL::AnnotsEnableSquare},
    Name{"circle", TESSEL::AnnotsEnableCircle},
    Name{"strikeout", TESSEL::AnnotsEnableStrikeOut},
    Name{"highlight", TESSEL::AnnotsEnableHighlight},
    Name{"underline", TESSEL::AnnotsEnableUnderline},
    Name{"ink", TESSEL::AnnotsEnableInk},
    Name{"fileattachment", TESSEL::AnnotsEnableFileAttachment},
    Name{"freetext", TESSEL::AnnotsEnableFreeText},
    Name{"popup", TESSEL::AnnotsEnablePopup},
    Name{"squiggly", TESSEL::AnnotsEnableSquiggly},
    Name{"polyline", TESSEL::AnnotsEnablePolyLine},
    Name{"polygon", TESSEL::AnnotsEnablePolygon},
    Name{"caret", TESSEL::AnnotsEnableCaret},
    Name{"screen", TESSEL::AnnotsEnableScreen},
    Name{"printermark", TESSEL::AnnotsEnablePrinterMark},
    Name{"trapnet", TESSEL::AnnotsEnableTrapNet},
    Name{"watermark", TESSEL::AnnotsEnableWaterMark},
    Name{"3d", TESSEL::AnnotsEnable3D},
    Name{"richmedia", TESSEL::AnnotsEnableRichMedia},
    Name{"redact", TESSEL::AnnotsEnableRedact},
    Name{"widget", widgetBit},
};

constexpr std::array typeNames = {
    Name{"radio", TESSEL::AcroFormsEnableRadioButton},  Name{"button", TESSEL::AcroFormsEnablePushButton},
    Name{"checkbox", TESSEL::AcroFormsEnableCheckBox},  Name{"list", TESSEL::AcroFormsEnableListBox},
    Name{"combo", TESSEL::AcroFormsEnableComboBox},     Name{"text", TESSEL::AcroFormsEnableText},
    Name{"signature", TESSEL::AcroFormsEnableSignature}};

std::string lowered(std::string_view text) {
  std::string low(text);
  for (char& c : low)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return low;
}

template <class Names>
unsigned bitOf(const Names& names, std::string_view name) {
  const auto found = std::find_if(names.begin(), names.end(), [name](auto& row) { return row.name == name; });
  return found == names.end() ? 0 : found->bit;
}

/// The bits of names with commas between; nothing when one of them isn't known.
template <class Names>
std::optional<unsigned> bitsOf(const Names& names, std::string_view list) {
  unsigned bits = 0;
  for (std::size_t start = 0; start <= list.size();) {
    const std::size_t end = std::min(list.find(',', start), list.size());
    const unsigned bit = bitOf(names, list.substr(start, end - start));
    if (bit == 0) return std::nullopt;
    bits |= bit;
    start = end + 1;
  }
  return bits;
}

}  // namespace

std::optional<AnnotationChoice> AnnotationChoice::parse(std::string_view text) {
  const std::string list = lowered(text);
  if (list == "all") return AnnotationChoice{};
  if (list == "none") return AnnotationChoice{TESSEL::AnnotsEnableNone, false};
  const auto bits = bitsOf(subtypeNames, list);
  if (!bits) return std::nullopt;
  return AnnotationChoice{*bits & ~widgetBit, (*bits & widgetBit) != 0};
}

bool AnnotationChoice::wants(std::string_view subtype) const {
  const unsigned bit = bitOf(subtypeNames, lowered(subtype.substr(subtype.empty() ? 0 : 1)));
  return bit == widgetBit ? widgets : (subtypes & bit) != 0;
}

std::optional<FormChoice> FormChoice::parse(std::string_view text) {
  const std::string list = lowered(text);
  if (list == "all") return FormChoice{};
  if (list == "none") return FormChoice{TESSEL::AcroFormsEnableNone};
  const auto bits = bitsOf(typeNames, list);
  return bits ? std::optional(FormChoice{*bits}) : std::nullopt;
}

std::string fieldTypeName(unsigned type) {
  const auto found =
      std::find_if(typeNames.begin(), typeNames.end(), [type](auto& row) { return row.bit == type; });
  return found == typeNames.end() ? "other" : std::string(found->name);
}

std::string Extras::text() const {
  return fmt::format("{} {} {} {}", annotations.subtypes, annotations.widgets, forms.types, layers);
}

}  // namespace TesselHost
