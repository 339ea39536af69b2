#include "TesselPage/Interface/tessel_outputkey.h"

#include "PDFEncryption/encryptinfo.h"
#include "TesselPage/Interface/tessel_page_state.h"
#include "TesselPage/Security/tessel_encrypt.h"
#include "TesselPage/Syntax/tessel_keywords.h"

namespace TESSEL {

namespace {

constexpr std::size_t leastStreamText = 9;  // the length of "endstream"
constexpr int blockBytes = 16;

/// The /V whose writers use the cipher of a key's kind.
constexpr int versionOfKind[] = {0, 2, 4, 5};

}  // namespace

void giveOutputKey(const PageState& state, CEncrypt& writer) {
  state.fillEncryptInfo(writer);
  writer.V = versionOfKind[state.encryptKeyKind];
}

void exemptStrings(CTesselPage& page, CTesselPage::iterator entry) {
  std::string& text = entry->second;
  const bool stream = text.size() >= leastStreamText && text.find(kwendstream) != std::string::npos;
  if (stream || page.check(entry)) return;
  text = page.decryptObject(text, entry->first.first, entry->first.second);
}

void roundStreamLengths(CTesselPage& page) {
  for (auto entry = page.begin(); entry != page.end(); ++entry) {
    const int length = page.calcStreamLength(entry);
    if (length < 1) continue;
    std::string* holder = nullptr;
    char* valueBegin = nullptr;
    char* valueEnd = nullptr;
    CTesselPage::iterator holderIt;
    page.findLengthPos(entry, &holder, &valueBegin, &valueEnd, &holderIt);
    if (!holder) continue;
    const int rounded = (length + blockBytes - 1) / blockBytes * blockBytes;
    holder->replace(static_cast<std::size_t>(valueBegin - holder->data()),
                    static_cast<std::size_t>(valueEnd - valueBegin), std::to_string(rounded) + ' ');
  }
}

}  // namespace TESSEL
