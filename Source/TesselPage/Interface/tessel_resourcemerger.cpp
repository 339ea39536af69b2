#include "TesselPage/Interface/tessel_resourcemerger.h"

#include <string_view>

namespace TESSEL {

namespace {

constexpr std::string_view procSet = "/ProcSet";
constexpr std::string_view whiteSpace{"\0\t\n\f\r ", 6};

/// Appends what stands in the array behind /ProcSet at `key`, its first `skipped` bytes left out.
void appendProcedures(const std::string& text, std::size_t key, std::size_t skipped, std::string& out) {
  const std::size_t open = text.find('[', key + procSet.size());
  if (open == std::string::npos) return;
  const std::size_t first = open + 1 + skipped;
  const std::size_t close = text.find(']', first);
  if (close != std::string::npos) out.append(text, first, close - first);
}

}  // namespace

std::string ResourceDictMerger::getDirectKeyPos(const std::string& text, unsigned long pos) {
  const std::size_t start = text.find_first_not_of(whiteSpace, pos);
  if (start == std::string::npos || text.compare(start, 2, "<<") != 0) return {};
  const std::size_t end = text.find(">>", start + 2);
  return text.substr(start + 2, end == std::string::npos ? end : end - start - 2);
}

void ResourceDictMerger::dictValMerge(const std::string& key, std::string& out) const {
  const std::size_t inOwn = own.find(key);
  const std::size_t inObject = object.find(key);
  if (inOwn == std::string::npos && inObject == std::string::npos) return;
  out += key + "<<";
  if (inOwn != std::string::npos) out += getDirectKeyPos(own, inOwn + key.size());
  if (inObject != std::string::npos) out += getDirectKeyPos(object, inObject + key.size());
  out += ">>";
}

void ResourceDictMerger::mergeProcSet(std::string& out) const {
  const std::size_t inOwn = own.find(procSet);
  const std::size_t inObject = object.find(procSet);
  if (inOwn == std::string::npos && inObject == std::string::npos) return;
  out += "/ProcSet[";
  if (inOwn != std::string::npos)
    appendProcedures(own, inOwn, 0, out);
  else
    appendProcedures(object, inObject, 1,
                     out);  // the first byte behind the bracket falls away: hosts know the list so
  out += "]";
}

std::string ResourceDictMerger::merged() const {
  std::string out = "<<";
  for (const char* key :
       {"/ExtGState", "/ColorSpace", "/Pattern", "/Shading", "/XObject", "/Font", "/Properties"})
    dictValMerge(key, out);
  mergeProcSet(out);
  return out + ">>";
}

}  // namespace TESSEL
