#pragma once

#include <istream>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "TesselPage/Structure/tessel_destinfo.h"
#include "TesselPage/Structure/tessel_destlookup.h"
#include "TesselPage/Structure/tessel_fileinfo.h"
#include "TesselPage/Structure/tessel_identitytable.h"
#include "TesselPage/Structure/tessel_objectstreams.h"
#include "TesselPage/Structure/tessel_paperinfo.h"
#include "TesselPage/Structure/tessel_sobj.h"
#include "TesselPage/Structure/tessel_sourcebuffer.h"
#include "TesselPage/Syntax/tessel_token.h"
#include "TesselPage/tessel_desttd.h"
#include "TesselPage/tessel_types.h"

namespace TESSEL {

class CCatalog;

/// Title and type of a form field.
struct FldTilAndType {
  std::string title;
  std::string type;
};

/// What the host asked for; a memory source takes these over from the real one.
struct SourceSwitches {
  PgCmTD pageMatrix;                        ///< setPageCm
  unsigned annotsEnable = 0;                ///< setAnnotsEnable
  std::vector<std::string> customSubtypes;  ///< setAnnotsCustomSubtype
  unsigned formsEnable = 0;                 ///< setAcroFormsEnable
  int currentRotation = 0;                  ///< /Rotate of the page being read, degrees
};

/// Type and flags of a form field, as its object has them (ISO 32000-2, table 226).
struct FieldInfo {
  std::string type;
  int flags = 0;
};

/// An input stream that knows the document behind it: it shares the buffer of the stream it is built on and
/// owns the tables of one source. All readers share its one position, so a reader that looks elsewhere puts
/// it back. A memory source (isSubSource) reads one object's text from memory and shares the real source's
/// entry table.
class CSourFile : public std::istream {
 public:
  /// Takes the buffer; reads nothing. The stream must outlive this source. Failed from the start when the
  /// buffer is that of a path that could not be opened.
  explicit CSourFile(std::istream& stream);
  /// A memory source over `text`, with the entry table and the switches of `real`. The text is owned.
  CSourFile(std::string text, CSourFile& real);
  /// A source over a text that has no document behind it, as the getters scan their own results with.
  explicit CSourFile(std::string text);
  ~CSourFile() override;
  CSourFile(const CSourFile&) = delete;
  CSourFile& operator=(const CSourFile&) = delete;

  /// Header, cross-reference data, catalog, page tree.
  /// @return 0; 1000 no readable PDF; 1001 the cross-reference data could not be read
  /// @throws CFileError
  int CheckAndInit();
  /// The second half of CheckAndInit, without header and cross-reference data.
  int InitOther();
  /// Reads tokens up to a match; false at the end of the stream. Doesn't throw.
  bool FindStr(const std::string& word);
  /// Records that a page needs an object. One already there keeps its flags. `object` is not changed: whether
  /// it is a shareable stream, and under which digest, is found out by the harvest when it first needs to
  /// know.
  void insertFileObject(const SObj& object);

  bool isPage(const SObj& object) const { return mainSource().pageSet.count(object) != 0; }
  bool isPageObject(const SObj& object) const { return pageObjects.count(object) != 0; }

  /// The source with the file behind it: itself, or the real source of a memory source.
  CSourFile& mainSource() { return realSource ? *realSource : *this; }
  const CSourFile& mainSource() const { return realSource ? *realSource : *this; }

  /// Bytes that may be looked at in place: the whole buffer when it lies in memory. `found` tells whether it
  /// does.
  std::string_view span(bool& found) const { return spanOf(rdbuf(), found); }

  std::unique_ptr<CCatalog> catalogObj;  ///< made for a source with a document behind it
  CFileInfo fileInfo;
  ObjectStreams objectStreams;
  std::set<SObj> pageObjects;  ///< every object that a page needs; grows over the source's life
  std::string version;         ///< header literal, such as "%PDF-1.7"
  std::vector<SObj> pageList;  ///< pages in document order
  std::unordered_set<SObj, SObjHash> pageSet;  ///< the same, to be asked
  long long headerOffset = 0;                  ///< position of "%PDF-"
  std::set<SObj> xrefStreamObjs;               ///< cross-reference streams, which are never copied
  bool isSubSource = false;
  /// No "endstream" begins at this position or behind it: found once, so that many bodies without an end word
  /// don't each search the rest of the file.
  std::streamoff noEndWordFrom = std::numeric_limits<std::streamoff>::max();
  int curPage = 0;  ///< the page that is being read, from 1
  SourceSwitches switches;

  // Page tree.
  std::map<SObj, CPaperInfo> paperInfoMap;
  std::map<SObj, SObj> parentMap;              ///< a node to its /Parent
  InheritedAttrs inheritedAttrs;               ///< last published by a /Pages node
  std::map<SObj, ResourceNode> resourceNodes;  ///< /Pages nodes that pages climbed to for their resources

  // Filled for the selected page.
  std::vector<SObj> pageContentObjs;
  std::set<SObj> pageContentSet;  ///< keeps the vector free of repeats
  std::set<SObj> pageResourceObjs;
  std::set<SObj> pageAnnotObjs;
  std::set<SObj> pieceFilteredObjs;  ///< not cleared between pages
  std::map<SDestObjKey, SDestInfo> destObjMap;
  IdentitySet actionObjs;  ///< objects with an action
  DestLookup destLookup;   ///< what a destination's target is looked up in; for the source's whole life
  std::map<SObj, FieldInfo> parentFields;  ///< fields that widgets asked for what they lack
  long long indirectNumbers = 0;  ///< that annotations took from arrays behind references; they are bounded
  std::set<SObj> documentObjs;    ///< reached by the form and name readers

  // For a merge.
  SObj newRoot;  ///< node of the output's page tree that this source's pages go to
  /// Fields that CAcroForm::Write lists; filled by nothing in the library.
  std::map<SObj, FldTilAndType> formFields;

  /// Looks a named destination up in the name tree of the catalog's /Dests (ISO 32000-2, 12.3.2.4), which is
  /// known from the first harvest on. Every node of the tree is read once. The position is kept.
  /// @param[out] destination  page and view; style 2 and page 0 when there is no such name
  /// @return false for an empty name
  bool getNameDest(const std::string& name, DestTD& destination);

  /// Enters an object into pageObjects as it stands; one already there keeps its flags.
  /// @return whether it is new
  bool enterPageObject(const SObj& object);
  /// Takes an object out of pageObjects.
  void erasePageObject(const SObj& object);
  /// Identities entered into pageObjects since the harvest last took them (some may have been erased again):
  /// what lets a page cost what it adds, not what stands there already.
  std::vector<SObj> newPageObjects;
  /// Identities erased from pageObjects since the harvest last took them.
  std::vector<SObj> erasedPageObjects;

 private:
  bool findHeader(std::string& line);
  bool readHeader();
  int walkPages(bool skipUnknownNodes);

  CSourFile* realSource = nullptr;
  std::string ownText;
  std::optional<SpanBuffer> ownBuffer;  ///< over ownText
};

/// A reader that writes an object's text with all its references dropped, and tells whether there were any.
/// @param[out] text  as the object map would hold it, its leading line feed off
/// @return false when it can't be written
bool plainText(CSourFile& source, const SObj& object, std::string& text, bool& dropped);

}  // namespace TESSEL
