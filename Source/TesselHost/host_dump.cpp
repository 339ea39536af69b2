#include "TesselHost/host_dump.h"

#include <algorithm>
#include <array>
#include <vector>

#include "TesselHost/host_error.h"
#include "TesselHost/host_hash.h"
#include "TesselHost/host_json.h"
#include "TesselPage/tessel_page.h"

namespace TesselHost {

namespace {

using TESSEL::CTesselPage;
namespace Result = TESSEL::Result;

constexpr std::array boxNames = {"media", "crop", "bleed", "trim", "art"};

class Dumper {
 public:
  Dumper(const DumpOptions& someOptions, ByteSink& aSink)
      : options(someOptions),
        sink(aSink),
        reader(someOptions.input.c_str(), firstOf(someOptions.passwords)),
        start(someOptions.start) {}

  Opening open() {
    Opening opening = openFile(reader, options.input, options.passwords);
    const int result = opening.result;
    json.beginObject().key("init").value(result).key("pages");
    json.value(result == Result::success ? reader.getPageCount() : 0).key("root");
    result == Result::success ? bytes(reader.getRootString(0)) : void(json.null());
    endLine();
    return opening;
  }

  std::vector<int> pages() const { return options.pages.pagesOf(reader.getPageCount()); }

  void page(int number) {
    const int result = reader.setPageNo(number);
    json.beginObject().key("page").value(number).key("setPageNo").value(result);
    if (result == Result::success) selectedPage(number);
    endLine();
  }

 private:
  void endLine() {
    json.endObject();
    sink.write(json.text());
    sink.write("\n");
    json.clear();
  }

  void bytes(std::string_view data) {
    if (options.summary)
      json.value(sha256Hex(data));
    else
      json.base64(data);
  }

  void selectedPage(int number) {
    writeSize();
    writeBoxes(number);
    reader.setOld2NewObjectVector(old2New);
    reader.setStartObjNo(start);
    writeObjects();
    writeText("contents", [this](const std::string** out) { return reader.getPageContents(out); });
    writeText("resources", [this](const std::string** out) { return reader.getPageRes(out, 0); });
    old2New = reader.getOld2NewObjectVector();
    writeOld2New();
    goBehind();
  }

  /// The next page's numbers start behind those of this one's objects and destinations.
  void goBehind() {
    if (!reader.empty()) start = std::max(start, reader.rbegin()->first.first + 1);
    for (const auto& destination : reader.getDestVector()) start = std::max(start, destination.objNum + 1);
  }

  void writeSize() {
    float width = 0;
    float height = 0;
    json.key("sizeRc").value(reader.getPageSize(width, height));
    json.key("size").beginArray().value(width).value(height).endArray();
    int rotate = 0;
    reader.getPageRotate(rotate);
    json.key("rotate").value(rotate);
  }

  void writeBoxes(int number) {
    json.key("boxes").beginObject();
    for (std::size_t i = 0; i < boxNames.size(); ++i) {
      float left = 0;
      float bottom = 0;
      float right = 0;
      float top = 0;
      reader.getPageBox(number, static_cast<CTesselPage::EBox>(i), left, bottom, right, top);
      json.key(boxNames[i]).beginArray().value(left).value(bottom).value(right).value(top).endArray();
    }
    json.endObject();
  }

  void writeObjects() {
    json.key("start").value(start).key("objects").beginArray();
    for (const auto& [object, body] : reader) {
      json.beginObject().key("num").value(object.first).key("gen").value(object.second).key("body");
      bytes(body);
      json.endObject();
    }
    json.endArray();
  }

  template <class Getter>
  void writeText(const std::string& name, const Getter& get) {
    const std::string* text = nullptr;
    const int result = get(&text);
    json.key(name + "Rc").value(result).key(name);
    result == Result::success ? bytes(*text) : void(json.null());
  }

  void writeOld2New() {
    json.key("old2new").beginArray();
    for (const auto& [old, fresh] : old2New) {
      json.beginArray().value(old.first).value(old.second);
      json.value(fresh.first).value(fresh.second).endArray();
    }
    json.endArray();
  }

  const DumpOptions& options;
  ByteSink& sink;
  CTesselPage reader;
  JsonWriter json;
  std::vector<CTesselPage::IdentityPair> old2New;
  int start;
};

}  // namespace

Opening dump(const DumpOptions& options, ByteSink& sink, Observer& observer) {
  Dumper dumper(options, sink);
  Opening opening = dumper.open();
  if (opening.result != Result::success) return opening;
  const std::vector<int> pages = dumper.pages();
  int done = 0;
  for (const int page : pages) {
    dumper.page(page);
    if (!observer.progress(++done, static_cast<int>(pages.size()))) throw Interrupted();
  }
  return opening;
}

}  // namespace TesselHost
