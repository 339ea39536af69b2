#include "KelpCommon/kelp_xml.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>

namespace {

using namespace KelpCommonNS;

std::unique_ptr<KelpXmlParser> parse(const std::string& document, const std::string& encoding = "") {
  return KelpXmlUtil::getRootParser(KelpMemStream(document), nullptr, "", encoding);
}

std::string utf8(const icu::UnicodeString& text) {
  std::string bytes;
  return text.toUTF8String(bytes);
}

std::string shown(const KelpName& name) {
  return name.getPrefix().empty() ? name.getLocalName() : name.getPrefix() + ":" + name.getLocalName();
}

std::string shown(const KelpXmlParser& parser) {
  const std::string depth = std::to_string(parser.getDepth());
  switch (parser.getEventType()) {
    case KelpXmlEvent::startTag: {
      std::string attributes;
      for (int i = 0; i < parser.getAttributeCount(); ++i)
        attributes += " " + shown(parser.getAttributeName(i)) + "=" + utf8(parser.getAttributeValue(i));
      return depth + "<" + shown(parser.getName()) + attributes + ">";
    }
    case KelpXmlEvent::endTag:
      return depth + "</" + shown(parser.getName()) + ">";
    case KelpXmlEvent::text:
      return depth + "'" + utf8(parser.getText()) + "'";
    default:
      return "end";
  }
}

/// All events from the root on.
std::string events(const std::string& document) {
  const auto parser = parse(document);
  if (!parser) return "no parser";
  std::string all = shown(*parser);
  while (!parser->isEndOfDocument()) {
    parser->next();
    all += " " + shown(*parser);
  }
  return all;
}

TEST(XmlParser, EventsWithTheirDepth) {
  EXPECT_EQ(events("<a><b>x</b><c/></a>"), "0<a> 1<b> 2'x' 1</b> 1<c> 1</c> 0</a> end");
}

TEST(XmlParser, StandsAtTheRootBehindWhiteSpaceDeclarationAndPacketMark) {
  EXPECT_EQ(
      events(
          "\r\n<?xml version='1.0'?>\n<?xpacket begin='' id='W5M0'?><!-- c --><a/>\n<?xpacket end='w'?>  "),
      "0<a> 0</a> end");
}

TEST(XmlParser, NamespaceDeclarationsAreAttributes) {
  EXPECT_EQ(events("<r:a xmlns:r='urn:r' xmlns='urn:d' r:b='1' c='2'/>"),
            "0<r:a xmlns:r=urn:r xmlns=urn:d r:b=1 c=2> 0</r:a> end");
}

TEST(XmlParser, NamesKnowTheirNamespace) {
  const auto parser = parse("<r:a xmlns:r='urn:r' r:b='1'/>");
  ASSERT_TRUE(parser);
  EXPECT_EQ(parser->getName().getNamespaceUri(), "urn:r");
  EXPECT_EQ(parser->getAttributeName(1).getNamespaceUri(), "urn:r");
}

TEST(XmlParser, SharedNamesAreFound) {
  const auto parser = parse("<rdf:Description xmlns:rdf='u' xmlns:pdfaid='v'/>");
  ASSERT_TRUE(parser);
  const auto name = &KelpNameTable::getSharedNameString;
  EXPECT_TRUE(parser->getName().is(name("rdf"), name("Description")));
  EXPECT_TRUE(parser->getAttributeName(1).is(name("xmlns"), name("pdfaid")));
}

TEST(XmlParser, AttributeOutOfRangeIsEmpty) {
  const auto parser = parse("<a b='1'/>");
  ASSERT_TRUE(parser);
  EXPECT_EQ(parser->getAttributeCount(), 1);
  EXPECT_TRUE(parser->getAttributeValue(1).isEmpty());
  EXPECT_EQ(parser->getAttributeName(-1).getLocalName(), "");
}

TEST(XmlParser, TextIsUnicode) {
  const auto parser = parse("<a b='\xC3\xA9'>\xF0\x9D\x84\x9E&lt;&#65;<![CDATA[<x>]]></a>");
  ASSERT_TRUE(parser);
  EXPECT_EQ(parser->getAttributeValue(0), icu::UnicodeString(char16_t{0xE9}));
  parser->next();
  EXPECT_EQ(parser->getText(), icu::UnicodeString(u"\U0001D11E<A"));
  parser->next();
  EXPECT_EQ(parser->getText(), icu::UnicodeString(u"<x>"));
}

TEST(XmlParser, ReadsUtf16ByItsByteOrderMark) {
  EXPECT_EQ(events(std::string("\xFF\xFE<\0a\0>\0x\0<\0/\0a\0>\0", 18)), "0<a> 1'x' 0</a> end");
}

TEST(XmlParser, TakesAnEncodingGivenFromOutside) {
  const auto parser = parse("<a>\xE9</a>", "ISO-8859-1");
  ASSERT_TRUE(parser);
  parser->next();
  EXPECT_EQ(parser->getText(), icu::UnicodeString(char16_t{0xE9}));
}

TEST(XmlParser, StaysAtTheEnd) {
  const auto parser = parse("<a/>");
  ASSERT_TRUE(parser);
  EXPECT_EQ(parser->next(), KelpXmlEvent::endTag);
  EXPECT_EQ(parser->next(), KelpXmlEvent::endDocument);
  EXPECT_EQ(parser->next(), KelpXmlEvent::endDocument);
  EXPECT_EQ(parser->getAttributeCount(), 0);
}

// What makes no sense

TEST(XmlParser, NoParserWithoutARootElement) {
  for (const char* document : {"", "  \n", "text", "<?xpacket begin=''?>", "<!-- a -->", "<", "<?xml"})
    EXPECT_FALSE(parse(document)) << document;
}

TEST(XmlParser, DocumentEndsWhereItStopsBeingWellFormed) {
  EXPECT_EQ(events("<a><b>x</b><c></a><d/>"), "0<a> 1<b> 2'x' 1</b> 1<c> 1</c> 0</a> end");
  EXPECT_THAT(events("<a>x &undeclared; <b/></a>"), testing::Not(testing::HasSubstr("<b>")));
  EXPECT_EQ(events("<a><b/>x<c"), "0<a> 1<b> 1</b> 1'x' 1<c> 1</c> 0</a> end");
}

TEST(XmlParser, SaysNothing) {
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();
  events("<a><b></a>");
  events("<a:b c='1' c='2'/>");
  EXPECT_EQ(testing::internal::GetCapturedStderr() + testing::internal::GetCapturedStdout(), "");
}

// What an enemy may write

TEST(XmlParser, ExternalEntitiesAreNotFetched) {
  const std::string path = testing::TempDir() + "kelp_xml_secret.txt";
  std::ofstream(path) << "secret";
  EXPECT_EQ(events("<!DOCTYPE a [<!ENTITY e SYSTEM '" + path + "'>]><a>x&e;y</a>"),
            "0<a> 1'x' 1'y' 0</a> end");
  EXPECT_EQ(events("<!DOCTYPE a SYSTEM '" + path + "'><a>x</a>"), "0<a> 1'x' 0</a> end");
  std::remove(path.c_str());
}

TEST(XmlParser, InternalEntitiesStandForNothing) {
  EXPECT_EQ(events("<!DOCTYPE a [<!ENTITY e 'value'>]><a b='x&e;y'>x&e;y</a>"),
            "0<a b=xy> 1'x' 1'y' 0</a> end");
}

std::string repeated(const std::string& piece, int times) {
  std::string text;
  for (int i = 0; i < times; ++i) text += piece;
  return text;
}

TEST(XmlParser, DepthIsBounded) {
  const auto parser = parse(repeated("<a>", 100000));
  ASSERT_TRUE(parser);
  int deepest = 0;
  while (parser->next() != KelpXmlEvent::endDocument) deepest = std::max(deepest, parser->getDepth());
  EXPECT_GT(deepest, 200);
  EXPECT_LE(deepest, 256);
}

std::string declarations(const char* head, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += head + std::to_string(i) + "='u' ";
  return text;
}

TEST(XmlParser, WideTagsAreReadUpToTheBound) {
  const auto parser = parse("<e " + declarations("a", KelpXmlUtil::mostAttributes) + "/>");
  ASSERT_TRUE(parser);
  EXPECT_EQ(parser->getAttributeCount(), KelpXmlUtil::mostAttributes);
  EXPECT_FALSE(parse("<e " + declarations("a", KelpXmlUtil::mostAttributes + 1) + "/>"));
}

TEST(XmlParser, DocumentEndsWhereTooManyNamespacesAreInScope) {
  const std::string most = declarations("xmlns:a", 300);
  EXPECT_EQ(parse("<e " + most + "/>")->getAttributeCount(), 300);
  const auto parser = parse("<e><f " + most + "><g " + most + "/></f></e>");
  ASSERT_TRUE(parser);
  EXPECT_EQ(parser->next(), KelpXmlEvent::startTag);
  EXPECT_EQ(parser->getName().getLocalName(), "f");
  EXPECT_NE(parser->next(), KelpXmlEvent::startTag);
}

TEST(XmlParser, HostileDocumentsTakeLinearTime) {
  constexpr int many = 100000;
  constexpr double secondsAtMost = 5;
  const std::string documents[] = {
      "<e " + declarations("a", many),
      "<e " + declarations("xmlns:a", many) + "/>",
      "<r>" + repeated("<e " + declarations("a", 400) + "/>", 300),
      "<e " + declarations("xmlns:a", 400) + ">" + repeated("<z/>", many),
      "<e a='" + repeated(">", many),
      "<e><!--" + repeated("->", many),
      "<e>" + repeated("&", many),
      "<e>" + repeated("&#65;", many),
      "<e><![CDATA[" + repeated("]]", many),
      repeated("<e>", many),
      "<!DOCTYPE a [" + repeated("<!ENTITY e 'x'>", many / 10) + "]><a/>",
      "<!DOCTYPE a [<!ENTITY e '" + repeated("x", many) + "'>]><a b='" + repeated("&e;", many) + "'>" +
          repeated("&e;", many) + "</a>",
      "<!DOCTYPE a [<!ENTITY a 'x'><!ENTITY b '" + repeated("&a;", 1000) + "'><!ENTITY c '" +
          repeated("&b;", 1000) + "'><!ENTITY d '" + repeated("&c;", 1000) + "'>]><a b='&d;'>&d;</a>",
  };
  for (const std::string& document : documents) {
    const auto begin = std::chrono::steady_clock::now();
    events(document);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    EXPECT_LT(seconds, secondsAtMost) << document.substr(0, 60);
  }
}

}  // namespace
