// A document that an enemy wrote, pulled event by event to its end.
#include "Fuzz/fuzz_target.h"
#include "KelpCommon/kelp_xml.h"

using namespace KelpCommonNS;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const KelpMemStream stream(std::string_view(reinterpret_cast<const char*>(data), size));
  const auto parser = KelpXmlUtil::getRootParser(stream, nullptr, {}, {});
  if (!parser) return 0;
  // Each event has at least one byte of the document; an empty element has two events.
  std::size_t events = 0;
  for (; !parser->isEndOfDocument(); parser->next()) {
    fuzz::require(++events <= 2 * size + 2);
    for (int i = 0; i < parser->getAttributeCount(); ++i) {
      parser->getAttributeName(i);
      parser->getAttributeValue(i);
    }
    parser->getText();
  }
  return 0;
}
