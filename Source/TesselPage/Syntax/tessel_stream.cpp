#include "TesselPage/Syntax/tessel_stream.h"

#include <algorithm>
#include <istream>

#include "TesselPage/Security/tessel_encryptbridge.h"
#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_bytecursor.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_token.h"
#include "TesselPage/Writer/tessel_destfile.h"

namespace TESSEL {

namespace {

constexpr std::size_t readBlock = 1U << 16;
constexpr std::size_t searchBlock = 1024;
constexpr std::string_view endWord = kwendstream;

/// The line end behind the word "stream" (ISO 32000-2, 7.3.8.1); also a lone carriage return.
bool readLineEnd(std::istream& in) {
  if (!in.good()) return false;
  ByteCursor cursor(in);
  const int byte = cursor.take();
  if (byte == '\r' && cursor.peek() == '\n') cursor.take();
  if (byte == ByteCursor::end) cursor.fail();
  return byte == '\n' || byte == '\r';
}

void skipWhiteSpace(std::istream& in) {
  ByteCursor cursor(in);
  int byte = cursor.peek();
  while (byte != ByteCursor::end && isWhiteSpace(static_cast<char>(byte))) byte = cursor.next();
}

/// A body's bytes in the order of the file: a view where the source lies in memory, else gathered.
class StreamBytes {
 public:
  StreamBytes(CSourFile& in, std::string& store) : source(in), gathered(store) {
    file = source.span(inMemory);
    start = source.tellg();
    gathered.clear();
  }

  /// Reads as many bytes; fewer, and a failed stream, when the file ends before. Memory is taken for what is
  /// there.
  void read(std::size_t n) {
    if (inMemory) {
      const std::size_t there = std::min(n, file.size() - begin());
      size = there;
      source.seekg(start + static_cast<std::streamoff>(there));
      if (there < n) source.setstate(std::ios_base::eofbit | std::ios_base::failbit);
      return;
    }
    gatherUpTo(n);
  }

  /// Reads on, up to the word "endstream", which stays. False when the file ends before.
  bool readToEndWord() {
    if (start + static_cast<std::streamoff>(size) < source.noEndWordFrom && search()) return true;
    noteNoEndWord(size);
    source.setstate(std::ios_base::eofbit | std::ios_base::failbit);
    return false;
  }

  /// Where the last "endstream" among the bytes begins; npos when there is none.
  std::size_t lastEndWord() const {
    const std::streamoff searchable = source.noEndWordFrom - start;
    if (searchable <= 0) return std::string_view::npos;
    return view().rfind(endWord, static_cast<std::size_t>(searchable - 1));
  }

  /// Tells the source that the rest of the file from the body's n-th byte on has no end word.
  void noteNoEndWord(std::size_t n) {
    source.noEndWordFrom = std::min(source.noEndWordFrom, start + static_cast<std::streamoff>(n));
  }

  /// Makes the body the first `n` bytes behind its start and puts the stream there.
  void cut(std::size_t n) {
    source.clear();
    if (!inMemory) gatherTo(n);
    source.seekg(start + static_cast<std::streamoff>(n));
    size = n;
  }

  std::string_view view() const { return inMemory ? file.substr(begin(), size) : std::string_view(gathered); }
  std::size_t length() const { return size; }
  /// Where a place of the file lies, counted from the body's start.
  std::size_t offsetOf(std::streamoff position) const { return static_cast<std::size_t>(position - start); }

 private:
  std::size_t begin() const { return std::min(file.size(), static_cast<std::size_t>(start)); }

  /// Leaves the first `n` bytes gathered, whether they are fewer or more than now.
  void gatherTo(std::size_t n) {
    if (n > size) source.seekg(start + static_cast<std::streamoff>(size));
    gatherUpTo(n);
    gathered.resize(std::min(n, size));
  }

  void forgetBehind(std::size_t n) {
    gathered.resize(n);
    size = n;
  }

  void gatherUpTo(std::size_t n) {
    while (size < n && gather(std::min(n - size, readBlock))) {
    }
  }

  bool gather(std::size_t n) {
    gathered.resize(size + n);
    source.read(gathered.data() + size, static_cast<std::streamsize>(n));
    size += static_cast<std::size_t>(source.gcount());
    gathered.resize(size);
    return source.good();
  }

  bool search() { return inMemory ? searchInMemory() : searchOnwards(); }

