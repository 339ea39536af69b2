#include "TesselPage/Structure/tessel_info.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <set>
#include <string_view>

#include "TesselPage/Structure/tessel_objectposition.h"
#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_objref.h"
#include "TesselPage/Syntax/tessel_positionguard.h"
#include "TesselPage/Syntax/tessel_string.h"
#include "TesselPage/Syntax/tessel_token.h"
#include "TesselPage/Writer/tessel_destfile.h"

namespace TESSEL {

const char* const FORMATDATE = "D:%04i%02i%02i%02i%02i%02i%c%02i'%02i'";

namespace {

constexpr int headTokens = 3;  // number, generation, "obj"
constexpr int secondsPerHour = 3600;
constexpr int secondsPerMinute = 60;
constexpr int firstYear = 1900;

/// The keys, in the order in which they are written.
struct InfoKey {
  std::string_view key;
  std::string CInfo::*field;
};
constexpr InfoKey infoKeys[] = {
    {nmTitle, &CInfo::title},
    {nmAuthor, &CInfo::author},
    {nmSubject, &CInfo::subject},
    {nmKeywords, &CInfo::keywords},
    {nmCreator, &CInfo::creator},
    {nmProducer, &CInfo::producer},
    {nmCreationDate, &CInfo::creationDate},
    {nmTrapped, &CInfo::trapped},
    {nmModDate, &CInfo::modDate},
};

std::string CInfo::*fieldOf(std::string_view key) {
  for (const InfoKey& row : infoKeys)
    if (row.key == key) return row.field;
  return nullptr;
}

std::string dateText(const InfoDic::Date& date) {
  char text[InfoDic::textSize];
  std::snprintf(text, sizeof text, FORMATDATE, date.year, date.month, date.day, date.hour, date.minute,
                date.second, date.sign, date.zoneHours, date.zoneMinutes);
  return text;
}

void take(std::string& field, const char (&text)[InfoDic::textSize]) {
  if (text[0] != '\0') field.assign(text, strnlen(text, sizeof text));
}

}  // namespace

bool CInfo::Read(CSourFile& source) {
  const CObjectPosition positions(source);
  const long long end = positions.getEndPosition(id);
  const bool boundedByEnd = positions.getObjType(id) == static_cast<int>(EntryType::atOffset);
  std::string token;
  for (int i = 0; i < headTokens; ++i) source >> token;
  if (token != kwobj && !isDictStart(source)) return false;
  while (source.good()) {
    source >> token;
    if (source.fail()) return false;
    if ((boundedByEnd && source.tellg() > end) || token == kwendobj) return true;
    if (fieldOf(token) && !ReadInfo(source, token)) return false;
  }
  return false;
}

bool CInfo::ReadInfo(CSourFile& source, const std::string& key) {
  SObj reference;
  if (!tryReference(source, reference)) return readDirect(source, key);
  const PositionGuard place(source);
  std::set<SObj> seen;
  std::unique_ptr<CSourFile> memory;
  CSourFile* at = &source;
  do {
    if (!seen.insert(reference).second) return false;
    std::unique_ptr<CSourFile> next;
    at = ParseObj(*at, next, reference);
    if (!at) return false;
    if (next) memory = std::move(next);
  } while (tryReference(*at, reference));
  return readDirect(*at, key);
}

bool CInfo::readDirect(CSourFile& source, const std::string& key) {
  std::string CInfo::*const field = fieldOf(key);
  if (!field) return false;
  std::string token;
  source >> token;
  if (key == nmTrapped) {
    trapped = token;
    return true;
  }
  CStringType text(id);
  text.hexadecimal = token == "<";
  const bool isRead = text.Read(source);
  this->*field = text.value;
  return isRead;
}

bool CInfo::Write(CDestFile& dest, CSourFile& source) {
  dest.RecordObjInfo(id);
  dest << id.objNum;
  dest.append(" ");
  dest << id.genNum;
  dest.append(" obj\n<<");
  dest.currentObject = id;
  for (const InfoKey& row : infoKeys) {
    CStringType text(id);
    text.value = this->*row.field;
    text.length = static_cast<int>(text.value.size());
    if (text.value.empty()) continue;
    dest.append(row.key).append(" (");
    text.Write(dest, source);
    if (row.key != nmModDate) dest.append(kw_n);
  }
  dest.append(kwendobj).append(kw_n);
  dest.endMark = dest.size();
  return true;
}

void CInfo::createdate(std::string& out) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  tzset();
  localtime_r(&now, &local);
  const long zone = std::labs(timezone);
  InfoDic::Date date;
  date.year = local.tm_year + firstYear;
  date.month = local.tm_mon + 1;
  date.day = local.tm_mday;
  date.hour = local.tm_hour;
  date.minute = local.tm_min;
  date.second = local.tm_sec;
  date.zoneHours = static_cast<int>(zone / secondsPerHour);
  date.zoneMinutes = static_cast<int>(zone % secondsPerHour / secondsPerMinute);
  out = dateText(date);
}

void CInfo::SetInfo(const InfoDic& record) {
  take(author, record.author);
  take(creator, record.creator);
  take(keywords, record.keywords);
  take(producer, record.producer);
  take(subject, record.subject);
  take(title, record.title);
  take(trapped, record.trapped);
  creationDate = dateText(record.creationDate);
  modDate = dateText(record.modDate);
}

bool CFileID::Read(CSourFile&) { return true; }

}  // namespace TESSEL
