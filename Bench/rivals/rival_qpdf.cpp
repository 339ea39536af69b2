// The same jobs against libqpdf: open FILE | boxes FILE | middle FILE OUT | nup FILE OUT [PASSWORD [sealed]]
// | keep FILE OUT, which is nup with the pages' annotations and fields

#include <cstdio>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFAcroFormDocumentHelper.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <qpdf/QPDFWriter.hh>
#include <string>
#include <vector>

namespace {

constexpr double sheetWidth = 841.89;  // A4, landscape
constexpr double sheetHeight = 595.276;

double sum(QPDFObjectHandle box) {
  if (!box.isRectangle()) return 0;
  const QPDFObjectHandle::Rectangle rect = box.getArrayAsRectangle();
  return rect.llx + rect.lly + rect.urx + rect.ury;
}

double sumOfBoxes(std::vector<QPDFPageObjectHelper>& pages) {
  double total = 0;
  for (QPDFPageObjectHelper& page : pages)
    total += sum(page.getMediaBox()) + sum(page.getCropBox()) + sum(page.getBleedBox()) +
             sum(page.getTrimBox()) + sum(page.getArtBox());
  return total;
}

/// @param password  of user and owner; null for an output that isn't encrypted
void write(QPDF& out, const char* path, const char* password) {
  QPDFWriter writer(out, path);
  if (password)
    writer.setR6EncryptionParameters(password, password, true, true, true, true, true, true, qpdf_r3p_full,
                                     true);
  else
    writer.setDeterministicID(true);
  writer.write();
}

/// What sheets need to take the annotations along.
struct Forms {
  QPDFAcroFormDocumentHelper from;
  QPDFAcroFormDocumentHelper to;
};

/// One sheet with up to two pages beside each other, with their annotations if `forms` is there.
QPDFObjectHandle sheet(QPDF& out, std::vector<QPDFPageObjectHelper>& pages, std::size_t first, Forms* forms) {
  QPDFObjectHandle xobjects = QPDFObjectHandle::newDictionary();
  QPDFObjectHandle page = out.makeIndirectObject(QPDFObjectHandle::newDictionary());
  std::string content;
  for (std::size_t i = first; i < first + 2 && i < pages.size(); ++i) {
    const std::string name = "/P" + std::to_string(i - first);
    QPDFObjectHandle form = out.copyForeignObject(pages[i].getFormXObjectForPage());
    xobjects.replaceKey(name, form);
    const double left = static_cast<double>(i - first) * sheetWidth / 2;
    QPDFMatrix matrix;
    content += pages[i].placeFormXObject(
        form, name, QPDFObjectHandle::Rectangle(left, 0, left + sheetWidth / 2, sheetHeight), matrix, false,
        true, true);
    if (forms) QPDFPageObjectHelper(page).copyAnnotations(pages[i], matrix, &forms->to, &forms->from);
  }
  QPDFObjectHandle resources = QPDFObjectHandle::newDictionary();
  resources.replaceKey("/XObject", xobjects);
  page.replaceKey("/Type", QPDFObjectHandle::newName("/Page"));
  page.replaceKey("/MediaBox", QPDFObjectHandle::newFromRectangle({0, 0, sheetWidth, sheetHeight}));
  page.replaceKey("/Resources", resources);
  page.replaceKey("/Contents", QPDFObjectHandle::newStream(&out, content));
  return page;
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 3) return 2;
  const std::string job = arguments[1];
  QPDF source;
  source.processFile(arguments[2], count > 4 ? arguments[4] : nullptr);
  std::vector<QPDFPageObjectHelper> pages = QPDFPageDocumentHelper(source).getAllPages();
  if (job == "open") {
    std::printf("%zu\n", pages.size());
  } else if (job == "boxes") {
    std::printf("%.6g\n", sumOfBoxes(pages));
  } else {
    QPDF out;
    out.emptyPDF();
    QPDFPageDocumentHelper target(out);
    Forms forms{QPDFAcroFormDocumentHelper(source), QPDFAcroFormDocumentHelper(out)};
    if (job == "middle")
      target.addPage(pages[pages.size() / 2], false);
    else
      for (std::size_t i = 0; i < pages.size(); i += 2)
        target.addPage(sheet(out, pages, i, job == "keep" ? &forms : nullptr), false);
    write(out, arguments[3], count > 5 ? arguments[4] : nullptr);
  }
  return 0;
}
