#include "TesselPage/Model/tessel_acroform.h"

#include <list>
#include <string>

#include "TesselPage/Model/tessel_harvest.h"
#include "TesselPage/Model/tessel_keyscan.h"
#include "TesselPage/Model/tessel_newobject.h"
#include "TesselPage/Syntax/tessel_keywords.h"

namespace TESSEL {

namespace {

/// Reads the form dictionary: a direct one ends with itself, one behind a reference at "endobj".
class FormScan {
 public:
  FormScan(CAcroForm& reader, CSourFile& in) : form(reader), source(in), main(in.mainSource()) {}

  Turn onReference(const SObj& ref);
  Turn onToken(const std::string& token);

  std::list<SObj> work;

 private:
  Turn endObject() { return form.byReference ? Turn::success : Turn::goOn; }
  Turn openDictionary();
  Turn closeDictionary();
  Turn skipStream();
  Turn readFields();
  Turn readFont();
  void readFontName();

  CAcroForm& form;
  CSourFile& source;
  CSourFile& main;
  std::string key;
  std::string fontName;
  int depth = 0;
};

Turn FormScan::onReference(const SObj& ref) {
  if (key == nmFields) {
    form.fields.insert(ref);
    return Turn::goOn;
  }
  if (key == nmFont) {
    form.fonts.emplace_back(fontName, ref);
    readFontName();
  }
  if (main.isPage(ref)) return Turn::goOn;
  main.insertFileObject(ref);
  main.documentObjs.insert(ref);
  work.push_back(ref);
  return Turn::goOn;
}

Turn FormScan::onToken(const std::string& token) {
  static constexpr KeyRow<FormScan> rows[] = {
      {kwendobj, &FormScan::endObject},   {"<<", &FormScan::openDictionary},
      {">>", &FormScan::closeDictionary}, {kwstream, &FormScan::skipStream},
      {nmFields, &FormScan::readFields},  {nmFont, &FormScan::readFont},
  };
  key = token;
  return dispatch(*this, rows, token);
}

Turn FormScan::openDictionary() {
  if (!form.byReference) ++depth;
  return Turn::goOn;
}

Turn FormScan::closeDictionary() { return !form.byReference && --depth == 0 ? Turn::success : Turn::goOn; }

Turn FormScan::skipStream() {
  source.FindStr(kwendstream);
  return Turn::goOn;
}

// The references of a direct array arrive one by one, with /Fields still the key.
Turn FormScan::readFields() {
  char byte = 0;
  readByte(source, byte);
  if (byte == '[') return Turn::goOn;
  source.putback(byte);
  SObj ref;
  if (!tryReference(source, ref) || main.isPage(ref)) return Turn::goOn;
  main.enterPageObject(ref);
  main.documentObjs.insert(ref);
  work.push_back(ref);
  return Turn::goOn;
}

// A /Font given by reference loses its number here, and the rest of it reads as plain tokens: it is not
// harvested.
Turn FormScan::readFont() {
  CFileBlock::isDictStart(source);
  readFontName();
  return Turn::goOn;
}

void FormScan::readFontName() {
  source >> fontName;
  if (CFileBlock::IsNum(fontName)) fontName.clear();
}

}  // namespace

bool CAcroForm::Read(CSourFile& source) {
  FormScan scan(*this, source);
  scanKeys(source, scan);
  const std::streampos behind = source.tellg();
  if (!ReadOthers(source.mainSource(), scan.work)) return false;
  if (!byReference) source.seekg(behind);
  return true;
}

bool CAcroForm::ReadOthers(CSourFile& source, std::list<SObj>& work) {
  return harvestAll(*this, source, work);
}

bool CAcroForm::ReadObjs(CSourFile* main, CSourFile& source, std::list<SObj>& work) {
  return harvestObject(*main, source, id, work);
}

namespace {

/// The fields of one source under their new numbers; false at the first that has none.
bool writeFields(CDestFile& dest, int file, const CSourFile& source) {
  for (const auto& [field, titleAndType] : source.formFields) {
    if (field.hasAny(ObjFlag::notAField)) continue;
    const SObj* newId = dest.findNewObjOf(file, field);
    if (!newId) return false;
    dest.append(kw_);
    writeNumbers(dest, *newId);
    dest.append("R ");
  }
  return true;
}

}  // namespace

bool CAcroForm::Write(CDestFile& dest, CSourFile&) {
  openNewObject(dest, id);
  dest.append(nmFields).append("[");
  int file = 0;
  for (const auto& [number, source] : dest.files)
    if (!writeFields(dest, ++file, *source)) return false;
  dest.append("] ");
  closeNewObject(dest);
  return true;
}

void CAcroForm::Init() {
  fields.clear();
  fonts.clear();
}

}  // namespace TESSEL
