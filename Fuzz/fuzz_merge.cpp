// A selection in the first line, and a file that an enemy wrote, merged with itself. The table that comes out
// has an entry for every number.
#include <sstream>

#include "Fuzz/fuzz_target.h"
#include "TesselPage/Model/tessel_catalog.h"
#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Writer/tessel_destfile.h"

using namespace TESSEL;

namespace {

bool opens(CSourFile& source) {
  try {
    return source.CheckAndInit() == 0 && source.pageList.size() < 100;
  } catch (const CFileError&) {
    return false;
  }
}

void requireWholeTable(const CFileInfo& info) {
  int number = 0;
  for (const auto& [object, entry] : info.objEntries) fuzz::require(object.objNum == number++);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::string selection = input.line();
  if (selection.size() > 64) return 0;
  std::istringstream first(input.rest()), second(input.rest());
  CSourFile one(first), two(second);
  if (!opens(one) || !opens(two)) return 0;
  CDestFile dest;
  dest.files = {{1, &one}, {2, &two}};
  if (dest.SetReadFileAndPage(selection) != 0) return 0;
  dest.Read();
  dest.TidyObj();
  dest.Write();
  dest.fileInfo.root = SObj(dest.nextNumber++, 0);
  dest.catalog().Write(dest, one);
  dest.fileInfo.Tidy();
  requireWholeTable(dest.fileInfo);
  dest.fileInfo.WriteXRef(dest);
  return 0;
}
