#pragma once

#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

namespace TESSEL {

/// Type of a value in an object's text (ISO 32000-2, 7.3); as a hint, the type that a key's value is wanted
/// in. The numbers are fixed.
enum EPDFType : int {
  ePDFUnknown = 0,  ///< no value recognised; as a hint: follow every reference in the key's value
  ePDFBoolean = 1,
  ePDFNumber = 2,
  ePDFString = 3,  ///< literal or hexadecimal; stored without its outer parentheses
  ePDFName = 4,    ///< with its "/"
  ePDFArray = 5,
  ePDFDictionary = 6,
  ePDFNull = 7,
  ePDFStream = 8,   ///< stored as its decoded bytes
  ePDFIndirect = 9  ///< a reference; stored as its text, not followed
};

/// Question and answer of a value search: dictionary keys with the type wanted for each, and the values
/// found.
///
/// Keys are spelled as in a file, with their "/", and compare as bytes. A hint belongs to one search on one
/// thread.
class FindingHint {
 public:
  FindingHint() = default;

  /// Copies the question only: the copy has no values, so that a prepared question serves another search.
  FindingHint(const FindingHint& other) : properties(other.properties) {}
  FindingHint& operator=(const FindingHint& other) = default;
  ~FindingHint() = default;

  /// Whether the key is asked for.
  bool keyExist(const char* key) const;

  /// Asks for a key. @return false, with the first type kept, when it is asked for already
  bool insertHintInfo(const char* key, EPDFType type);

  /// The type wanted for a key. Throws BaseException when the key isn't asked for.
  EPDFType getPropertyType(const char* key) const;

  /// The first value found for a key; empty when there is none.
  std::string getPropertyValue(const char* key) const;

  /// How many values were found for a key.
  long getPropertyValueCount(const char* key) const;

  /// Adds a value behind those that the key has. Equal values stay apart.
  void insertPropertyValue(const char* key, const std::string& value);

  /// The same with a value that lies in `text`, which the hint shares: values may lie in each other as deep
  /// as their text is long, so that copies would not fit into memory.
  void insertPropertyValue(const char* key, std::shared_ptr<const std::string> text, std::string_view value);

  /// Writes key and value of every value found, each on a line of its own, by key and then in the order
  /// found. Flushes each line.
  void outPutValue(std::ostream& out) const;

 private:
  struct Value {
    std::shared_ptr<const std::string> holder;
    std::string_view text;  ///< in the holder
  };
  std::map<std::string, EPDFType> properties;
  std::multimap<std::string, Value> values;
};

}  // namespace TESSEL