  bool searchInMemory() {
    const std::size_t place = file.find(endWord, begin() + size);
    if (place == file.npos) return false;
    cut(place - begin());
    return true;
  }

  bool searchOnwards() {
    const std::size_t had = size;
    for (std::size_t searched = had;;) {
      const bool more = gather(searchBlock);
      const std::size_t place = gathered.find(endWord, searched);
      if (place != std::string::npos || !more) {
        const bool found = place != std::string::npos;
        found ? cut(place) : forgetBehind(had);
        return found;
      }
      searched = std::max(had, size - std::min(size, endWord.size() - 1));
    }
  }

  CSourFile& source;
  std::string& gathered;
  std::string_view file;
  bool inMemory = false;
  std::streamoff start = 0;
  std::size_t size = 0;
};

/// The token behind as many bytes as /Length tells, and where it begins.
struct TokenBehind {
  std::streamoff begin = 0;
  std::string text;

  explicit TokenBehind(CSourFile& source) {
    if (!source.good()) return;
    skipWhiteSpace(source);
    begin = source.tellg();
    readPDFString(source, text);
  }
};

/// Looks for the end word across the end of the body; true when it was there and the body ends before it.
bool cutAcross(StreamBytes& bytes, const TokenBehind& token) {
  const std::size_t tail = std::min(bytes.length(), endWord.size());
  const std::string joined = std::string(bytes.view().substr(bytes.length() - tail)) + token.text;
  const std::size_t place = joined.find(endWord);
  if (place == std::string::npos) return false;
  const std::size_t kept = bytes.length() - tail + place;
  bytes.cut(place <= tail ? kept : bytes.offsetOf(token.begin) + place - tail);
  return true;
}

/// /Length was wrong: the body ends at the last "endstream" in it, less the byte in front, else at the next
/// behind it.
void repairLength(StreamBytes& bytes, const TokenBehind& token, bool complete) {
  const std::size_t place = bytes.lastEndWord();
  if (place != std::string_view::npos) return bytes.cut(place == 0 ? 0 : place - 1);
  if (!complete) return bytes.noteNoEndWord(0);
  if (cutAcross(bytes, token)) return;
  bytes.cut(bytes.length());
  bytes.readToEndWord();
}

}  // namespace

bool CLength::ReadLen(CSourFile& source) { return ReadIntObj(source, length); }

bool CLength::WriteLen(CDestFile& dest) const {
  dest << length;
  return true;
}

bool CStreamType::Read(CSourFile& source) {
  body = {};
  if (!readLineEnd(source)) return false;
  StreamBytes bytes(source, owned);
  bytes.read(static_cast<std::size_t>(std::max(length, 0)));
  const bool complete = source.good();
  const TokenBehind token(source);
  if (token.text == endWord) {
    bytes.cut(bytes.length());
  } else {
    repairLength(bytes, token, complete);
  }
  body = bytes.view();
  if (source.fileInfo.encrypt.activeForReading() && !ofEncryptDictionary) decrypt(source.fileInfo.encrypt);
  length = static_cast<int>(body.size());
  source.setf(std::ios_base::skipws);
  return source.good();
}

/// A view into the file becomes an own copy first.
void CStreamType::decrypt(const CEncrypt& encrypt) {
  if (body.empty()) return;
  if (body.data() != owned.data()) owned.assign(body);
  DecryptString(encrypt, &id, owned);
  body = owned;
}

bool CStreamType::Write(CDestFile& dest, CSourFile&, long long lengthPos, long long lengthWidth) {
  dest.append(kw_r_n);
  body = body.substr(0, static_cast<std::size_t>(std::max(length, 0)));
  const bool encrypted = dest.encrypts() && !body.empty();
  if (encrypted) length = static_cast<int>(encryptedSize(dest.fileInfo.encrypt, body.size()));
  if (lengthWidth >= 1) {
    const std::string value = ' ' + std::to_string(length) + ' ';
    dest.replace(static_cast<std::size_t>(lengthPos), static_cast<std::size_t>(lengthWidth), value);
  }
  if (encrypted)
    appendEncrypted(dest.fileInfo.encrypt, dest.currentObject, body, dest);
  else
    dest.append(body);
  return true;
}

void CStreamType::addStr(const std::string& text, bool atFront) {
  owned = atFront ? text + std::string(body) : std::string(body) + text;
  body = owned;
  length = static_cast<int>(body.size());
}

}  // namespace TESSEL
