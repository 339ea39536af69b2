#include "TesselPage/Security/tessel_encrypt.h"

#include <algorithm>
#include <istream>

#include "PDFEncryption/decryptionmanager.h"
#include "TesselPage/Model/tessel_keyscan.h"
#include "TesselPage/Security/tessel_encryptbridge.h"
#include "TesselPage/Structure/tessel_objectposition.h"
#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Structure/tessel_xrefparts.h"
#include "TesselPage/Syntax/tessel_fileblock.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_positionguard.h"
#include "TesselPage/Syntax/tessel_string.h"
#include "TesselPage/Syntax/tessel_token.h"
#include "TesselPage/Writer/tessel_destfile.h"

namespace TESSEL {

namespace {

constexpr const char* dictOpen = "<<";
constexpr const char* dictClose = ">>";
constexpr int octetBits = 8;
constexpr int headTokens = 3;  // number, generation, "obj"

struct HandlerName {
  std::string_view name;
  int handler;
};

constexpr HandlerName handlerNames[] = {
    {nmStandard, CEncrypt::standardHandler},
    {"/Entrust.PPKEF", CEncrypt::otherHandler},
    {"/Adobe.PPKLite", CEncrypt::otherHandler},
    {"/Adobe.PubSec", CEncrypt::otherHandler},
};

/// The crypt filters that are looked at (ISO 32000-2, 7.6.6); others are passed over.
bool isKnownCryptFilter(const std::string& token) {
  return token == nmStdCF || token == "/DefaultCryptFilter";
}

/// Counts brackets over a dictionary that begins at the stream's place.
class Nesting {
 public:
  /// Whether the token closes the dictionary.
  bool closes(const std::string& token) {
    if (token == dictOpen) ++depth;
    return token == dictClose && depth-- < 2;
  }

 private:
  int depth = 0;
};

constexpr int length40 = 40;
constexpr int length128 = 128;
constexpr int length256 = 256;
constexpr int firstVersionOfFilters = 4;

}  // namespace

std::string BoundedBytes::first(std::size_t count) const {
  std::string result = bytes.substr(0, count);
  result.resize(std::min(count, limit), '\0');
  return result;
}

void BoundedBytes::put(std::string_view text) {
  bytes.replace(0, text.size(), text);
  if (bytes.size() > limit) bytes.resize(limit);
}

/// The keys of an encryption dictionary (ISO 32000-2, tables 20 and 21).
class EncryptScan {
 public:
  EncryptScan(CEncrypt& target, CSourFile& file) : encrypt(target), source(file) {
    const CObjectPosition positions(source);
    boundedByEnd = positions.getObjType(target.id) == static_cast<int>(EntryType::atOffset);
    if (boundedByEnd) end = positions.getEndPosition(target.id);
  }

  Turn onToken(const std::string& token) {
    static constexpr KeyRow<EncryptScan> rows[] = {
        {kwendobj, &EncryptScan::stop},
        {dictClose, &EncryptScan::close},
        {nmFilter, &EncryptScan::readFilter},
        {nmR, &EncryptScan::readNumber<&CEncrypt::R>},
        {nmV, &EncryptScan::readNumber<&CEncrypt::V>},
        {nmLength, &EncryptScan::readNumber<&CEncrypt::keyLength>},
        {nmP, &EncryptScan::readPermissions},
        {nmO, &EncryptScan::readString<&CEncrypt::O>},
        {nmU, &EncryptScan::readString<&CEncrypt::U>},
        {"/OE", &EncryptScan::readString<&CEncrypt::OE>},
        {"/UE", &EncryptScan::readString<&CEncrypt::UE>},
        {"/Perms", &EncryptScan::readString<&CEncrypt::Perms>},
        {nmCF, &EncryptScan::readCryptFilters},
        {nmEncryptMetadata, &EncryptScan::readMetadataFlag},
        {"/StmF", &EncryptScan::noteFilter<&EncryptScan::streamFilter>},
        {"/StrF", &EncryptScan::noteFilter<&EncryptScan::stringFilter>},
    };
    if (boundedByEnd && source.tellg() > end) return Turn::success;
    return dispatch(*this, rows, token);
  }

  /// Whether both streams and strings have the identity filter, which is also that of those that name none
  /// (ISO 32000-2, table 20).
  bool namesIdentity() const { return streamFilter == identityFilter && stringFilter == identityFilter; }

