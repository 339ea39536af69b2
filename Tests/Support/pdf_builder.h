#pragma once

#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/tessel_page.h"

/// Builds PDF files in memory, their bodies in sight of the test.
namespace tessel_test {

/// An opened source that owns its bytes.
struct Source {
  std::unique_ptr<std::istringstream> stream;
  std::unique_ptr<TESSEL::CSourFile> file;
  int result = -1;  ///< of CheckAndInit

  TESSEL::CSourFile& operator*() const { return *file; }
  TESSEL::CSourFile* operator->() const { return file.get(); }
};

/// An exported object that owns its bytes; `init` has run.
struct OpenPage {
  std::unique_ptr<std::istringstream> stream;
  std::unique_ptr<TESSEL::CTesselPage> page;
  int result = -1;  ///< of init

  TESSEL::CTesselPage& operator*() const { return *page; }
  TESSEL::CTesselPage* operator->() const { return page.get(); }
};

class PdfBuilder {
 public:
  using Identity = std::pair<int, int>;

  /// Header line, "%PDF-1.7" unless told.
  PdfBuilder& header(std::string line);
  /// Bytes in front of the header; offsets stay relative to it.
  PdfBuilder& before(std::string bytes);
  /// An object with this body; generation 0.
  PdfBuilder& object(int number, std::string body) { return object(Identity{number, 0}, std::move(body)); }
  PdfBuilder& object(Identity id, std::string body);
  /// A stream object; `entries` are what its dictionary holds besides /Length.
  PdfBuilder& stream(int number, const std::string& entries, const std::string& data);
  /// An object that lies in object stream `container`; makes the file one with a cross-reference stream.
  PdfBuilder& compressed(int container, int number, std::string body);
  /// The /Root object; 1 unless told.
  PdfBuilder& root(int number);
  /// Further entries of the trailer dictionary.
  PdfBuilder& trailer(std::string entries);
  /// Catalog 1, page tree 2, and page 3 with these entries: the least document.
  PdfBuilder& onePage(const std::string& pageEntries, const std::string& catalogEntries = {});
  /// Catalog 1, page tree 2 with these kids, in order; the test adds the pages.
  PdfBuilder& pageTree(const std::vector<int>& kids, const std::string& pagesEntries = {});

  /// The file's bytes. Calling it again gives the same bytes.
  std::string build() const;
  /// Offset of an object in what build() gives, relative to the header.
  long long offsetOf(int number) const;

  Source open() const { return openBytes(build()); }
  OpenPage openPage(const std::string& password = {}) const { return openPageBytes(build(), password); }

  static Source openBytes(std::string bytes);
  static OpenPage openPageBytes(std::string bytes, const std::string& password = {});

 private:
  struct Layout {
    std::string bytes;
    std::map<Identity, long long> offsets;                 ///< relative to the header
    std::map<int, std::pair<int, int>> compressedEntries;  ///< number to container and index
  };
  Layout layOut() const;
  void appendObject(Layout& layout, Identity id, const std::string& body) const;
  void appendContainers(Layout& layout) const;
  std::string trailerEntries(int size) const;
  void appendTable(Layout& layout) const;
  void appendXRefStream(Layout& layout) const;

  std::string headerLine = "%PDF-1.7";
  std::string prefix;
  std::vector<std::pair<Identity, std::string>> objects;
  std::map<int, std::vector<std::pair<int, std::string>>> containers;
  int rootNumber = 1;
  std::string trailerText;
};

/// A fresh builder: `pdf().onePage("/MediaBox [0 0 100 100]").open()`.
inline PdfBuilder pdf() { return {}; }

/// A stream object's body: dictionary with /Length, "stream", data, "endstream".
std::string streamBody(const std::string& entries, const std::string& data);

/// `data` packed as FlateDecode takes it.
std::string deflated(const std::string& data);

/// Identities of a set of objects, to be compared with a written-out list.
template <class Objects>
std::vector<std::pair<int, int>> identities(const Objects& objects) {
  std::vector<std::pair<int, int>> found;
  for (const TESSEL::SObj& object : objects) found.push_back(object.identity());
  return found;
}

/// Object numbers of a set of objects.
template <class Objects>
std::vector<int> numbers(const Objects& objects) {
  std::vector<int> found;
  for (const TESSEL::SObj& object : objects) found.push_back(object.objNum);
  return found;
}

}  // namespace tessel_test
