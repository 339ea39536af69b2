#pragma once

#include <string>

#include "TesselPage/Syntax/tessel_obj.h"

namespace TESSEL {

/// What a host says about a new document: fixed-size texts, zero-terminated, and the parts of two dates.
struct InfoDic {
  static constexpr int textSize = 256;
  struct Date {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    char sign = '+';
    int zoneHours = 0, zoneMinutes = 0;
  };
  char author[textSize] = {};
  char creator[textSize] = {};
  char keywords[textSize] = {};
  char producer[textSize] = {};
  char subject[textSize] = {};
  char title[textSize] = {};
  char trapped[textSize] = {};
  Date creationDate;
  Date modDate;
};

/// "D:YYYYMMDDHHmmSS+HH'mm'" (ISO 32000-2, 7.9.4).
extern const char* const FORMATDATE;

/// The document information dictionary (ISO 32000-2, 14.3.3), read from a source and written to a
/// destination. The defaults are what a new document says about itself.
class CInfo : public CObj {
 public:
  bool Read(CSourFile& source) override;
  /// Writes the dictionary without its ">>": it stays unclosed, and no library code reaches this in the
  /// host's use.
  bool Write(CDestFile& dest, CSourFile& source) override;
  /// The value of `key`, one of the nine, direct or behind a reference; false for another key, and for a
  /// chain of references that closes. Behind a reference the position is put back.
  bool ReadInfo(CSourFile& source, const std::string& key);
  /// The present time as a PDF date; the sign of the zone is always "+".
  static void createdate(std::string& out);
  /// Each text of the record that isn't empty replaces the field; both dates are always rebuilt.
  void SetInfo(const InfoDic& record);

  std::string title = "TESSEL";
  std::string author = "tessel@example.invalid";
  std::string subject = "Tessel-Merge(Split)-Kit";
  std::string keywords = "TESSEL<>";
  std::string creator = "TESSEL";
  std::string producer = "Quillory.Co.Ltd";
  std::string trapped = "Unknown";
  std::string creationDate;
  std::string modDate;

 private:
  bool readDirect(CSourFile& source, const std::string& key);
};

/// The trailer's /ID pair (ISO 32000-2, 14.4); filled by the cross-reference reader.
class CFileID : public CFileBlock {
 public:
  static constexpr std::size_t maxLength = 256;  ///< a longer string of a broken file is cut there

  /// Reads nothing and answers true.
  bool Read(CSourFile& source) override;
  /// WriteID.
  bool Write(CDestFile& dest, CSourFile& source) override;
  /// Appends "/ID[<...><...>]" in hexadecimal, both strings with the recorded length: cut there, or filled
  /// with zero bytes. Always true.
  bool WriteID(CDestFile& dest) const;

  /// The string up to its first zero byte.
  static std::string asCString(const std::string& text) { return text.c_str(); }

  std::string first;
  std::string second;
  long long length = 0;  ///< of the first string, in bytes
};

}  // namespace TESSEL
