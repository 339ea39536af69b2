#include "TesselPage/Interface/tessel_storedstream.h"

#include <cstdlib>
#include <string_view>

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_objref.h"
#include "TesselPage/Syntax/tessel_string.h"
#include "TesselPage/Syntax/tessel_token.h"

namespace TESSEL {

namespace {

constexpr std::string_view cryptFilter = "/Crypt";
constexpr std::size_t lineEndBytes = 2;  // the writer puts CR LF behind "stream"

/// Reads the dictionary of a stream's text, key by key at its outer level.
class StreamDictionary {
 public:
  explicit StreamDictionary(const std::string& stream, std::size_t dictionaryEnd)
      : text(stream), source(stream.substr(0, dictionaryEnd)) {}

  /// @return whether the filter entries say all that is needed
  bool read(std::string& filterEntries) {
    CharBuffer token;
    source >> token;
    if (!(token == "<<")) return false;
    while (source.good()) {
      source >> token;
      if (token == ">>") return true;
      if (token == "/F" || token == "/FFilter") return false;
      const std::string key(token.view());
      const std::size_t from = here();
      if (!skipValue(key)) return false;
      if (key == nmLength) length = std::strtoull(text.c_str() + from, nullptr, 10);
      if (key != nmFilter && key != nmDecodeParms) continue;
      const std::string value = text.substr(from, here() - from);
      if (value.find(cryptFilter) != std::string::npos || hasReference) return false;
      filterEntries += key + value;
    }
    return false;
  }

  std::size_t length = 0;  ///< of the data; the writer puts the true one into each dictionary

 private:
  std::size_t here() { return static_cast<std::size_t>(source.tellg()); }

  /// Steps over one value: a bracketed one as a whole, a reference as its three tokens.
  bool skipValue(const std::string& key) {
    hasReference = false;
    int depth = 0;
    do {
      if (CObjRef reference; reference.Read(source)) {
        hasReference = true;
        continue;
      }
      CharBuffer token;
      source >> token;
      if (token.size() == 0) return false;
      if (token == "(" || token == "<") skipString(source, SObj(), token.c_str()[0]);
      if (token == "<<" || token == "[") ++depth;
      if (token == ">>" || token == "]") --depth;
    } while (depth > 0 && source.good());
    return depth == 0 && !key.empty() && key.front() == '/';
  }

  const std::string& text;
  CSourFile source;
  bool hasReference = false;
};

}  // namespace

bool splitStoredStream(const std::string& text, std::string& data, std::string& filterEntries) {
  const std::size_t word = text.find(kwstream);
  const std::size_t end = text.rfind(kwendstream);
  if (word == std::string::npos || end == std::string::npos || end <= word) return false;
  std::string entries;
  StreamDictionary dictionary(text, word);
  if (!dictionary.read(entries)) return false;
  const std::size_t from = word + std::string_view(kwstream).size() + lineEndBytes;
  if (from > end || dictionary.length > end - from) return false;
  data.assign(text, from, dictionary.length);
  filterEntries = std::move(entries);
  return true;
}

}  // namespace TESSEL
