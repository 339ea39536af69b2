#pragma once

#include <istream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "TesselPage/Finder/tessel_findinghint.h"
#include "TesselPage/Interface/tessel_digests.h"
#include "TesselPage/Interface/tessel_numbering.h"
#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/tessel_page.h"

namespace TESSEL {

/// Text of an empty form object: stands in for an object that the piece information selector took out.
extern const char EMPTY_FORM_TEXT[];

/// The members of a CTesselPage.
struct PageState {
  using Identity = CTesselPage::Identity;

  std::string sourcePath;
  std::unique_ptr<std::istream> ownStream;  ///< of a source given by path
  std::istream* sourceStream = nullptr;
  std::string password;
  std::unique_ptr<CSourFile> sourFile;

  int curPageNo = 0;  ///< selected page, from 1; 0: none yet
  int startObjNo = 0;
  CTesselPage::EBox boxOption = CTesselPage::visibleBox;
  Identity curPageObj{0, 0};
  bool longPassword = false;  ///< the password counts with more than 32 bytes where its revision allows that
  bool heedsIdentityFilters = false;  ///< as CTesselPage::heedIdentityFilters has it

  // The key of the host's output.
  std::string encryptKey;
  int encryptKeyKind = 0;  ///< a pcrypt::Method; 0: no key was given
  int encryptRevision = 0;
  /// As getEncryptInfo.
  void fillEncryptInfo(CEncrypt& out) const;

  std::string pageString;
  std::string pageStringA, pageStringB,
      pageStringC;  ///< selectors by piece information; nothing gives them a value
  std::string contentsString, resString, annotsString, acroFormString, namesString;
  std::string rootString;
  std::string versionString;
  std::string idString;
  std::string pageGroup;

  std::vector<std::unique_ptr<FindingHint>> outputIntentHints;  ///< one for each output intent
  unsigned short outputIntentsCount = 0;                        ///< as the source has them
  /// An entry of an output intent, from 0; empty when there is none.
  std::string intentValue(unsigned short index, const char* key) const;

  std::vector<CTesselPage::IdentityPair> old2NewVector;
  Numbering numbering;
  std::vector<Identity> harvestedAnew;  ///< known objects that the next harvest writes once more
  CTesselPage::StreamObjMap* streamObjMap = nullptr;
  std::vector<CTesselPage::IdentityPair> newPairs;  ///< of the last harvest
  std::map<Identity, Identity> harvestedAs;         ///< new identity to old one, of the last harvest
  StreamDigests digests;
  bool catalogRead = false;

  std::set<Identity> lengthObjects;
  bool lengthFiltered = false;
  bool stringsRestorable = false;  ///< nothing sets it
};

/// Takes from an opened source what `init` and a new password both end with: the catalog's text, version and
/// identifiers.
/// @return 0, or 8001 when the catalog can't be written
int readDocument(PageState& state);

/// Collects the source's output intents behind those that the state has already. What can't be read is left
/// out.
void findIntents(PageState& state);

}  // namespace TESSEL
