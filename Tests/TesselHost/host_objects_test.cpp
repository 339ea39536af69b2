#include "TesselHost/host_objects.h"

#include <gmock/gmock.h>
#include <zlib.h>

#include <string>

#include "TesselHost/host_pagetree.h"

namespace TesselHost {
namespace {

using testing::HasSubstr;
using testing::Not;

const std::string id = "0123456789abcdef";
constexpr const char* idHex = "30313233343536373839616263646566";

std::string inflated(const std::string& packed) {
  std::string out(1'000'000, '\0');
  uLongf size = out.size();
  const int result = uncompress(reinterpret_cast<Bytef*>(out.data()), &size,
                                reinterpret_cast<const Bytef*>(packed.data()), packed.size());
  EXPECT_EQ(result, Z_OK);
  out.resize(size);
  return out;
}

/// The data of the stream whose dictionary holds `mark`.
std::string streamWith(const std::string& file, const std::string& mark) {
  const auto at = file.find(mark);
  const auto begin = file.find("stream\n", at) + 7;
  return file.substr(begin, file.find("\nendstream", begin) - begin);
}

TEST(ObjectWriter, WritesAClassicFileByteForByte) {
  MemorySink sink;
  ObjectWriter writer(sink, {{1, 7}, false});
  const int catalog = writer.reserve();
  const int data = writer.reserve();
  writer.writeStream(data, "/A 1", "xyz");
  writer.writeBody({catalog, 0}, "<</Type/Catalog>>");
  writer.finish({catalog, 0, id});
  EXPECT_EQ(sink.text, std::string("%PDF-1.7\n%\xE2\xE3\xCF\xD3\n"
                                   "2 0 obj\n<</A 1/Length 3>>\nstream\nxyz\nendstream\nendobj\n"
                                   "1 0 obj\n<</Type/Catalog>>\nendobj\n"
                                   "xref\n0 3\n"
                                   "0000000000 65535 f \n"
                                   "0000000069 00000 n \n"
                                   "0000000015 00000 n \n"
                                   "trailer\n<</Size 3/Root 1 0 R/ID[<") +
                           idHex + "><" + idHex + ">]>>\nstartxref\n102\n%%EOF\n");
}

TEST(ObjectWriter, LeavesNumbersWithoutAnObjectFree) {
  MemorySink sink;
  ObjectWriter writer(sink, {pdf14, false});
  writer.writeBody({3, 0}, "true");
  writer.finish({3, 0, id});
  EXPECT_THAT(sink.text,
              HasSubstr("xref\n0 4\n0000000000 65535 f \n0000000000 65535 f \n0000000000 65535 f \n"
                        "0000000015 00000 n \n"));
}

TEST(ObjectWriter, KeepsGenerations) {
  MemorySink sink;
  ObjectWriter writer(sink, {pdf14, false});
  writer.writeBody({1, 7}, "true");
  writer.finish({1, 0, id});
  EXPECT_THAT(sink.text, HasSubstr("1 7 obj\ntrue\nendobj"));
  EXPECT_THAT(sink.text, HasSubstr("0000000015 00007 n \n"));
}

TEST(ObjectWriter, GivesNumbersBehindAllThatAreUsed) {
  MemorySink sink;
  ObjectWriter writer(sink, {pdf14, false});
  EXPECT_EQ(writer.reserve(), 1);
  writer.reserveThrough(10);
  EXPECT_EQ(writer.reserve(), 11);
  writer.reserveThrough(5);
  EXPECT_EQ(writer.nextNumber(), 12);
  writer.writeBody({20, 0}, "true");
  EXPECT_EQ(writer.nextNumber(), 21);
}

TEST(ObjectWriter, PacksWhatGetsSmaller) {
  MemorySink sink;
  ObjectWriter writer(sink, {pdf14, false});
  const std::string data(1000, 'x');
  writer.writePackedStream(1, {}, data);
  EXPECT_THAT(sink.text, HasSubstr("<</Filter/FlateDecode/Length "));
  EXPECT_EQ(inflated(streamWith(sink.text, "/FlateDecode")), data);
}

TEST(ObjectWriter, LeavesSmallStreamsAsTheyAre) {
  MemorySink sink;
  ObjectWriter writer(sink, {pdf14, false});
  writer.writePackedStream(1, {}, "q /P1 Do Q");
  EXPECT_THAT(sink.text, HasSubstr("<</Length 10>>\nstream\nq /P1 Do Q\nendstream"));
}

TEST(ObjectStreams, HoldPlainObjectsAndNoStreams) {
  MemorySink sink;
  ObjectWriter writer(sink, {pdf15, true});
  writer.writeBody({1, 0}, "<</Type/Catalog>>");
  writer.writeHarvested({2, 0}, "<</Length 1>>stream\nx\nendstream");
  writer.writeHarvested({3, 0}, "[1 2]%remark");
  writer.finish({1, 0, id});
  EXPECT_THAT(sink.text, HasSubstr("2 0 obj\n<</Length 1>>stream\nx\nendstream\nendobj"));
  EXPECT_THAT(sink.text, HasSubstr("4 0 obj\n<</Type/ObjStm/N 2/First 9/Length 40>>\nstream\n"
                                   "1 0 3 18\n<</Type/Catalog>>\n[1 2]%remark\n\nendstream"));
  EXPECT_THAT(sink.text, Not(HasSubstr("1 0 obj")));
}

TEST(ObjectStreams, LeaveOutObjectsOfOtherGenerations) {
  MemorySink sink;
  ObjectWriter writer(sink, {pdf15, true});
  writer.writeBody({1, 1}, "true");
  EXPECT_THAT(sink.text, HasSubstr("1 1 obj\ntrue\nendobj"));
}

TEST(ObjectStreams, AreClosedWhenFull) {
  MemorySink sink;
  ObjectWriter writer(sink, {pdf15, true});
  writer.reserveThrough(201);
  for (int i = 1; i <= 201; ++i) writer.writeBody({i, 0}, "null");
  writer.finish({1, 0, id});
  EXPECT_THAT(sink.text, HasSubstr("202 0 obj\n<</Type/ObjStm/N 200/"));
  EXPECT_THAT(sink.text, HasSubstr("203 0 obj\n<</Type/ObjStm/N 1/"));
}

/// Undoes the "up" predictor on rows of `columns` bytes.
std::string unpredicted(const std::string& data, std::size_t columns) {
  std::string rows;
  std::string above(columns, '\0');
  for (std::size_t at = 0; at + columns < data.size(); at += columns + 1) {
    EXPECT_EQ(data[at], 2);
    for (std::size_t i = 0; i < columns; ++i) above[i] = static_cast<char>(above[i] + data[at + 1 + i]);
    rows += above;
  }
  return rows;
}

TEST(CrossReferenceStream, TellsWhereEachObjectLies) {
  MemorySink sink;
  ObjectWriter writer(sink, {pdf15, true});
  writer.reserveThrough(3);
  writer.writeStream(1, {}, "x");
  writer.writeBody({3, 0}, "true");
  writer.finish({3, 0, id});
  // Object 1 at 15, 2 free, 3 first in stream 4, which begins behind object 1 at 64; the table itself is 5.
  const std::string rows = unpredicted(inflated(streamWith(sink.text, "/Type/XRef/W[1 1 2]")), 4);
  EXPECT_EQ(rows.substr(0, 16), std::string("\0\0\0\0"
                                            "\1\x0F\0\0"
                                            "\0\0\0\0"
                                            "\2\4\0\0",
                                            16));
  EXPECT_EQ(rows.substr(16, 2), std::string("\1") + static_cast<char>(sink.text.find("4 0 obj")));
  EXPECT_EQ(rows.substr(20, 2), std::string("\1") + static_cast<char>(sink.text.find("5 0 obj")));
  EXPECT_THAT(sink.text, HasSubstr("startxref\n" + std::to_string(sink.text.find("5 0 obj")) + "\n%%EOF\n"));
}

/// Number of the root, its text in `file`.
int treeOf(int pages, std::string& file) {
  MemorySink sink;
  ObjectWriter writer(sink, {pdf14, false});
  PageTree tree(writer);
  for (int i = 0; i < pages; ++i) {
    tree.parentOfNext();
    tree.add(writer.reserve());
  }
  const int root = tree.finish();
  file = sink.text;
  return root;
}

std::string bodyOf(const std::string& file, int number) {
  const std::string opening = "\n" + std::to_string(number) + " 0 obj\n";
  const auto begin = file.find(opening) + opening.size();
  return file.substr(begin, file.find("\nendobj", begin) - begin);
}

TEST(PageTree, OfFewPagesIsOneNode) {
  std::string file;
  const int root = treeOf(2, file);
  EXPECT_EQ(bodyOf(file, root), "<</Type/Pages/Count 2/Kids[2 0 R 3 0 R]>>");
}

TEST(PageTree, OfExactlyOneNodefulStaysOneNode) {
  std::string file;
  const int root = treeOf(64, file);
  EXPECT_THAT(bodyOf(file, root), HasSubstr("/Count 64/"));
  EXPECT_EQ(file.find("/Parent"), std::string::npos);
}

TEST(PageTree, GrowsALevelBehindIt) {
  std::string file;
  const int root = treeOf(65, file);
  EXPECT_THAT(bodyOf(file, root), HasSubstr("/Count 65/"));
  EXPECT_THAT(bodyOf(file, 1), HasSubstr("/Parent " + referenceTo(root) + "/Count 64/"));
}

TEST(PageTree, OfTenThousandPagesIsThreeLevelsHigh) {
  std::string file;
  const int root = treeOf(10'000, file);
  // 157 nodes of pages under 3 nodes under the root.
  EXPECT_THAT(bodyOf(file, root), HasSubstr("/Count 10000/Kids["));
  std::size_t nodes = 0;
  for (auto at = file.find("/Type/Pages"); at != std::string::npos; at = file.find("/Type/Pages", at + 1))
    ++nodes;
  EXPECT_EQ(nodes, 157U + 3U + 1U);
}

}  // namespace
}  // namespace TesselHost
