#pragma once

#include <exception>
#include <iosfwd>
#include <string>

#include "TesselPage/Structure/tessel_sobj.h"

namespace TESSEL {

class CSourFile;
class CDestFile;

/// Thrown by the word searches when the stream fails before the word was found. Carries no data.
class CFileError : public std::exception {};

/// Base of everything that can be read from a source or written to a destination.
class CFileBlock {
 public:
  virtual bool Read(CSourFile& source) = 0;
  virtual bool Write(CDestFile& dest, CSourFile& source) = 0;
  /// Calls Read.
  virtual bool fromStream(CSourFile& source);
  /// Calls Write with the destination's current source; false when it has none.
  virtual bool toStream(CDestFile& dest);
  virtual ~CFileBlock() = default;

  /// Whether every byte is a decimal digit; so an empty string is, and a signed number isn't.
  static bool IsNum(const std::string& text);
  /// Reads tokens until one equals `word`; the stream then stands behind it. Never returns false.
  /// @throws CFileError when the stream is not good on entry, or fails behind a token that didn't match
  static bool FindStr(std::istream& in, const std::string& word);
  /// The same within one object: false at "endobj" or when the stream fails. Never throws.
  static bool FindStrInObj(std::istream& in, const std::string& word);
  /// One white-space delimited word of at most 1023 bytes, cut before the first of "<<", ">>", "/", "[", "]"
  /// that counts; the stream stands behind what is left of it.
  static void GetWords(std::istream& in, std::string& out);
  /// Hexadecimal digits up to the first byte that is neither a digit nor a line end, as bytes appended to
  /// `out`.
  /// @param[out] count  number of bytes appended
  static bool RedHexString(std::ostream& out, std::istream& in, int& count);
  static SObjState GetObjState(CSourFile& source, int num, int gen);
  static SObjState GetObjState(CSourFile& source, const SObj& id);
  /// Whether a dictionary or an array starts here, behind white space and comment lines; consumes "[" or two
  /// bytes of a dictionary start. The second byte behind "<" is not looked at, so a hexadecimal string passes
  /// too.
  static bool isDictStart(std::istream& in);
  /// Appends `value` as PDF text with at most five decimals, followed by a blank.
  static void wrtNumberFtoStr(std::string& out, float value);
  /// Whether both differences are at most 1e-5.
  static bool isfeq(float a, float b);

 protected:
  CFileBlock() = default;
  CFileBlock(const CFileBlock&) = default;
  CFileBlock& operator=(const CFileBlock&) = default;
  CFileBlock(CFileBlock&&) = default;
  CFileBlock& operator=(CFileBlock&&) = default;
};

}  // namespace TESSEL
