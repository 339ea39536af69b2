#include "KelpCommon/kelp_xml.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/xmlreader.h>

#include <algorithm>
#include <climits>
#include <string_view>
#include <utility>
#include <vector>

namespace KelpCommonNS {

namespace {

// The document is read into a tree first and then walked by a reader: a reader that feeds its parser by
// pieces looks through an unfinished tag or comment again for each piece.

struct FreeDocument {
  void operator()(xmlDocPtr document) const { xmlFreeDoc(document); }
};
struct FreeReader {
  void operator()(xmlTextReaderPtr reader) const { xmlFreeTextReader(reader); }
};
struct FreeContext {
  void operator()(xmlParserCtxtPtr context) const { xmlFreeParserCtxt(context); }
};
using Document = std::unique_ptr<xmlDoc, FreeDocument>;
using Reader = std::unique_ptr<xmlTextReader, FreeReader>;
using Context = std::unique_ptr<xmlParserCtxt, FreeContext>;

const char* chars(const xmlChar* text) { return text ? reinterpret_cast<const char*>(text) : ""; }

icu::UnicodeString unicode(const xmlChar* text) { return icu::UnicodeString::fromUTF8(chars(text)); }

KelpName nameOf(const xmlNs* space, const xmlChar* localName) {
  if (!space) return {"", chars(localName), ""};
  return {chars(space->prefix), chars(localName), chars(space->href)};
}

KelpName nameOf(const xmlNs& declaration) {
  if (!declaration.prefix) return {"", "xmlns", ""};
  return {"xmlns", chars(declaration.prefix), ""};
}

/// The text of an attribute; references to entities stand for nothing.
icu::UnicodeString valueOf(const xmlAttr& attribute) {
  icu::UnicodeString value;
  for (const xmlNode* part = attribute.children; part; part = part->next)
    if (part->type == XML_TEXT_NODE) value += unicode(part->content);
  return value;
}

/// Whether a tag may be so wide that its attributes, compared each with each, take more than linear time.
bool hasWideTag(std::string_view text) {
  int equals = 0;
  for (const char c : text) {
    if (c == '<') equals = 0;
    if (c == '=' && ++equals > KelpXmlUtil::mostAttributes) return true;
  }
  return false;
}

/// Stops the parser where so many namespaces are in scope that looking one up takes long.
void startElement(void* parser, const xmlChar* localName, const xmlChar* prefix, const xmlChar* uri,
                  int namespaceCount, const xmlChar** namespaces, int attributeCount, int defaultCount,
                  const xmlChar** attributes) {
  auto* const context = static_cast<xmlParserCtxtPtr>(parser);
  constexpr int slotsEach = 2;
  if (context->nsNr > slotsEach * KelpXmlUtil::mostAttributes) {
    xmlStopParser(context);
    return;
  }
  xmlSAX2StartElementNs(parser, localName, prefix, uri, namespaceCount, namespaces, attributeCount,
                        defaultCount, attributes);
}

/// The document's tree, as far as the document is well-formed.
Document treeOf(std::string_view text, const std::string& encoding) {
  if (text.empty() || text.size() > INT_MAX || hasWideTag(text)) return nullptr;
  const Context context(xmlCreateMemoryParserCtxt(text.data(), static_cast<int>(text.size())));
  if (!context) return nullptr;
  xmlCtxtUseOptions(context.get(),
                    XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_COMPACT);
  if (xmlCharEncodingHandlerPtr handler =
          encoding.empty() ? nullptr : xmlFindCharEncodingHandler(encoding.c_str()))
    xmlSwitchToEncoding(context.get(), handler);
  context->sax->startElementNs = &startElement;
  xmlParseDocument(context.get());
  return Document(std::exchange(context->myDoc, nullptr));
}

std::string_view withoutLeadingSpace(std::string_view text) {
  return text.substr(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
}

}  // namespace

struct KelpXmlParser::State {
  struct Attribute {
    KelpName name;
    icu::UnicodeString value;
  };

  State(Document tree, Reader walker) : document(std::move(tree)), reader(std::move(walker)) {}

