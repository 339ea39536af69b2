#pragma once

#include <map>
#include <string>
#include <vector>

#include "TesselPage/Security/tessel_encrypt.h"
#include "TesselPage/Structure/tessel_info.h"
#include "TesselPage/Structure/tessel_sobj.h"
#include "TesselPage/Syntax/tessel_obj.h"

namespace TESSEL {

/// What one walk may cost. The entries of a cross-reference stream can be had for a bit or less, so a small
/// file could fill the memory; revisions that lie within each other could be read any number of times. A
/// table in proportion to its file is never cut.
struct XRefBudget {
  static constexpr long long leastEntries = 1LL << 20;
  static constexpr long long leastBytes = 16LL << 20;
  static constexpr long long bytesPerFileByte = 16;

  XRefBudget() = default;
  explicit XRefBudget(long long fileBytes);

  long long entries = leastEntries;
  long long bytes = leastBytes;  ///< of revisions, and of decoded data
};

/// What a file says about itself at its end: where each object lies, and the trailer's entries (ISO
/// 32000-2, 7.5.4 to 7.5.8). Walks from the last "startxref" back through the /Prev chain, over classic
/// tables, cross-reference streams and hybrid files. There is no repair: what could be read counts. The
/// newest entry of an identity wins. Its own identity is that of the cross-reference stream read last; number
/// 0 in a file without one.
class CFileInfo : public CObj {
 public:
  using Entries = std::map<SObj, SObjState>;

  CFileInfo() = default;
  CFileInfo(const CFileInfo&) = delete;
  CFileInfo& operator=(const CFileInfo&) = delete;

  /// The whole walk. The caller looks at the stream's state, not at the result.
  /// @throws CFileError when the last search for "startxref", or a direct /Info, runs into the end
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
  /// What GetPrev and ReadXRefObj give when a revision has no /Prev.
  static constexpr long long endOfChain = -1;
  /// A trailer dictionary: its /Prev, or -1.
  /// @throws CFileError when a direct /Info runs into the end
  long long GetPrev(CSourFile& source, bool expectTrailerWord);
  /// One cross-reference stream, from behind its object number. On success `number` holds /Prev or -1.
  bool ReadXRefObj(CSourFile& source, long long& number, bool hybrid);

  /// Closes a file that is being written: CInfo::Write, CEncrypt::Write when /Encrypt has a number, Tidy when
  /// the destination has its raw flag set, WriteXRef. Always true. The /Info dictionary stays unclosed, so a
  /// caller that wants a clean file takes Tidy and WriteXRef alone.
  bool Write(CDestFile& dest, CSourFile& source) override;
  /// Brings the table to the form that one section needs: of two generations of a number the higher stays,
  /// the numbers below the highest that have no entry become free ones, and the free ones are chained upwards
  /// (ISO 32000-2, 7.5.4). Linear in the highest number.
  void Tidy();
  /// Appends the table as one section, the trailer and "startxref" (ISO 32000-2, 7.5.4 and 7.5.5). The
  /// trailer takes /Info, /Encrypt and /ID as they are set here. Always true.
  bool WriteXRef(CDestFile& dest);

  /// All users reach the main table here; a memory source shares the real one's.
  Entries* entries = &objEntries;
  Entries objEntries;
  Entries hybridEntries;  ///< of /XRefStm streams
  /// Offsets of classic in-use objects, and the place behind "startxref", as they were met.
  std::vector<long long> filePositions;
  std::vector<long long> objectBoundaries;  ///< ascending; built on first use by CObjectPosition
  CEncrypt encrypt;                         ///< its identity is the /Encrypt reference
  int size = 0;                             ///< /Size
  SObj root;                                ///< /Root
  CFileID fileId;
  CInfo info;  ///< its identity is the /Info reference

 private:
  friend class XRefStreamScan;

  void walkChain(CSourFile& source, long long start);
  bool readRevision(CSourFile& source, long long& next);
  bool charge(CSourFile& source, long long start);
  bool readSubsection(CSourFile& source, int first, int count);
  bool readInfo(CSourFile& source);
  bool readSecurity(CSourFile& source);
  void writeTable(CDestFile& dest) const;
  void writeTrailer(CDestFile& dest);
  const SObjState* find(const SObj& object) const;

  XRefBudget budget;
};

}  // namespace TESSEL
