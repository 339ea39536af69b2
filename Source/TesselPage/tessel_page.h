#pragma once

#include <iosfwd>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "TesselPage/tessel_desttd.h"
#include "TesselPage/tessel_enables.h"
#include "TesselPage/tessel_security.h"
#include "TesselPage/tessel_text.h"
#include "TesselPage/tessel_types.h"

namespace TESSEL {

class CEncrypt;
struct PageState;

/// What the integer results of the interface mean.
namespace Result {
inline constexpr int success = 0;
inline constexpr int passwordNotTried = 1;     ///< longer than 32 bytes, or the encryption uses no password
inline constexpr int passwordDoesNotFit = 5;   ///< of SetSourcePassword: it opens the source for nobody
inline constexpr int notProtected = 8;         ///< the source needs no password, so nothing was done
inline constexpr int notReadable = 1000;       ///< not a readable PDF
inline constexpr int xrefNotReadable = 1001;   ///< the cross-reference data could not be read
inline constexpr int badRange = 1006;          ///< a range text or a box is not valid
inline constexpr int wrongPassword = 3001;     ///< no password or key opens the file
inline constexpr int damagedData = 5000;       ///< a stream's data is damaged
inline constexpr int exceptionCaught = 6000;   ///< a std::exception reached the interface
inline constexpr int pageOutOfRange = 8000;    ///< page number out of range, or a page without a usable size
inline constexpr int objectNotWritten = 8001;  ///< a needed object of the document could not be written out
inline constexpr int badKeyLength = 8003;      ///< key length not from 5 to 32 bytes
}  // namespace Result

/// Pages of one source PDF, for a host that places them into the PDF that it is writing.
///
/// The class is a map from object identity, in the host's numbering, to object text: after a page has been
/// selected and setStartObjNo has run, it holds every object that the page needs and that an earlier page
/// hasn't brought. A text is what stands between "obj" and "endobj"; the host writes both words around it. An
/// empty text stands for an object that could not be written: its number stays used.
///
/// Order of calls: construct; init; then for each page setPageNo, setOld2NewObjectVector and setStreamObjMap,
/// setStartObjNo, the getters, the walk over the map.
///
/// Threads: one object is used by one thread at a time; distinct objects on distinct streams share nothing.
class CTesselPage : public std::map<std::pair<int, int>, std::string> {
 public:
  using Identity = std::pair<int, int>;                ///< object number and generation
  using IdentityPair = std::pair<Identity, Identity>;  ///< old identity, new identity
  using StreamObjMap =
      std::map<std::string, Identity>;  ///< digest of a stream object to its identity in the output

  /// Page boxes (ISO 32000-2, 14.11.2); `visible` is the crop box cut to the media box.
  enum EBox { mediaBox = 0, cropBox = 1, bleedBox = 2, trimBox = 3, artBox = 4, visibleBox = 5 };

  /// Opens the file; nothing is read. A file that can't be opened shows in init. The path is copied.
  CTesselPage(const char* path, const std::string& password);
  /// Reads from `in`, which stays the caller's and must outlive this object. It must be seekable.
  CTesselPage(std::istream& in, const std::string& password);
  virtual ~CTesselPage();
  CTesselPage(const CTesselPage&) = delete;
  CTesselPage& operator=(const CTesselPage&) = delete;

  /// Opens the source: header, cross-reference data, catalog, page tree. Must be the first call. A source
  /// that needs another password opens as well, and its texts are noise: ask getPasswordState.
  /// @return 0, 1000, 1001, 6000 or 8001; anything but 0 ends the use of the object
  int init();
  /// Selects a page, counted from 1, and reads what it needs; the map is emptied. The page that is selected
  /// already stays as it is, with its map.
  /// @return 0; 8000 out of range (the number counts as selected); 1000 a damaged page; 6000
  int setPageNo(int pageNo);

  /// The harvest: numbers the page's objects from `startNo` on and fills the map. Always 0.
  virtual int setStartObjNo(int startNo);
  /// All pairs of the old-to-new table in key order, then all pairs harvested so far in key order.
  std::vector<IdentityPair> getOld2NewObjectVector() const;
  /// Objects that the output has already; merged by the next setStartObjNo, where a pair known earlier stays.
  void setOld2NewObjectVector(const std::vector<IdentityPair>& pairs);
  /// The host's table of stream digests, which the library only looks up; not owned. Null turns the sharing
  /// off.
  void setStreamObjMap(StreamObjMap* map);
  /// The host's page object, for the annotations.
  void setCurPageObj(int num, int gen);
  /// Moves the iterator on, without a test of the end. Always 0.
  static int next(iterator& it);
  static int next(const_iterator& it);

