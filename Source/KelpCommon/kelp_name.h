#pragma once

#include <string>
#include <string_view>

namespace KelpCommonNS {

/// The names that readers of XML metadata look for, each as one string, so that names compare by address.
class KelpNameTable {
 public:
  /// The shared string that is equal to `name`; null for a name that isn't in the table. Valid for ever.
  static const char* getSharedNameString(std::string_view name);
};

/// Qualified name of an XML element or attribute (Namespaces in XML 1.0, section 4).
class KelpName {
 public:
  KelpName() = default;
  KelpName(std::string namePrefix, std::string nameLocal, std::string uri);

  const std::string& getPrefix() const { return prefix; }  ///< empty: none
  const std::string& getLocalName() const { return localName; }
  const std::string& getNamespaceUri() const { return namespaceUri; }  ///< empty: in no namespace

  /// Whether prefix and local name are these, given as shared strings of KelpNameTable.
  bool is(const char* otherPrefix, const char* otherLocalName) const {
    return otherPrefix && otherLocalName && sharedPrefix == otherPrefix && sharedLocalName == otherLocalName;
  }

 private:
  std::string prefix;
  std::string localName;
  std::string namespaceUri;
  const char* sharedPrefix = nullptr;
  const char* sharedLocalName = nullptr;
};

}  // namespace KelpCommonNS
