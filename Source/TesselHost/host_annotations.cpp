#include "TesselHost/host_annotations.h"

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

unsigned fieldTypeOf(std::string_view type, std::string_view flags) {
  const auto bits = static_cast<unsigned>(parseCount(flags).value_or(0));
  if (type == "/Btn") return buttonType(bits);
  if (type == "/Ch")
    return (bits & comboFlag) != 0 ? TESSEL::AcroFormsEnableComboBox : TESSEL::AcroFormsEnableListBox;
  if (type == "/Tx") return TESSEL::AcroFormsEnableText;
  return type == "/Sig" ? TESSEL::AcroFormsEnableSignature : TESSEL::AcroFormsEnableNone;
}

}  // namespace TesselHost