  /// Beyond the interface as it stands, read only: the pairs that the last setStartObjNo added to the
  /// harvest. A host that hands these to setOld2NewObjectVector before the next page, in place of the growing
  /// whole, pays only for what is new.
  const std::vector<IdentityPair>& getNewObjectPairs() const;
  /// Beyond the interface as it stands, read only: the digest of the plain text of the shareable stream that
  /// the last setStartObjNo put into the map under `object`, as isStreamObj would give it; empty when it
  /// isn't one.
  std::string getStreamDigest(const Identity& object) const;

  /// Whether `text`, an object's body, is a stream that may be shared, and then its digest of 16 bytes (MD5).
  static bool isStreamObj(const std::string& text, std::string& digest);
  /// Fills the set of objects that serve as a stream's /Length; once in the life of this object.
  void lengthObjectFilt();
  void lengthObjectFilt_1(iterator it);
  void refObjFilt(iterator it);
  /// Whether the entry's strings are to be left as they are.
  bool check(iterator it);
  /// The text with its strings in the clear; unchanged as long as strings aren't restorable, which nothing
  /// switches on.
  std::string decryptObject(const std::string& text, int num, int gen) const;
  /// Bytes of the entry's stream data, line ends behind it not counted; 0 when it has none.
  int calcStreamLength(const iterator& it) const;
  /// The place of the entry's /Length value, through references: the text that holds it, the value's bounds,
  /// the entry. The outputs stay as they are when there is none. Always 0.
  int findLengthPos(const iterator& it, std::string** holder, char** valueBegin, char** valueEnd,
                    iterator* holderIt);
  /// Undoes the escapes of a literal string; appended to `out`. False when parentheses don't balance.
  static bool unescapeStringObj(const std::string& in, std::string& out);
  /// Undoes "#xx" in a name; appended to `out`. Always true.
  static bool unescapeNameObj(const std::string& in, std::string& out);
  /// Turns each "\/" into "/"; appended to `out`. Always true.
  static bool unescapeFilseSpecification(const std::string& in, std::string& out);

  /// The page's content, decoded, each stream with one 0x0D behind it. The text stays valid until the next
  /// call.
  /// @return 0, or the filter service's code, and `*out` is then left alone
  int getPageContents(const std::string** out);
  /// The page's resource dictionary in the harvest's numbering; "<< >>" when there is none.
  /// @param pageObjNo  number of the page's own object in the output, 0 when it has none: then nothing is
  /// inherited
  /// @return 0; 8001 when an indirect dictionary can't be written, and `*out` is then left alone
  int getPageRes(const std::string** out, int pageObjNo);
  /// Text of the page's dictionary, followed by those of its ancestors up to one with /Resources when
  /// `pageObjNo` isn't 0.
  std::string getPageRootString(int pageObjNo) const;
  /// Value of the page's /Group, as getPageRes last found it.
  const std::string& getPageGroup() const;
  /// Beyond the interface as it stands, read only: the page's only content stream as it is stored
  /// (decrypted), with its filter entries as text such as "/Filter /FlateDecode"; for a host that would only
  /// pack the decoded content again.
  /// @return false when there isn't exactly one content stream, it can't be read, or a filter entry is a
  /// reference
  bool getStoredContents(std::string& data, std::string& filterEntries) const;

  /// Where the host puts the page; the annotations' geometry goes through it. To be set before getPageAnnots
  /// and, as annotations that are objects are written by it, before setStartObjNo. Always 0. Requires: init.
  int setPageCm(const PgCmTD& cm);
  /// Which annotations go with a page, by subtype. To be set before setPageNo. Requires: init.
  void setAnnotsEnable(TESSEL_AnnotsEnableE enable);
  /// Subtypes with their "/" that AnnotsEnableCustom stands for. To be set before setPageNo. Requires: init.
  void setAnnotsCustomSubtype(const std::vector<std::string>& subtypes);
  /// Which form fields go with a page, by field type. To be set before setPageNo. Requires: init.
  void setAcroFormsEnable(TESSEL_AcroFormsEnableE enable);
  /// The page's annotations in the harvest's numbering, moved by setPageCm: what stands within the brackets
  /// of /Annots, references and dictionaries in a row; empty when there are none. An array destination is a
  /// reference to the object that getDestVector tells of. The text stays valid until the next call.
  /// @return 0; `*out` is left alone when an annotation can't be written or has no readable /Rect
  int getPageAnnots(const std::string** out);
  /// The entries of the source's form dictionary (ISO 32000-2, 12.7.3) in the harvest's numbering, without
  /// its brackets; fields that no page has brought are missing from /Fields. The text stays valid until the
  /// next call.
  /// @param objNo  number of the object in the output that will hold the entries, 0 when there is none
  /// @return 0; 8001 when the dictionary can't be written. `*out` is then left alone, and so when forms are
  /// switched off
  int getAcroFormFields(const std::string** out, int objNo);

