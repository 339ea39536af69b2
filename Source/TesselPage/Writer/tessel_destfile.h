#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "TesselPage/Structure/tessel_fileinfo.h"
#include "TesselPage/Structure/tessel_sobj.h"
#include "TesselPage/Writer/tessel_newobjtable.h"

namespace TESSEL {

class CCatalog;
class CPages;
class CSourFile;

/// A text that numbers are appended to.
class Facade_stringstream : public std::string {
 public:
  using std::string::string;

  /// Appends the number in decimal.
  Facade_stringstream& operator<<(int number);
  /// Appends the number with six significant digits as "%g" gives it: 612, 0.5, 1.23457e+06.
  Facade_stringstream& operator<<(double number);
};

/// Numbers that a CDestFile looks up behind its own table, so that a long table isn't built anew for each
/// text.
class NumberSource {
 public:
  virtual ~NumberSource() = default;
  /// The new identity of `object` of the source in hand, or null.
  virtual const SObj* find(const SObj& object) const = 0;
};

/// The target of every object copy: a text buffer with a renumbering table. Made on the stack, given the
/// wanted numbers, written to by CObj::LocalObj, and its text taken. No file is ever opened.
///
/// It can also write a whole file of selected pages of several sources. The caller enters the sources in
/// `files`, from 1, then
///   SetReadFileAndPage   says which pages
///   Read                 reads what they need; the header becomes the highest of the sources
///   TidyObj              numbers it
///   (the caller puts the header line into the buffer and sets endMark behind it)
///   Write                writes objects, pages and page tree
/// and the caller closes the file with CCatalog::Write of catalog(), CFileInfo::Tidy and WriteXRef, or, with
/// /Info and /Encrypt, with CFileInfo::Write.
class CDestFile : public Facade_stringstream {
 public:
  /// The name isn't kept.
  explicit CDestFile(const std::string& name = {});
  virtual ~CDestFile();
  CDestFile(const CDestFile&) = delete;
  CDestFile& operator=(const CDestFile&) = delete;

  /// Empties what a written file has left: header, selection, numbers, tables and page tree; the marks are 0
  /// and the next number is the first one plus 1. The sources stay. Always true.
  bool Init(const std::string& name = {});
  /// Stores the first number; the next Init numbers from it plus 1.
  void getStartObj(int number) { firstNumber = number; }

  /// Enters a new number; the first entry of a key stays.
  void insertNewObjTab(const NewObjTable& key, const SObj& newId);
  /// The new identity under (index, current file, object), or null: the own table first, then the number
  /// source.
  const SObj* findNewObj(const SObj& object, int index = 0) const;
  /// Enters the number reserved for a destination met in an object; `index` is the place of a direct
  /// annotation dictionary. A table of its own: an annotation's own number and that of its destination have
  /// the same key.
  void insertDestination(const NewObjTable& key, const SObj& newId) { destinations.emplace(key, newId); }
  /// The number reserved for the destination of `object`, or null.
  const SObj* findDestination(const SObj& object, int index = 0) const {
    const auto found = destinations.find({index, currentFile, object});
    return found == destinations.end() ? nullptr : &found->second;
  }
  /// The new identity under (0, file, object), whatever the current file; null when there is none.
  const SObj* findNewObjOf(int file, const SObj& object) const;
  /// Lets look-ups with index 0 of the current file fall back on `source`, which isn't owned. Null: none.
  void setNumberSource(const NumberSource* source) { fallback = source; }

  /// Notes where the object about to be written begins: behind the last "endobj", counted from the start.
  void RecordObjInfo(const SObj& id);

  /// The source of the current file, or of that number; null when there is none.
  CSourFile* GetSourFile() const { return GetSourFile(currentFile); }
  CSourFile* GetSourFile(int file) const;

  /// Parses a selection of pages such as "1:2,4~6 2:0" into pageSelection, in place of what was there:
  /// file and page, further pages of the same file behind ",", the end of a range behind "~" or "-", a blank
  /// in front of the next file. Page 0 is all pages of the file, "0:0" all pages of all files. Pages that a
  /// file doesn't have are left out.
  /// @return 0, or 1006 for a text that breaks the rules and for one that selects nothing
  int SetReadFileAndPage(const std::string& text);
  /// Makes the header the highest version of the sources. Always 0.
  int ReadHeader();
  /// Reads each selected page, so that the page objects of its source hold the page and all that it needs;
  /// an entry (0, 0) of the selection is replaced by all pages of all sources. Always 0: a page that can't be
  /// read has what was read until then.
  int ReadPageObj();
  /// ReadHeader and ReadPageObj. Always 0.
  int Read();
  /// Gives a new number to every page object of every source.
  void TidyObj();
  /// Writes the page objects of all sources but for pages. Always 0.
  int WritePageObj();
  /// Writes the selected pages and a page tree of one node for each run of pages of one source. Always 0.
  int WritePages();
  /// Makes the entry of object 0, then WritePageObj and WritePages. Always 0.
  int Write();
  /// Deletes all the sources, which must have been made by `new`.
  void DeleteSour();
  /// Writes one selected page of the current source: a CPage's Write. Our own addition: a caller that wants
  /// other pages than CPage copies overrides it. WritePages has numbered the page's node before.
  virtual bool WritePage(CSourFile& source, const SObj& page);

  /// Root of the output's page tree, its identity from WritePages on; made when first asked for.
  CPages& rootPages();
  /// Catalog of the output; made when first asked for.
  CCatalog& catalog();

  std::string header;  ///< version literal, the highest of the sources
  static constexpr const char* defaultVersion = "%PDF-1.4";
  /// Whether the strings and the stream of the object being written are encrypted.
  bool encrypts() const { return fileInfo.encrypt.activeForWriting() && currentObject.objNum >= 1; }

  bool rawFlag = false;     ///< references are copied as they stand
  int currentFile = 0;      ///< number of the source whose objects are being written
  std::size_t start = 0;    ///< buffer size that counts as offset 0
  std::size_t endMark = 0;  ///< buffer size behind the last "endobj"
  SObj currentObject;  ///< the object being written: the key for encryption; number 0: nothing is encrypted
  CFileInfo fileInfo;  ///< of the output: its table, trailer and security settings
  std::map<int, CSourFile*> files;  ///< not owned; a merge counts them from 1
  /// File and page, both from 1; page 0: all of the file's pages.
  std::vector<std::pair<int, int>> pageSelection;
  int nextNumber = 1;   ///< next new object number
  int firstNumber = 0;  ///< Init restarts the numbering behind it
  /// Nodes of the output's page tree, each with a run of pages of one source, by the node's new identity.
  std::map<SObj, std::unique_ptr<CPages>> pages;

 private:
  void writeObjects(CSourFile& source);
  void writeSelected(CSourFile& source, int page);

  std::map<NewObjTable, SObj> newNumbers;
  std::map<NewObjTable, SObj> destinations;
  const NumberSource* fallback = nullptr;
  std::unique_ptr<CPages> root;
  std::unique_ptr<CCatalog> ownCatalog;
};

}  // namespace TESSEL