  void next() {
    if (std::exchange(emptyElement, false)) {
      event = KelpXmlEvent::endTag;
      attributes.clear();
      return;
    }
    do {
      clear();
      if (xmlTextReaderRead(reader.get()) != 1) return;
    } while (!take(*xmlTextReaderCurrentNode(reader.get()), xmlTextReaderNodeType(reader.get())));
  }

  KelpXmlEvent event = KelpXmlEvent::endDocument;
  int depth = 0;
  KelpName name;
  icu::UnicodeString text;
  std::vector<Attribute> attributes;

 private:
  void clear() {
    event = KelpXmlEvent::endDocument;
    depth = 0;
    name = {};
    text.remove();
    attributes.clear();
  }

  /// @return whether the node is an event
  bool take(const xmlNode& node, int type) {
    depth = xmlTextReaderDepth(reader.get());
    switch (type) {
      case XML_READER_TYPE_ELEMENT:
        takeStartTag(node);
        return true;
      case XML_READER_TYPE_END_ELEMENT:
        event = KelpXmlEvent::endTag;
        name = nameOf(node.ns, node.name);
        return true;
      case XML_READER_TYPE_TEXT:
      case XML_READER_TYPE_CDATA:
      case XML_READER_TYPE_WHITESPACE:
      case XML_READER_TYPE_SIGNIFICANT_WHITESPACE:
        event = KelpXmlEvent::text;
        text = unicode(node.content);
        return true;
      default:
        return false;
    }
  }

  void takeStartTag(const xmlNode& node) {
    event = KelpXmlEvent::startTag;
    name = nameOf(node.ns, node.name);
    emptyElement = xmlTextReaderIsEmptyElement(reader.get()) == 1;
    for (const xmlNs* space = node.nsDef; space; space = space->next)
      attributes.push_back({nameOf(*space), unicode(space->href)});
    for (const xmlAttr* attribute = node.properties; attribute; attribute = attribute->next)
      attributes.push_back({nameOf(attribute->ns, attribute->name), valueOf(*attribute)});
  }

  Document document;
  Reader reader;
  bool emptyElement = false;  ///< its end tag is still to come
};

KelpXmlParser::KelpXmlParser(std::unique_ptr<State> readState) : state(std::move(readState)) {}
KelpXmlParser::~KelpXmlParser() = default;

KelpXmlEvent KelpXmlParser::next() {
  state->next();
  return state->event;
}

KelpXmlEvent KelpXmlParser::getEventType() const { return state->event; }
int KelpXmlParser::getDepth() const { return state->depth; }
const KelpName& KelpXmlParser::getName() const { return state->name; }
const icu::UnicodeString& KelpXmlParser::getText() const { return state->text; }
int KelpXmlParser::getAttributeCount() const { return static_cast<int>(state->attributes.size()); }

const KelpName& KelpXmlParser::getAttributeName(int index) const {
  static const KelpName none;
  return index >= 0 && index < getAttributeCount() ? state->attributes[static_cast<std::size_t>(index)].name
                                                   : none;
}

const icu::UnicodeString& KelpXmlParser::getAttributeValue(int index) const {
  static const icu::UnicodeString none;
  return index >= 0 && index < getAttributeCount() ? state->attributes[static_cast<std::size_t>(index)].value
                                                   : none;
}

std::unique_ptr<KelpXmlParser> KelpXmlUtil::getRootParser(const KelpMemStream& stream,
                                                          const void* /*context*/,
                                                          const std::string& /*baseUri*/,
                                                          const std::string& encoding) {
  Document document = treeOf(withoutLeadingSpace(stream.rest()), encoding);
  if (!document || !xmlDocGetRootElement(document.get())) return nullptr;
  Reader reader(xmlReaderWalker(document.get()));
  if (!reader) return nullptr;
  std::unique_ptr<KelpXmlParser> parser(
      new KelpXmlParser(std::make_unique<KelpXmlParser::State>(std::move(document), std::move(reader))));
  return parser->next() == KelpXmlEvent::startTag ? std::move(parser) : nullptr;
}

}  // namespace KelpCommonNS