  /// Text of the catalog in the harvest's numbering; `objNo` is its number in the output, 0 when it has none.
  std::string getRootString(int objNo) const;
  /// The entries of the catalog's /Names in the harvest's numbering, without its brackets; empty when /Names
  /// is no object of its own. The text stays valid until the next call.
  /// @return 0; 8001 when the object can't be written, and `*out` is then left alone
  int getNames(const std::string** out);
  /// What the host has to write into each destination object that the page's annotations refer to, in the
  /// order of their numbers; a name that leads nowhere has page 0. Named destinations resolve from the first
  /// harvest on.
  std::vector<DestTD> getDestVector() const;
  /// The layers (optional content groups; ISO 32000-2, 8.11) that have reached the output so far: whether
  /// each is on, as far as the source's default configuration tells, and its order, made flat. Adds to both;
  /// what `shown` has already stays.
  void getCatalogOCProperties(std::map<Identity, bool>& shown, std::vector<Identity>& order);
  /// Beyond the interface as it stands, read only: the text of an object of the source, between "obj" and
  /// "endobj", in the clear, with the source's own references; empty when there is no such object. For what a
  /// host keeps together over all pages: forms, layers, names.
  std::string getSourceObject(const Identity& object) const;
  /// Beyond the interface as it stands, read only: the source's own identity of its catalog.
  Identity getRootObject() const;
  /// Beyond the interface as it stands, read only: the source's own identity of a page, counted from 1;
  /// numbers 0 when there is no such page.
  Identity getPageObject(int page) const;
  /// Beyond the interface as it stands: has the next setStartObjNo number and write these objects of the
  /// source once more, though the output has them; references in later texts go to the new ones. For
  /// annotations that go to another place than the one they were written for.
  void harvestAgain(const std::vector<Identity>& objects);
  /// The file key of the host's output, finished (ISO 32000-2, 7.6.4): strings and streams of the texts that
  /// leave from here on are encrypted under it and the number of the object that they go to. 16 bytes with
  /// revision 4 stand for AES-128, 32 bytes with revision 5 (also for a dictionary of revision 6) for
  /// AES-256, all others for RC4. The bytes are copied. Without this call all leaves in the clear.
  /// The initial vectors of AES come from `rand`, unless the host has called
  /// `pcrypt::PDFEncryptionManager::useSystemRandom`. Every host should: a 256-bit file key that is made
  /// without it is one that everybody knows.
  /// @param length  bytes of the key
  /// @return 0; 8003 when `length` isn't from 5 to 32, and nothing is changed
  int setEncryptKey(const unsigned char* key, int length, int revision);
  /// Fills key length in bits, key, method, revision and, with a key set, version 4 and the access state of
  /// `out`. The version doesn't follow the key's kind.
  void getEncryptInfo(CEncrypt& out) const;
  /// Opens the source anew with another password, of at most 32 bytes. Requires: init made a source, with
  /// whatever result.
  /// @return as the other form
  /// @throws int  the result of init that says why the source doesn't open
  int SetSourcePassword(const std::string& password);
  /// Tries the password at hand.
  /// @return 1 it can't be tried: longer than 32 bytes, or the encryption uses no password; 8 the source
  /// needs none; 2 the empty password opens the source and this one is the owner's; 3 it is the owner's; 4
  /// the user's; 5 (Result::passwordDoesNotFit) neither; 6 the empty password opens the source and this one
  /// isn't the owner's; 7 it is both
  int SetSourcePassword() const;
  /// Beyond the interface as it stands: what SetSourcePassword() should give. That one takes a right
  /// password for a wrong one (5, or 6), though the source opens with it, when the first element of the
  /// source's /ID begins with a zero byte (revisions 3 and 4), and an owner password when the user password
  /// has a "(" in it (revision 2). A host that asks whether a password fits asks here.
  int getPasswordState() const;
  /// Beyond the interface as it stands: what getPasswordState() would tell after SetSourceLongPassword with
  /// this password. The source isn't read anew, and stays open with the password at hand, so a host that has
  /// several passwords can choose. Requires: init made a source.
  int getPasswordState(const std::string& password) const;
  /// Beyond the interface as it stands, before init(): has a source of which only attached files are
  /// encrypted (/StmF and /StrF name the identity filter, or nothing) read as it is. It needs no password
  /// then, and getPasswordState() gives 6 where none fits; attached files stay encrypted in any case. Without
  /// this call the strings and streams of such a source are decrypted like all others.
  void heedIdentityFilters();
  /// Beyond the interface as it stands: SetSourcePassword for a password of any length, of which 127 bytes
  /// count in a source of revision 5 or 6 and 32 in an older one. Output intents found before are forgotten,
  /// where the other forms leave them in front.
  int SetSourceLongPassword(const std::string& password);
  /// Text of the source's encryption dictionary; empty when it has none, or has it direct in the trailer.
  std::string getEncryptString() const;
  /// How far the password has led, and what the source permits, as its dictionary's text tells it (ISO
  /// 32000-2, table 22): 0 and -4 for a source that isn't encrypted. Always 0.
  int getSecurity(PASSWORD_TYPE& type, int& permissions) const;
  /// Beyond the interface as it stands, read only: what the source's encryption dictionary tells, also one
  /// that is direct in the trailer. Requires: init made a source.
  SSourceSecurity getSourceSecurity() const;
  /// Always 1.
  int GetSourceFileInfo(SFileInfo& out) const;
  /// A fingerprint of the source's bytes, to know it again. The position of the stream is kept.
  SFileKey getFileKey() const;

