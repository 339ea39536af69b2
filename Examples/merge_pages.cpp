// Merges pages of several PDFs into one, with the class set's own writer of files.
//
//   merge_pages OUT.pdf SELECTION IN.pdf...      merge_pages out.pdf "1:0 2:1,3~4" a.pdf b.pdf
//
// The writer copies a page without the keys that a host places anew: /Contents, /Annots and its boxes. This
// merger wants pages as they are, so it copies them as plain objects and adds what they inherit in their
// source.
#include <TesselPage/Model/tessel_catalog.h>
#include <TesselPage/Model/tessel_pageobj.h>
#include <TesselPage/Structure/tessel_sourcebuffer.h>
#include <TesselPage/Structure/tessel_sourfile.h>
#include <TesselPage/Writer/tessel_destfile.h>
#include <TesselPage/tessel_enables.h>

#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

using namespace TESSEL;

namespace {

/// The value behind `key` in a dictionary's text: an array or a dictionary with its brackets, or what stands
/// there up to the next key or the end. Empty when there is none.
std::string valueBehind(const std::string& text, const std::string& key) {
  const std::size_t place = text.find(key);
  if (place == std::string::npos) return {};
  const std::size_t begin = place + key.size();
  int depth = 0;  // both bytes of a dictionary's bracket count
  for (std::size_t at = begin; at < text.size(); ++at) {
    if (depth == 0 && (text[at] == '/' || text[at] == '>')) return text.substr(begin, at - begin);
    if (text[at] == '[' || text[at] == '<') ++depth;
    if (text[at] != ']' && text[at] != '>') continue;
    if (--depth == 0) return text.substr(begin, at + 1 - begin);
  }
  return {};
}

class Merger : public CDestFile {
 public:
  bool WritePage(CSourFile& source, const SObj& page) override;

  /// Text of a node of the source's page tree, with the new numbers; copied once.
  const std::string& nodeText(CSourFile& source, const SObj& node) {
    const auto [place, isNew] = nodes.try_emplace({currentFile, node});
    if (!isNew) return place->second;
    const std::size_t had = size();
    CObj(node).LocalObj(*this, source, nullptr);
    place->second = substr(had);
    resize(had);
    return place->second;
  }

 private:
  std::map<std::pair<int, SObj>, std::string> nodes;
};

/// A page that is copied as it stands. Its new parent, and what it inherits in its source, are put in front.
class MergedPage : public CPage {
 public:
  explicit MergedPage(Merger& output) : merger(output) {}

  bool WriteObj(CDestFile& dest, CSourFile& source, bool* dropped) override {
    const std::size_t begin = dest.size();
    if (!CObj::WriteObj(dest, source, dropped)) return false;
    const std::string keys = inherited(source.mainSource(), dest.substr(begin));
    const std::size_t dictionary = dest.find("<<", begin);
    if (dictionary != std::string::npos) dest.insert(dictionary + 2, keys);
    dest.endMark = dest.size();
    return true;
  }

 private:
  std::string inherited(CSourFile& source, const std::string& page) {
    const SObj& parent = source.newRoot;
    std::string keys = "/Parent " + std::to_string(parent.objNum) + " 0 R";
    std::set<SObj> climbed;
    for (SObj at = source.parentMap[id]; at.objNum != 0 && climbed.insert(at).second;
         at = source.parentMap[at]) {
      const std::string& node = merger.nodeText(source, at);
      for (const char* key : {"/MediaBox", "/CropBox", "/Rotate", "/Resources"}) {
        const bool known = page.find(key) != std::string::npos || keys.find(key) != std::string::npos;
        const std::string value = known ? std::string() : valueBehind(node, key);
        if (!value.empty()) keys.append(key).append(" ").append(value).append("\n");
      }
    }
    return keys;
  }

  Merger& merger;
};

bool Merger::WritePage(CSourFile& source, const SObj& page) {
  MergedPage writer(*this);
  writer.setIdentity(page);
  return writer.Write(*this, source);
}

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
    // Sources behind a password are read as they are encrypted.
    if (source.fileInfo.encrypt.secondAccess) return fail(*path, 3001);
    source.pageObjects.clear();  // the form of a source doesn't travel
    source.switches.annotsEnable = AnnotsEnableAll;
    source.switches.formsEnable = AcroFormsEnableAll;
    output.files[static_cast<int>(inputs.size())] = &source;
  }
  return 0;
}

/// Nodes of the source's page tree stay behind, whatever else leads to them.
void leaveTreeBehind(CSourFile& source) {
  for (const SObj& page : source.pageList) {
    SObj node = source.parentMap[page];
    while (source.pageObjects.erase(node) != 0) node = source.parentMap[node];
  }
}

void write(Merger& output, CSourFile& anySource) {
  output.Read();
  for (const auto& [number, source] : output.files) leaveTreeBehind(*source);
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
