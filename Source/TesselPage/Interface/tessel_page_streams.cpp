// Operations on the text of one object: is it a stream that may be shared, where does its /Length stand, how
// long is its data. All of them look at text, not at tokens: the words may as well stand inside a string.

#include <algorithm>
#include <set>
#include <sstream>
#include <string_view>

#include "PDFEncryption/hashes.h"
#include "TesselPage/Finder/pdf_rules.h"
#include "TesselPage/Finder/tessel_valueutility.h"
#include "TesselPage/Interface/tessel_outputkey.h"
#include "TesselPage/Interface/tessel_page_state.h"
#include "TesselPage/Security/tessel_encrypt.h"
#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_string.h"
#include "TesselPage/Syntax/tessel_token.h"
#include "TesselPage/Writer/tessel_destfile.h"
#include "TesselPage/tessel_page.h"

namespace TESSEL {

namespace {

constexpr std::size_t leastStreamText = 9;  // the length of "endstream"
constexpr std::size_t digestBytes = 16;
constexpr std::size_t streamWord = 6;

bool holds(std::string_view text, std::string_view word) { return text.find(word) != std::string_view::npos; }

bool isLineEnd(char c) { return c == '\n' || c == '\r'; }

/// What a stream is compared by: its bytes alone when it is plain with a /Subtype, as an embedded font file
/// is, whatever its dictionary says of the length; else its dictionary too.
std::string_view keyText(std::string_view text, std::size_t data, std::size_t end) {
  const std::string_view whole = text.substr(0, end);
  const bool byDictionary = holds(text, "/Form") || holds(text, "/Matrix") || holds(text, "/ColorSpace");
  return !byDictionary && holds(text, "/Subtype") ? whole.substr(data) : whole;
}

/// MD5 of a text as it lies, with no copy of it.
std::string md5(std::string_view text) {
  constexpr std::size_t piece = std::size_t{1} << 30;
  pcrypt::PDFEncryptionMD5 hash;
  pcrypt::PDFEncryptionMD5::MD5_CTX context;
  hash.MD5Init(&context);
  for (; !text.empty(); text.remove_prefix(std::min(piece, text.size())))
    hash.MD5Update(&context, reinterpret_cast<unsigned char*>(const_cast<char*>(text.data())),
                   static_cast<unsigned>(std::min(piece, text.size())));
  std::string digest(digestBytes, '\0');
  hash.MD5Final(reinterpret_cast<unsigned char*>(digest.data()), &context);
  return digest;
}

CTesselPage::Identity readIdentity(const char* begin, const char* end) {
  CTesselPage::Identity found{0, 0};
  std::istringstream in(std::string(begin, end));
  in >> found.first >> found.second;
  return found;
}

}  // namespace

bool CTesselPage::isStreamObj(const std::string& text, std::string& digest) {
  // An object that carries resources refers to others by nature and is never shared.
  if (text.size() < leastStreamText || holds(text, "/Resource")) return false;
  const std::size_t word = text.find(kwstream);
  const std::size_t end = text.find(kwendstream);
  if (word == std::string::npos || end == std::string::npos) return false;
  // The first "stream" of a text without one of its own is that inside "endstream".
  const std::size_t data = word + streamWord;
  if (end <= data) return false;
  const std::string_view key = keyText(text, data, end);
  digest = md5(key);
  return true;
}

void CTesselPage::lengthObjectFilt() {
  if (state->lengthFiltered) return;
  for (iterator it = begin(); it != end(); ++it) lengthObjectFilt_1(it);
  state->lengthFiltered = true;
}

void CTesselPage::lengthObjectFilt_1(iterator it) {
  if (it == end()) return;
  PDF_RULES::LengthReferenceTokenizer found;
  found.Tokenize(it->second.data(), it->second.data() + it->second.size());
  if (found.empty()) return;
  const Identity length = readIdentity(found.front().first, found.front().second);
  state->lengthObjects.insert(length);
  refObjFilt(find(length));
}

void CTesselPage::refObjFilt(iterator it) {
  // A chain ends at an entry without a reference, at an object outside the map, or where it closes.
  std::set<Identity> seen;
  while (it != end() && !it->second.empty() && seen.insert(it->first).second) {
    yard::OneTokenizer<PDF_RULES::MatchIndirectObject> found;
    found.Tokenize(it->second.data(), it->second.data() + it->second.size());
    if (found.empty()) return;
    const Identity first = readIdentity(found.front().first, found.front().second);
    state->lengthObjects.insert(first);
    it = find(first);
  }
}

bool CTesselPage::check(iterator it) {
  if (help_function_MatchStreamObject(it->second) != 0) return false;
  lengthObjectFilt();
  if (state->lengthObjects.count(it->first) != 0) return false;
  return it->first.second == 0;
}

int CTesselPage::calcStreamLength(const iterator& it) const {
  const std::string& text = it->second;
  if (text.empty()) return 0;
  yard::OneTokenizer<MatchStreamBeginPos_help> start;
  start.Tokenize(text.data(), text.data() + text.size());
  if (start.empty()) return 0;
  const std::size_t word = text.size() >= leastStreamText ? text.rfind(kwendstream) : std::string::npos;
  const char* last = text.data() + (word == std::string::npos ? text.size() : word);
  while (last != text.data() && isLineEnd(last[-1])) --last;
  const std::ptrdiff_t length = last - start.front().second;
  return length < 0 ? 0 : static_cast<int>(length);
}

int CTesselPage::findLengthPos(const iterator& start, std::string** holder, char** valueBegin,
                               char** valueEnd, iterator* holderIt) {
  std::set<Identity> seen;
  iterator it = start;
  for (;;) {
    *holderIt = it;
    if (it == end() || !seen.insert(it->first).second) return 0;
    std::string& text = it->second;
    const char* const from = text.data();
    PDF_RULES::LengthReferenceTokenizer indirect;
    indirect.Tokenize(from, from + text.size());
    if (indirect.size() != 1) break;
    it = find(readIdentity(indirect.front().first, indirect.front().second));
  }
  std::string& text = it->second;
  PDF_RULES::LengthIntegerTokenizer direct;
  direct.Tokenize(text.data(), text.data() + text.size());
  if (direct.size() == 1) {
    *holder = &text;
    *valueBegin = text.data() + (direct.front().first - text.data());
    *valueEnd = text.data() + (direct.front().second - text.data());
    return 0;
  }
  int value = 0;
  if (std::istringstream in(text); in >> value) {  // the entry is itself the /Length object
    *holder = &text;
    *valueBegin = text.data();
    *valueEnd = text.data() + text.size();
  }
  return 0;
}

namespace {

/// Puts strings into the clear: everything but strings is copied as it stands, up to "endobj".
class StringRestorer {
 public:
  StringRestorer(const PageState& state, const std::string& text, const SObj& owner)
      : source(text), raw(text), object(owner) {
    CEncrypt& encrypt = source.fileInfo.encrypt;
    giveOutputKey(state, encrypt);
    encrypt.keySearched = true;  // the key is the output's own, so there is nothing to look for
  }

  std::string run() {
    CharBuffer token;
    while (source.good()) {
      source >> token;
      const bool string = token == "(" || token == "<";
      if (!string && !(token == kwstream) && !(token == kwendobj)) continue;
      copyHere();
      if (token == kwendobj) break;
      if (string) restoreString(token.c_str()[0]);
    }
    return writer;
  }

 private:
  /// The stream's place; the end once the text has run out.
  std::size_t here() {
    const std::streamoff place = source.tellg();
    return place < 0 ? raw.size() : static_cast<std::size_t>(place);
  }
  void copyHere() {
    writer.append(raw, copied, here() - copied);
    copied = here();
  }
  void restoreString(char open) {
    CStringType value(object);
    value.hexadecimal = open == '<';
    value.Read(source);
    value.Write(writer, source);
    copied = here();
  }

  CSourFile source;
  const std::string& raw;
  SObj object;
  CDestFile writer;
  std::size_t copied = 0;
};

}  // namespace

std::string CTesselPage::decryptObject(const std::string& text, int num, int gen) const {
  if (!state->stringsRestorable || text.rfind(kwendobj) == std::string::npos) return text;
  return StringRestorer(*state, text, SObj(num, gen)).run();
}

}  // namespace TESSEL
