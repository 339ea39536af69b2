#include "TesselPage/Syntax/tessel_comments.h"

#include <istream>

#include "TesselPage/Syntax/tessel_bytecursor.h"
#include "TesselPage/Syntax/tessel_token.h"

namespace TESSEL {

namespace {

/// Consumes the rest of a line and the first byte of its end.
void skipLine(std::istream& in) {
  ByteCursor cursor(in);
  int byte = cursor.take();
  while (byte != '\r' && byte != '\n' && byte != ByteCursor::end) byte = cursor.take();
  if (byte == ByteCursor::end) cursor.fail();
}

}  // namespace

char readPastComments(std::istream& in) {
  char byte = 0;
  while (readByte(in, byte) && byte == '%') skipLine(in);
  return byte;
}

}  // namespace TESSEL
