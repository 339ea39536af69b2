#pragma once

#include <map>
#include <set>
#include <string>

#include "TesselPage/Security/tessel_encrypt.h"
#include "TesselPage/Structure/tessel_info.h"
#include "TesselPage/Structure/tessel_sobj.h"
#include "TesselPage/Syntax/tessel_obj.h"

namespace TESSEL {

/// What a file says about itself at its end: where each object lies, and the trailer's entries (ISO 32000-2, 7.5.4 to
/// 7.5.8). Walks from the last "startxref" back through the /Prev chain, over classic tables, cross-reference streams and
/// hybrid files. There is no repair: what could be read counts. The newest entry of an identity wins.
/// Its own identity is that of the cross-reference stream read last; number 0 in a file without one.
class CFileInfo : public CObj {
 public:
  using Entries = std::map<SObj, SObjState>;

  CFileInfo() = default;
  CFileInfo(const CFileInfo&) = delete;
  CFileInfo& operator=(const CFileInfo&) = delete;

  /// The whole walk. The caller looks at the stream's state, not at the result.
  /// @throws CFileError when the search for "startxref" runs into the end
  bool Read(CSourFile& source) override;

  /// Exact look-up in the main table, then in that of the hybrid streams. All zeros: no such entry.
  SObjState GetObjState(const SObj& object) const;
  SObjState GetObjState(const int& num, const int& gen) const;

  /// Empties /Size, /Root and the main table.
  void Init();

  /// One classic table, from behind the word "xref" up to "trailer".
  bool ReadCrt(CSourFile& source);
  /// The trailer's /XRefStm; position restored.
  bool ReadTrailerXRefStm(CSourFile& source);
  /// A trailer dictionary: its /Prev, or -1.
  long long GetPrev(CSourFile& source, bool expectTrailerWord);
  /// One cross-reference stream, from behind its object number. On success `number` holds /Prev or -1.
  bool ReadXRefObj(CSourFile& source, long long& number, bool hybrid);

  Entries* entries = &objEntries;         ///< all users reach the main table here; a memory source shares the real one's
  Entries objEntries;
  Entries hybridEntries;                  ///< of /XRefStm streams
  std::set<long long> filePositions;      ///< offsets of classic in-use objects, and the place behind "startxref"
  std::set<long long> objectBoundaries;   ///< built on first use by CObjectPosition
  CEncrypt encrypt;                       ///< its identity is the /Encrypt reference
  int size = 0;                           ///< /Size
  SObj root;                              ///< /Root
  CFileID fileId;
  CInfo info;                             ///< its identity is the /Info reference

 private:
  friend class XRefWalk;
};

}  // namespace TESSEL
