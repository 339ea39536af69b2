#pragma once

#include <unicode/unistr.h>

#include <memory>
#include <string>

#include "KelpCommon/kelp_memstream.h"
#include "KelpCommon/kelp_name.h"

namespace KelpCommonNS {

/// What a pull parser stands at.
enum class KelpXmlEvent {
  startTag,
  endTag,       ///< also behind the start tag of an empty element
  text,         ///< character data or a CDATA section, white space alone included
  endDocument,  ///< also where the document stops being well-formed
};

/// Reads an XML document from event to event. Belongs to one thread.
///
/// Fetches nothing: no file, no network. Entities other than the predefined ones stand for nothing. Nothing
/// throws: no tag is read behind the place where a document stops being well-formed or passes a bound (see
/// KelpXmlUtil); elements open there get their end tags.
class KelpXmlParser {
 public:
  ~KelpXmlParser();
  KelpXmlParser(const KelpXmlParser&) = delete;
  KelpXmlParser& operator=(const KelpXmlParser&) = delete;

  /// Goes to the next event. At the document's end it stays there. @return the event
  KelpXmlEvent next();

  KelpXmlEvent getEventType() const;
  bool isEndOfDocument() const { return getEventType() == KelpXmlEvent::endDocument; }

  /// How many elements enclose the event; 0 for the tags of the root.
  int getDepth() const;

  /// Name of the element of a start tag; without meaning at other events. Valid until the next event.
  const KelpName& getName() const;

  /// The character data of a text event, else empty. Valid until the next event.
  const icu::UnicodeString& getText() const;

  /// How many attributes a start tag has, namespace declarations among them (prefix "xmlns", or the bare
  /// local name "xmlns"); 0 at other events. The declarations come first, each kind in document order.
  int getAttributeCount() const;

  /// Name and value of an attribute, from 0 to below the count; empty for another index. Valid until the next
  /// event.
  const KelpName& getAttributeName(int index) const;
  const icu::UnicodeString& getAttributeValue(int index) const;

 private:
  friend class KelpXmlUtil;
  struct State;
  explicit KelpXmlParser(std::unique_ptr<State> readState);

  std::unique_ptr<State> state;
};

class KelpXmlUtil {
 public:
  /// A parser that stands at the root's start tag. The document is what is left of the stream, less white
  /// space in front. The parser keeps what it needs of it.
  ///
  /// Bounds, so that no document takes more than linear time: 256 levels, and `mostAttributes` attributes in
  /// a tag or namespaces in scope. A document that has more than `mostAttributes` equals signs between two
  /// "<" isn't read at all.
  /// @param context   not used: there are no surroundings that a document could refer to
  /// @param baseUri   not used: nothing is fetched
  /// @param encoding  of the document; empty: as it says itself
  /// @return the parser; null when there is no root element
  static std::unique_ptr<KelpXmlParser> getRootParser(const KelpMemStream& stream, const void* context,
                                                      const std::string& baseUri,
                                                      const std::string& encoding);

  static constexpr int mostAttributes = 500;
};

}  // namespace KelpCommonNS
