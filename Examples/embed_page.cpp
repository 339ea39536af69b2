// Takes one page of a PDF and places it, upright and scaled to fit, on an A4 sheet of a new PDF.
#include <TesselPage/tessel_page.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <sstream>

namespace {

enum Number { catalogNo = 1, pagesNo, sheetNo, paintNo, formNo, firstFreeNo };
constexpr float sheetWidth = 595, sheetHeight = 842;

/// The PDF that we write: objects one after another, then the table that says where each begins.
class Output {
 public:
  Output(const char* path, const std::string& header) : file(path, std::ios::binary) {
    file << header << "\n%\xE2\xE3\xCF\xD3\n";
  }
  void object(int number, const std::string& body) {
    offsets[number] = file.tellp();
    file << number << " 0 obj\n" << body << "\nendobj\n";
  }
  void stream(int number, const std::string& entries, const std::string& data) {
    std::string length = " /Length " + std::to_string(data.size());
    object(number, "<<" + entries + length + ">>\nstream\n" + data + "\nendstream");
  }
  /// The harvest numbers without gaps, so the table has an entry for every number.
  bool finish() {
    const long long table = file.tellp();
    file << "xref\n0 " << offsets.size() + 1 << "\n0000000000 65535 f\r\n";
    for (const auto& [number, offset] : offsets)
      file << std::setfill('0') << std::setw(10) << offset << " 00000 n\r\n";
    file << "trailer\n<</Size " << offsets.size() + 1 << " /Root 1 0 R>>\nstartxref\n"
         << table << "\n%%EOF\n";
    return file.flush().good();
  }

 private:
  std::ofstream file;
  std::map<int, long long> offsets;
};

/// The form's /BBox, and the /Matrix that stands the page upright with its lower left corner at 0 0.
std::string formGeometry(float x, float y, float w, float h, int rotate) {
  const float turns[4][6] = {
      {1, 0, 0, 1, -x, -y}, {0, -1, 1, 0, -y, x + w}, {-1, 0, 0, -1, x + w, y + h}, {0, 1, -1, 0, y + h, -x}};
  std::ostringstream out;
  out << std::fixed << " /BBox[" << x << ' ' << y << ' ' << x + w << ' ' << y + h << "] /Matrix[";
  for (float number : turns[(rotate / 90 % 4 + 4) % 4]) out << number << ' ';
  return out.str() + "]";
}

int fail(const char* what, int code) {
  std::cerr << "embed_page: " << what << " gave " << code << '\n';
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return std::cerr << "usage: embed_page IN.pdf PAGE OUT.pdf\n", 2;
  TESSEL::CTesselPage page(argv[1], "");
  if (int code = page.init()) return fail("init", code);
  if (page.getPasswordState() == TESSEL::Result::passwordDoesNotFit) return fail("the password", 5);
  const int pageNo = std::atoi(argv[2]);
  if (pageNo < 1 || pageNo > page.getPageCount()) return fail("page count", page.getPageCount());
  if (int code = page.setPageNo(pageNo)) return fail("setPageNo", code);
  page.setStartObjNo(firstFreeNo);

  float x = 0, y = 0, w = 0, h = 0, width = 0, height = 0;
  int rotate = 0;
  page.getPageSizeEx(x, y, w, h);
  if (int code = page.getPageSize(width, height)) return fail("getPageSize", code);
  page.getPageRotate(rotate);
  const std::string *contents = nullptr, *resources = nullptr;
  if (int code = page.getPageContents(&contents)) return fail("getPageContents", code);
  if (int code = page.getPageRes(&resources, formNo)) return fail("getPageRes", code);

  Output out(argv[3], std::max<std::string>("%PDF-1.7", page.getHeaderVersion()));
  for (const auto& [identity, body] : page) out.object(identity.first, body.empty() ? "null" : body);
  std::string form = "/Type/XObject /Subtype/Form" + formGeometry(x, y, w, h, rotate);
  if (!page.getPageGroup().empty()) form += " /Group " + page.getPageGroup();
  out.stream(formNo, form + " /Resources " + *resources, *contents);
  const float scale = std::min(sheetWidth / width, sheetHeight / height);
  std::ostringstream paint;
  paint << std::fixed << scale << " 0 0 " << scale << ' ' << (sheetWidth - scale * width) / 2 << ' '
        << (sheetHeight - scale * height) / 2 << " cm /Page Do";
  out.stream(paintNo, "", paint.str());
  out.object(sheetNo,
             "<</Type/Page /Parent 2 0 R /MediaBox[0 0 595 842] /Contents 4 0 R"
             " /Resources<</XObject<</Page 5 0 R>>>>>>");
  out.object(pagesNo, "<</Type/Pages /Kids[3 0 R] /Count 1>>");
  out.object(catalogNo, "<</Type/Catalog /Pages 2 0 R>>");
  return out.finish() ? 0 : fail("writing", 0);
}
