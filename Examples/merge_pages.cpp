// Merges pages of several PDFs into one, with the class set's own writer of files.
//
//   merge_pages OUT.pdf SELECTION IN.pdf...      merge_pages out.pdf "1:0 2:1,3~4" a.pdf b.pdf
//
// The writer copies a page without the keys that a host places anew: /Contents, /Annots and its boxes. This
// merger wants pages as they are, so it copies them as plain objects and adds what they inherit in their
// source.
#include <TesselPage/Model/tessel_catalog.h>
#include <TesselPage/Model/tessel_pageobj.h>
#include <TesselPage/Model/tessel_pages.h>
#include <TesselPage/Structure/tessel_sourcebuffer.h>
#include <TesselPage/Structure/tessel_sourfile.h>
#include <TesselPage/Writer/tessel_destfile.h>
#include <TesselPage/tessel_enables.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

using namespace TESSEL;

namespace {

/// The direct dictionary that stands behind `key`, brackets and all; empty when there is none.
std::string dictionaryBehind(const std::string& text, const std::string& key) {
  const std::size_t place = text.find(key);
  if (place == std::string::npos) return {};
  const std::size_t begin = text.find_first_not_of(" \t\r\n", place + key.size());
  int depth = 0;
  for (std::size_t at = begin; at < text.size(); ++at) {
    const std::string bracket = text.substr(at, 2);
    if (bracket == "<<") ++depth, ++at;
    if (bracket == ">>") --depth, ++at;
    if (depth == 0) return at == begin ? std::string() : text.substr(begin, at + 1 - begin);
  }
  return {};
}

/// A page that is copied as it stands. What it inherits in its source, and its new parent, are put in front.
class MergedPage : public CPage {
 public:
  bool WriteObj(CDestFile& dest, CSourFile& source, bool* dropped) override {
    const std::size_t begin = dest.size();
    if (!CObj::WriteObj(dest, source, dropped)) return false;
    CSourFile& main = source.mainSource();
    const std::string page = dest.substr(begin);
    const std::string keys = inherited(dest, main, page);
    const std::size_t dictionary = dest.find("<<", begin);
    if (dictionary != std::string::npos) dest.insert(dictionary + 2, keys);
    dest.endMark = dest.size();
    return true;
  }

 private:
  std::string inherited(CDestFile& dest, CSourFile& source, const std::string& page) {
    Facade_stringstream keys;
    keys.append("/Parent ").append(reference(source.newRoot));
    const CPaperInfo& paper = source.paperInfoMap[id];
    const auto lacks = [&](const char* key) { return page.find(key) == std::string::npos; };
    if (lacks("/MediaBox")) addBox(keys, "/MediaBox", paper.box(PageBox::media));
    if (lacks("/CropBox")) addBox(keys, "/CropBox", paper.box(PageBox::crop));
    if (lacks("/Rotate") && paper.rotation != 0) keys.append("/Rotate " + std::to_string(paper.rotation));
    if (lacks("/Resources")) addResources(dest, source, keys);
    return keys;
  }

  static std::string reference(const SObj& object) {
    return std::to_string(object.objNum) + ' ' + std::to_string(object.genNum) + " R";
  }

  static void addBox(Facade_stringstream& keys, const char* key, const RectTD& box) {
    if (box.left == box.right || box.bottom == box.top) return;
    keys.append(key).append("[");
    for (const float number : {box.left, box.bottom, box.right, box.top}) {
      keys << static_cast<double>(number);
      keys.append(" ");
    }
    keys.append("]");
  }

  void addResources(CDestFile& dest, CSourFile& source, Facade_stringstream& keys) {
    SObj shared;
    std::vector<SObj> within;
    const SObj parent = source.parentMap[id];
    if (getParentResource(source, parent, shared, within)) {
      if (const SObj* newId = dest.findNewObj(shared)) keys.append("/Resources ").append(reference(*newId));
    } else {
      keys.append(directResources(dest, source, parent));
    }
  }

  /// A direct dictionary comes with the text of the nearest ancestor that has one, references renumbered.
  static std::string directResources(CDestFile& dest, CSourFile& source, SObj at) {
    const std::size_t had = dest.size();
    for (std::size_t climbed = 0; at.objNum != 0 && climbed < source.parentMap.size() + 1; ++climbed) {
      CObj(at).LocalObj(dest, source, nullptr);
      const std::string text = dest.substr(had);
      dest.resize(had);
      if (text.find("/Resources") != std::string::npos)
        return "/Resources" + dictionaryBehind(text, "/Resources");
      at = source.parentMap[at];
    }
    return {};
  }
};

class Merger : public CDestFile {
 public:
  bool WritePage(CSourFile& source, const SObj& page) override {
    MergedPage writer;
    writer.setIdentity(page);
    return writer.Write(*this, source);
  }
};

/// One source; the stream must outlive it.
struct Input {
  explicit Input(const char* path) : stream(path), source(stream) {}
  SourceStream stream;
  CSourFile source;
};

int fail(const std::string& what, int code) {
  std::cerr << "merge_pages: " << what << " gave " << code << '\n';
  return 1;
}

int openSources(Merger& output, std::vector<std::unique_ptr<Input>>& inputs, char** first, char** last) {
  for (char** path = first; path != last; ++path) {
    inputs.push_back(std::make_unique<Input>(*path));
    CSourFile& source = inputs.back()->source;
    try {
      if (const int code = source.CheckAndInit()) return fail(*path, code);
    } catch (const CFileError&) {
      return fail(*path, 1000);
    }
    source.pageObjects.clear();  // the form of a source doesn't travel
    source.switches.annotsEnable = AnnotsEnableAll;
    source.switches.formsEnable = AcroFormsEnableAll;
    output.files[static_cast<int>(inputs.size())] = &source;
  }
  return 0;
}

void write(Merger& output, CSourFile& anySource) {
  output.Read();
  output.TidyObj();
  output.append(output.header).append("\n%\xE2\xE3\xCF\xD3\n");
  output.endMark = output.size();
  output.Write();
  output.fileInfo.root = SObj(output.nextNumber++, 0);
  output.catalog().Write(output, anySource);
  output.fileInfo.Tidy();
  output.fileInfo.WriteXRef(output);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) return std::cerr << "usage: merge_pages OUT.pdf SELECTION IN.pdf...\n", 2;
  Merger output;
  std::vector<std::unique_ptr<Input>> inputs;
  if (openSources(output, inputs, argv + 3, argv + argc) != 0) return 1;
  if (const int code = output.SetReadFileAndPage(argv[2])) return fail("the selection", code);
  write(output, inputs.front()->source);
  std::ofstream file(argv[1], std::ios::binary);
  file << static_cast<std::string&>(output) << '\n';
  return file.flush() ? 0 : fail("writing", 0);
}
