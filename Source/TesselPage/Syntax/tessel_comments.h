#pragma once

#include <iosfwd>

namespace TESSEL {

/// The next byte behind white space and comment lines, consumed. At the end of the stream, which then has
/// failed, 0 or "%".
char readPastComments(std::istream& in);

}  // namespace TESSEL
