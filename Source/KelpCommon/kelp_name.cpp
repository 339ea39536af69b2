#include "KelpCommon/kelp_name.h"

#include <utility>

namespace KelpCommonNS {

namespace {

constexpr const char* sharedNames[] = {
    "xmlns", "rdf", "RDF", "Description", "pdfaid", "part", "amd", "conformance",
};

}  // namespace

const char* KelpNameTable::getSharedNameString(std::string_view name) {
  for (const char* shared : sharedNames)
    if (name == shared) return shared;
  return nullptr;
}

KelpName::KelpName(std::string namePrefix, std::string nameLocal, std::string uri)
    : prefix(std::move(namePrefix)),
      localName(std::move(nameLocal)),
      namespaceUri(std::move(uri)),
      sharedPrefix(KelpNameTable::getSharedNameString(prefix)),
      sharedLocalName(KelpNameTable::getSharedNameString(localName)) {}

}  // namespace KelpCommonNS