  /// The header literal, such as "%PDF-1.7".
  const std::string& getHeaderVersion() const;

  /// What the source claims to be, in three fields. Bits 0 to 7: 0 to 7 for PDF 1.0 to 1.7, 10 for any other
  /// header, or, with the X kinds 1 to 6, the version that the standard builds on. Bits 8 to 11: PDF/X kind
  /// (ISO 15930): 1 X-1:2001, 2 X-1a:2001, 3 X-3:2002, 4 X-1a:2003, 5 X-2:2003, 6 X-3:2003, 7 X-4, 8 X-4p, 9
  /// X-5g, 10 X-5n, 11 X-5pg, 15 unknown. Bits 12 to 15: PDF/A kind (ISO 19005): 1 A-1a, 2 A-1b, 3 to 5 A-2
  /// with conformance A, B, U, 6 to 8 A-3 likewise, 15 unknown. What can't be read makes no claim.
  int getVersion() const;
  /// Whether the catalog says that the document is tagged (ISO 32000-2, 14.7.1).
  bool isMarked() const;
  /// The number of output intents that the source has (ISO 32000-2, 14.11.5). More than those that the
  /// getters below know of when one of them can't be read.
  unsigned short getOutputIntentsCount() const;
  /// The entries of an output intent, counted from 0. Strings are as they stand in the file: without their
  /// outer parentheses, with their escapes, in hexadecimal with "<" and ">". Empty where the intent has no
  /// such entry, and for an index that there isn't.
  void getOPIInfo(unsigned short index, icu::UnicodeString& out) const;
  void getOPIOutputCondition(unsigned short index, icu::UnicodeString& out) const;
  std::string getOPIOutputConditionIdentifier(unsigned short index) const;
  std::string getOPIS(unsigned short index) const;  ///< subtype, with its "/"
  std::string getOPIRegistryName(unsigned short index) const;
  std::string getOPIDestOutputProfile(unsigned short index) const;  ///< the ICC profile's decoded bytes
  std::string getOPIProfileName(unsigned short index) const;
  std::string getOPIF(unsigned short index) const;
  std::string getOPIFS(unsigned short index) const;
  std::string getOPIProfileCS(unsigned short index) const;
  std::string getOPICheckSum(unsigned short index) const;
  std::string getOPIICCVersion(unsigned short index) const;

  int getPageCount() const;
  /// The box that getPageSize and getPageSizeEx without a box argument take. Always 0.
  int setBoxOption(EBox box);
  /// Size of the selected page in points, by the box option, rotation applied.
  /// @return 0, or 8000 when both values are below 1e-5 (they are stored all the same)
  int getPageSize(float& w, float& h) const;
  /// Size of any page, counted from 1. Option 5 cuts the crop box to the media box, any other takes it as it
  /// is.
  int getPageSize(int page, float& w, float& h, EBox box) const;
  /// Origin and size of the selected page in points, by the box option, rotation not applied.
  int getPageSizeEx(float& x, float& y, float& w, float& h) const;
  /// Rotation of the selected page in degrees, clockwise, a multiple of 90.
  int getPageRotate(int& rotate) const;
  /// @return 0, or 8000 when the page has no record
  int getPageRotate(int page, int& rotate) const;
  /// A box of the selected page as its own dictionary has it, else its media box.
  int getPageBox(EBox box, float& l, float& b, float& r, float& t) const;
  /// A box of any page, inheritance and defaults applied. @return 0, 8000 no such page, 1006 no such box
  int getPageBox(int page, EBox box, float& l, float& b, float& r, float& t) const;

 protected:
  std::unique_ptr<PageState> state;

 private:
  int reopen(const std::string& password);
};

}  // namespace TESSEL
