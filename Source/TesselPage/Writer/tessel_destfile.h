#pragma once

#include <map>
#include <string>
#include <utility>

#include "TesselPage/Security/tessel_encrypt.h"
#include "TesselPage/Structure/tessel_sobj.h"
#include "TesselPage/Writer/tessel_newobjtable.h"

namespace TESSEL {

class CSourFile;

/// A text that numbers are appended to.
class Facade_stringstream : public std::string {
 public:
  using std::string::string;

  /// Appends the number in decimal.
  Facade_stringstream& operator<<(int number);
  /// Appends the number with six significant digits as "%g" gives it: 612, 0.5, 1.23457e+06.
  Facade_stringstream& operator<<(double number);
};

/// Numbers that a CDestFile looks up behind its own table, so that a long table isn't built anew for each
/// text.
class NumberSource {
 public:
  virtual ~NumberSource() = default;
  /// The new identity of `object` of the source in hand, or null.
  virtual const SObj* find(const SObj& object) const = 0;
};

/// The target of every object copy: a text buffer with a renumbering table. Made on the stack, given the
/// wanted numbers, written to by CObj::LocalObj, and its text taken. No file is ever opened.
class CDestFile : public Facade_stringstream {
 public:
  /// The name isn't kept.
  explicit CDestFile(const std::string& name = {});
  virtual ~CDestFile();
  CDestFile(const CDestFile&) = delete;
  CDestFile& operator=(const CDestFile&) = delete;

  /// Enters a new number; the first entry of a key stays.
  void insertNewObjTab(const NewObjTable& key, const SObj& newId);
  /// The new identity under (index, current file, object), or null: the own table first, then the number
  /// source.
  const SObj* findNewObj(const SObj& object, int index = 0) const;
  /// Enters the number reserved for a destination met in an object; `index` is the place of a direct
  /// annotation dictionary. A table of its own: an annotation's own number and that of its destination have
  /// the same key.
  void insertDestination(const NewObjTable& key, const SObj& newId) { destinations.emplace(key, newId); }
  /// The number reserved for the destination of `object`, or null.
  const SObj* findDestination(const SObj& object, int index = 0) const {
    const auto found = destinations.find({index, currentFile, object});
    return found == destinations.end() ? nullptr : &found->second;
  }
  /// Lets look-ups with index 0 of the current file fall back on `source`, which isn't owned. Null: none.
  void setNumberSource(const NumberSource* source) { fallback = source; }

  /// Notes where the object about to be written begins: behind the last "endobj", counted from the start.
  void RecordObjInfo(const SObj& id);

  /// The source of the current file, or of that number; null when there is none.
  CSourFile* GetSourFile() const { return GetSourFile(currentFile); }
  CSourFile* GetSourFile(int file) const;

  std::string header;  ///< version literal, the highest of the sources
  /// Whether the strings and the stream of the object being written are encrypted.
  bool encrypts() const { return encrypt.activeForWriting() && currentObject.objNum >= 1; }

  bool rawFlag = false;     ///< references are copied as they stand
  int currentFile = 0;      ///< number of the source whose objects are being written
  std::size_t start = 0;    ///< buffer size that counts as offset 0
  std::size_t endMark = 0;  ///< buffer size behind the last "endobj"
  SObj currentObject;  ///< the object being written: the key for encryption; number 0: nothing is encrypted
  CEncrypt encrypt;    ///< the output's settings
  std::map<int, CSourFile*> files;       ///< not owned
  std::map<SObj, SObjState> objEntries;  ///< of the objects that were written with RecordObjInfo

 private:
  std::map<NewObjTable, SObj> newNumbers;
  std::map<NewObjTable, SObj> destinations;
  const NumberSource* fallback = nullptr;
};

}  // namespace TESSEL
