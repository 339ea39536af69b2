#include "TesselPage/Syntax/tessel_objref.h"

#include <istream>

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_bytecursor.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_token.h"
#include "TesselPage/Writer/tessel_destfile.h"

namespace TESSEL {

namespace {

/// Looks for a reference in bytes that may go on behind what is seen of them.
class ReferenceProbe {
 public:
  enum class Answer { no, yes, beyond };

  explicit ReferenceProbe(std::string_view area) : text(area) {}

  Answer look() {
    for (int* const number : {&objNum, &genNum})
      if (const Answer answer = readNumber(*number); answer != Answer::yes) return answer;
    skipSpace();
    if (atEnd()) return Answer::beyond;
    return text[place++] == kwR[0] ? Answer::yes : Answer::no;
  }

  int objNum = 0;
  int genNum = 0;
  std::size_t place = 0;  ///< behind what was read

 private:
  /// So few digits never overflow.
  static constexpr std::size_t safeDigits = 9;

  bool atEnd() const { return place == text.size(); }
  void skipSpace() {
    while (!atEnd() && isFormatSpace(text[place])) ++place;
  }

  Answer readNumber(int& value) {
    skipSpace();
    if (atEnd()) return Answer::beyond;
    const bool negative = text[place] == '-';
    if (negative || text[place] == '+') ++place;
    const std::size_t first = place;
    for (; !atEnd() && isDigit(text[place]) && place - first < safeDigits; ++place)
      value = value * 10 + (text[place] - '0');
    if (negative) value = -value;
    if (atEnd() || place - first == safeDigits) return Answer::beyond;
    return place > first ? Answer::yes : Answer::no;
  }

  std::string_view text;
};

/// The same by the stream's own reads, wherever the buffer's get area ends.
bool readByStream(CSourFile& source, SObj& ref) {
  const auto start = source.tellg();
  int num = 0;
  int gen = 0;
  char word = 0;
  if (readInteger(source, num) && readInteger(source, gen) && readByte(source, word) && word == kwR[0]) {
    ref = SObj(num, gen);
    return true;
  }
  source.clear();
  source.seekg(start);
  return false;
}

}  // namespace

bool CObjRef::Read(CSourFile& source) {
  using Answer = ReferenceProbe::Answer;
  found = false;
  Answer answer = Answer::beyond;
  if (source.good() && (source.flags() & std::ios_base::skipws) != 0) {
    ReferenceProbe probe(GetArea::of(*source.rdbuf()));
    answer = probe.look();
    if (answer == Answer::yes) {
      GetArea::step(*source.rdbuf(), probe.place);
      objRef = SObj(probe.objNum, probe.genNum);
    }
  }
  found = answer == Answer::yes || (answer == Answer::beyond && readByStream(source, objRef));
  return found;
}

bool CObjRef::Write(CDestFile& dest, CSourFile&) {
  dest << objRef.objNum;
  dest.append(" ");
  dest << objRef.genNum;
  dest.append(" R ");
  return true;
}

}  // namespace TESSEL