  bool aesV2 = false;
  bool aesV3 = false;

 private:
  static constexpr const char* identityFilter = "/Identity";

  Turn stop() { return Turn::success; }
  /// An indirect dictionary goes on to "endobj", past the end of any nested one.
  Turn close() { return encrypt.id.objNum < 1 ? Turn::success : Turn::goOn; }
  Turn readFilter();
  template <int CEncrypt::*field>
  Turn readNumber() {
    return readInteger(source, encrypt.*field) ? Turn::goOn : Turn::failure;
  }
  Turn readPermissions();
  template <BoundedBytes CEncrypt::*field>
  Turn readString() {
    CStringType text(encrypt.id);
    text.hexadecimal = next() == "<";
    text.noDecrypt = true;
    text.Read(source);
    (encrypt.*field).put(text.value);
    return Turn::goOn;
  }
  /// The value stays where it is, to be passed over like any other.
  template <std::string EncryptScan::*filter>
  Turn noteFilter() {
    const PositionGuard value(source, PositionGuard::State::clear);
    this->*filter = next();
    return Turn::goOn;
  }
  Turn readCryptFilters();
  void readCryptFilter();
  void readMethod();
  template <void (EncryptScan::*read)()>
  void readDictionary();
  bool tryReference(SObj& object);
  void findCryptFilters();
  Turn readMetadataFlag() {
    if (next() == "false") encrypt.encryptMetadata = false;
    return Turn::goOn;
  }
  const std::string& next() {
    source >> word;
    return word;
  }

