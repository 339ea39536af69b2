#include "TesselHost/host_annotations.h"

#include <fmt/format.h>

#include "TesselHost/host_dictionary.h"
#include "TesselHost/host_number.h"

namespace TesselHost {

namespace {

// Bits of /Ff (ISO 32000-2, tables 228 and 233).
constexpr unsigned radioFlag = 0x8000;
constexpr unsigned pushFlag = 0x10000;
constexpr unsigned comboFlag = 0x20000;

unsigned buttonType(unsigned flags) {
  if ((flags & pushFlag) != 0) return TESSEL::AcroFormsEnablePushButton;
  return (flags & radioFlag) != 0 ? TESSEL::AcroFormsEnableRadioButton : TESSEL::AcroFormsEnableCheckBox;
}

}  // namespace

ListedAnnotations listedAnnotations(const SourceObjects& objects, int page) {
  ListedAnnotations listed;
  const std::string array = objects.entry(objects.page(page), "/Annots");
  for (const auto element : elementsOf(array)) {
    listed.any = true;
    if (const auto object = referenceIn(element)) listed.objects.push_back(*object);
  }
  return listed;
}

bool isWanted(const Extras& extras, std::string_view annotation) {
  const std::string_view subtype = valueOfKey(annotation, "/Subtype");
  if (subtype != "/Widget") return extras.annotations.wants(subtype);
  const unsigned type = fieldTypeOf(valueOfKey(annotation, "/FT"), valueOfKey(annotation, "/Ff"));
  return (extras.fields() & type) != 0 || extras.fields() == TESSEL::AcroFormsEnableAll;
}

bool isPageBound(std::string_view body) {
  if (body.find("/Rect") == std::string_view::npos || valueOfKey(body, "/Rect").empty()) return false;
  const std::string_view subtype = valueOfKey(body, "/Subtype");
  return subtype != "/Popup" && AnnotationChoice{}.wants(subtype);
}

std::vector<Identity> appearancesOf(std::string_view annotation,
                                    const std::function<std::string(std::string_view)>& resolved) {
  std::vector<Identity> streams;
  const auto add = [&streams](std::string_view value) {
    if (const auto stream = referenceIn(value)) streams.push_back(*stream);
  };
  const std::string appearances = resolved(valueOfKey(annotation, "/AP"));
  for (const auto& [use, value] : entriesOf(appearances)) {
    // Each use has a stream, or a dictionary with one for each state.
    const std::string states = resolved(value);
    if (!valueOfKey(states, "/BBox").empty())
      add(value);
    else
      for (const auto& [state, stream] : entriesOf(states)) add(stream);
  }
  return streams;
}

bool staysUpright(std::string_view annotation) {
  constexpr int noRotate = 16;  // ISO 32000-2, table 167
  return (parseCount(valueOfKey(annotation, "/F")).value_or(0) & noRotate) != 0;
}

bool turns(const Affine& matrix) { return matrix.a <= 0 || matrix.d <= 0 || matrix.b != 0 || matrix.c != 0; }

std::string turnedAppearance(const std::string& body, const Affine& matrix) {
  const auto start = body.find("<<");
  if (start == std::string::npos || !valueOfKey(body, "/Matrix").empty()) return body;
  return body.substr(0, start + 2) +
         fmt::format("/Matrix[{} {} {} {} 0 0]", decimal(matrix.a), decimal(matrix.b), decimal(matrix.c),
                     decimal(matrix.d)) +
         body.substr(start + 2);
}

unsigned fieldTypeOf(std::string_view type, std::string_view flags) {
  const auto bits = static_cast<unsigned>(parseCount(flags).value_or(0));
  if (type == "/Btn") return buttonType(bits);
  if (type == "/Ch")
    return (bits & comboFlag) != 0 ? TESSEL::AcroFormsEnableComboBox : TESSEL::AcroFormsEnableListBox;
  if (type == "/Tx") return TESSEL::AcroFormsEnableText;
  return type == "/Sig" ? TESSEL::AcroFormsEnableSignature : TESSEL::AcroFormsEnableNone;
}

}  // namespace TesselHost
