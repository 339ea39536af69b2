#include <algorithm>
#include <string_view>

#include "TesselPage/Model/tessel_annot.h"
#include "TesselPage/Structure/tessel_objflags.h"
#include "TesselPage/Syntax/tessel_keywords.h"

namespace TESSEL {

namespace {

struct SubtypeMask {
  std::string_view subtype;
  unsigned mask;
};

constexpr SubtypeMask subtypeMasks[] = {
    {nmLink, AnnotsEnableLink},
    {nmText, AnnotsEnableText},
    {nmSound, AnnotsEnableSound},
    {nmMovie, AnnotsEnableMovie},
    {nmStamp, AnnotsEnableStamp},
    {nmLine, AnnotsEnableLine},
    {nmSquare, AnnotsEnableSquare},
    {nmCircle, AnnotsEnableCircle},
    {nmStrikeOut, AnnotsEnableStrikeOut},
    {nmHighlight, AnnotsEnableHighlight},
    {nmUnderline, AnnotsEnableUnderline},
    {nmInk, AnnotsEnableInk},
    {nmFileAttachment, AnnotsEnableFileAttachment},
    {nmFreeText, AnnotsEnableFreeText},
    {nmPopup, AnnotsEnablePopup},
    {nmSquiggly, AnnotsEnableSquiggly},
    {nmPolyLine, AnnotsEnablePolyLine},
    {nmPolygon, AnnotsEnablePolygon},
    {nmCaret, AnnotsEnableCaret},
    {nmScreen, AnnotsEnableScreen},
    {nmPrinterMark, AnnotsEnablePrinterMark},
    {nmTrapNet, AnnotsEnableTrapNet},
    {nmWaterMark, AnnotsEnableWaterMark},
    {nm3D, AnnotsEnable3D},
    {nmRedact, AnnotsEnableRedact},
    {nmRichMedia, AnnotsEnableRichMedia},
};

/// Field flags (ISO 32000-2, tables 229 and 233).
constexpr int pushButtonFlag = 0x10000;
constexpr int radioFlag = 0x8000;
constexpr int comboFlag = 0x20000;

/// By FieldType; a type of no row has no mask.
constexpr unsigned fieldMasks[] = {
    AcroFormsEnablePushButton, AcroFormsEnableRadioButton, AcroFormsEnableCheckBox, AcroFormsEnableListBox,
    AcroFormsEnableComboBox,   AcroFormsEnableText,        AcroFormsEnableSignature};

unsigned fieldMask(int fieldType) {
  return fieldType < static_cast<int>(std::size(fieldMasks)) ? fieldMasks[fieldType] : 0;
}

}  // namespace

// A subtype that isn't in the table is never kept, /Widget and custom ones included, whatever is enabled.
void CAnnot::checkEnableAnnots(const std::string& subtype, TESSEL_AnnotsEnableE enable, int& flags,
                               const std::vector<std::string>& custom) const {
  const auto row = std::find_if(std::begin(subtypeMasks), std::end(subtypeMasks),
                                [&](const SubtypeMask& each) { return each.subtype == subtype; });
  if (row == std::end(subtypeMasks)) return;
  if (enable == AnnotsEnableNone || (flags & ObjFlag::keptByAnnotFilter) != 0) return;
  const bool wanted = enable == AnnotsEnableAll || (enable & row->mask) != 0;
  // With AnnotsEnableOther, a known subtype that isn't enabled gets no second chance as a custom one.
  const bool asksCustom = (enable & AnnotsEnableOther) == 0 && (enable & AnnotsEnableCustom) != 0;
  if (wanted || (asksCustom && std::find(custom.begin(), custom.end(), subtype) != custom.end()))
    flags |= ObjFlag::keptByAnnotFilter;
}

int CAnnot::getFieldType(int fieldFlags, const std::string& fieldType) const {
  if (fieldType == "/Btn") {
    if ((fieldFlags & pushButtonFlag) != 0) return pushButton;
    return (fieldFlags & radioFlag) != 0 ? radioButton : checkBox;
  }
  if (fieldType == "/Ch") return (fieldFlags & comboFlag) != 0 ? comboBox : listBox;
  if (fieldType == nmTx) return textField;
  return fieldType == "/Sig" ? signature : unknownField;
}

void CAnnot::checkEnableAcroForms(int fieldFlags, const std::string& fieldType,
                                  TESSEL_AcroFormsEnableE enable, int& flags) const {
  if (enable == AcroFormsEnableNone || (flags & ObjFlag::keptByFormFilter) != 0) return;
  if (enable == AcroFormsEnableAll || (enable & fieldMask(getFieldType(fieldFlags, fieldType))) != 0)
    flags |= ObjFlag::keptByAnyFilter;
}

}  // namespace TESSEL
