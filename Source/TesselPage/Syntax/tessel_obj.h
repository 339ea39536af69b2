#pragma once

#include <memory>
#include <string>
#include <vector>

#include "TesselPage/Structure/tessel_sobj.h"
#include "TesselPage/Syntax/tessel_fileblock.h"

namespace TESSEL {

/// Base of every class that stands for an indirect object: knows how to get to the object's body wherever it
/// lies, how to copy its text while renumbering or dropping references, and how to read a value behind a
/// reference. The text of an object is never rebuilt: only references, /Length values, strings and stream
/// bodies are touched.
class CObj : public CFileBlock {
 public:
  /// Type flags of an object.
  static constexpr int valueObject = 8;      ///< strings and streams
  static constexpr int foundByTable = 16;    ///< fromStream finds it through the cross-reference table
  static constexpr int inObjectStream = 32;  ///< was found in an object stream

  CObj() = default;
  explicit CObj(const SObj& identity) : id(identity) {}

  /// Reads nothing and answers true; each class overrides it.
  bool Read(CSourFile& source) override;
  /// Head line and body: see the raw flag and the renumbering table of CDestFile.
  bool Write(CDestFile& dest, CSourFile& source) override;
  /// Places the read by the table when the object is foundByTable, then calls Read; for an object of an
  /// object stream on a source over its memory text.
  bool fromStream(CSourFile& source) override;
  /// The copier: appends the object's body to `dest` from the present place of `source` on, up to "endobj".
  /// @param dropped  when not null: set to whether an entry was taken out because its reference has no new
  /// number
  virtual bool WriteObj(CDestFile& dest, CSourFile& source, bool* dropped);

  /// Places `source` at this object's body, wherever it lies, and calls WriteObj.
  bool LocalObj(CDestFile& dest, CSourFile& source, bool* dropped);
  /// Raw bytes of the body: up to the next object for one at an offset, the whole memory text, head included,
  /// for one in an object stream. Left alone when there is none.
  bool ReadObj(std::string& out, CSourFile& source);

  /// The head "n g obj" at the present place; leaves the stream behind it and behind comment lines.
  static bool IsObjStart(std::istream& in);
  /// Writes this object's text out of the object stream that `entry` names, as "n g obj", LF, body, LF,
  /// "endobj", CR LF. False when that stream can't be read or the object isn't where the table says.
  bool ReadObjStream(CSourFile& source, std::string& out, const SObjState& entry) const;

  /// An integer, direct or behind a reference (chains of references end where they close). Behind a reference
  /// the position is put back behind the reference text.
  bool ReadIntObj(CSourFile& source, int& value);
  /// Numbers of an array, direct or behind a reference, elements that are references included.
  bool ReadNumArrayObj(CSourFile& source, std::vector<float>& values);

  /// Moves reading to the body of the object `ref`. On success `memory` is either empty and `source` (or its
  /// real source) stands behind the object's head, or holds a memory source standing there.
  /// @return the source to read on, null on failure
  static CSourFile* ParseObj(CSourFile& source, std::unique_ptr<CSourFile>& memory, const SObj& ref);

  const SObj& identity() const { return id; }
  void setIdentity(const SObj& identity) { id = identity; }

  SObj id;
  int typeFlags = 0;
};

}  // namespace TESSEL