  CEncrypt& encrypt;
  CSourFile& source;
  std::string word;
  std::string streamFilter = identityFilter;
  std::string stringFilter = identityFilter;
  bool boundedByEnd = false;
  long long end = CObjectPosition::nowhere;
};

Turn EncryptScan::readFilter() {
  next();
  const auto known = std::find_if(std::begin(handlerNames), std::end(handlerNames),
                                  [this](const HandlerName& row) { return row.name == word; });
  if (known == std::end(handlerNames) || source.fail()) return Turn::failure;
  encrypt.handler = known->handler;
  encrypt.filterName = word;
  return Turn::goOn;
}

/// The bits may be written as an unsigned number.
Turn EncryptScan::readPermissions() {
  const std::streampos place = source.tellg();
  if (readInteger(source, encrypt.permissions)) return Turn::goOn;
  source.clear();
  source.seekg(place);
  unsigned bits = 0;
  static_cast<std::istream&>(source) >> bits;
  encrypt.permissions = static_cast<int>(bits);
  return source.fail() ? Turn::failure : Turn::goOn;
}

/// Reads a value that is a dictionary, or a reference to one.
template <void (EncryptScan::*read)()>
void EncryptScan::readDictionary() {
  SObj object;
  if (!tryReference(object)) return (this->*read)();
  const PositionGuard behindReference(source, PositionGuard::State::clear);
  const SObjState entry = source.fileInfo.GetObjState(object);
  // Like the dictionary itself, its filters lie in no object stream: those are encrypted.
  if (!entry.atOffset()) return;
  source.seekg(entry.entryOffset);
  for (int i = 0; i < headTokens; ++i) next();
  if (word == kwobj) (this->*read)();
}

/// Without a reference the position stays.
bool EncryptScan::tryReference(SObj& object) {
  PositionGuard start(source);
  const std::string number = next();
  if (!CFileBlock::IsNum(number)) return false;
  const std::string generation = next();
  if (!CFileBlock::IsNum(generation) || next() != kwR) return false;
  object = SObj(static_cast<int>(leadingNumber(number)), static_cast<int>(leadingNumber(generation)));
  start.dismiss();
  return true;
}

Turn EncryptScan::readCryptFilters() {
  encrypt.handler = CEncrypt::standardHandler;
  readDictionary<&EncryptScan::findCryptFilters>();
  return Turn::goOn;
}

void EncryptScan::findCryptFilters() {
  Nesting nesting;
  while (source.good() && !nesting.closes(next()))
    if (isKnownCryptFilter(word)) readDictionary<&EncryptScan::readCryptFilter>();
}

void EncryptScan::readCryptFilter() {
  Nesting nesting;
  while (source.good() && !nesting.closes(next())) {
    if (word == nmLength) {
      next();  // the key length is that of the main dictionary
    } else if (word == nmEncryptMetadata) {
      readMetadataFlag();
    } else if (word == nmCFM) {
      readMethod();
    }
  }
}

void EncryptScan::readMethod() {
  next();
  aesV2 = aesV2 || word == nmAESV2;
  aesV3 = aesV3 || word == nmAESV3;
}

bool CEncrypt::Read(CSourFile& source) {
  std::string token;
  for (int i = 0; i < headTokens && id.objNum >= 1; ++i) source >> token;
  if (token != kwobj && !isDictStart(source)) return false;
  EncryptScan scan(*this, source);
  if (!scanKeys(source, scan)) return false;
  settleMethod(scan.aesV2, scan.aesV3);
  settleLength();
  identityContents = V >= firstVersionOfFilters && scan.namesIdentity();
  return true;
}

void CEncrypt::settleMethod(bool aesV2, bool aesV3) {
  method = pcrypt::Method::rc4;
  if (V == 4 && aesV2) method = pcrypt::Method::aesV2;
  if (V == 5 && aesV3) method = pcrypt::Method::aesV3;
}

/// Before revision 4 metadata is encrypted, whatever the file says.
void CEncrypt::settleLength() {
  struct Row {
    bool applies;
    int length;
    bool forcesMetadata;
  };
  const bool early = R < 4;
  const Row rows[] = {
      {keyLength >= 1, keyLength, V < 4 && early},
      {V == 1 || V == 2, length40, early},
      {V == 5, length256, false},
      {V < 3 && R == 2, length40, true},
      {V < 3, length128, early},
      {true, length128, V == 3 && early},
  };
  const Row& row = *std::find_if(std::begin(rows), std::end(rows), [](const Row& r) { return r.applies; });
  keyLength = row.length;
  if (row.forcesMetadata) encryptMetadata = true;
}

bool CEncrypt::findFileKey(const std::string& identifier) {
  fileIdentifier.put(identifier);
  fileIdentifierLength = static_cast<int>(std::min(identifier.size(), BoundedBytes::limit));
  pcrypt::EncryptInfo info;
  saveEncryptInfo(*this, info);
  bool needed = false;
  bool empty = false;
  const bool found = pcrypt::PDFDecryptionManager().getFileKey(info, passwordText(), needed, empty);
  if (empty) {
    accessState = openedByEmptyPassword;
    firstAccess = true;
  }
  if (needed) {
    accessState = openedByPassword;
    secondAccess = true;
  }
  resaveEncryptInfo(info, *this);
  keySearched = true;
  return found;
}

std::size_t CEncrypt::keyBytes() const {
  return std::min(static_cast<std::size_t>(std::max(keyLength / octetBits, 0)), BoundedBytes::limit);
}

int CEncrypt::EncrptStream(std::string&, int&) { return 1; }

int CEncrypt::EncryptString(std::string&, int&) { return 1; }

namespace {

constexpr const char* cryptFilterVersion = "%PDF-1.6";

void writeNumber(CDestFile& dest, const char* key, int value) {
  dest.append(key).append(kw_);
  dest << value;
}

void writeEntry(CDestFile& dest, const char* key, const BoundedBytes& entry) {
  CStringType text{SObj()};
  text.value = entry.first(CEncrypt::entryBytes);
  dest.append(key).append("(");
  text.WrtString(dest);
}

}  // namespace

bool CEncrypt::Write(CDestFile& dest, CSourFile&) {
  dest.RecordObjInfo(id);
  dest << id.objNum;
  dest.append(kw_);
  dest << id.genNum;
  dest.append(" obj\n<<");
  dest.currentObject = SObj();
  writeNumber(dest, nmR, R);
  writeNumber(dest, nmLength, keyLength);
  dest.append(nmFilter).append(kw_).append(nmStandard);
  writeNumber(dest, nmP, permissions);
  writeNumber(dest, nmV, V);
  writeEntry(dest, nmO, O);
  writeEntry(dest, nmU, U);
  if (dest.header >= cryptFilterVersion) {
    dest.append("\n/CF<</StdCF<</Length 16/CFM/V2/AuthEvent/DocOpen>>>>/StmF/StdCF/StrF/StdCF");
    if (!encryptMetadata) dest.append("/EncryptMetadata false");
  }
  dest.append(">>endobj\n");
  dest.endMark = dest.size();
  return true;
}

}  // namespace TESSEL
