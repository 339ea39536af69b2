// The older password functions beside the manager's: each test runs both, and tells where they part.

#include "TesselPage/Security/tessel_legacypassword.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "PDFEncryption/decryptionmanager.h"
#include "PDFEncryption/encryptionmanager.h"
#include "PDFEncryption/hashes.h"
#include "TesselPage/Security/tessel_encrypt.h"
#include "TesselPage/Security/tessel_encryptbridge.h"

using namespace TESSEL;
using pcrypt::EncryptInfo;
using Manager = pcrypt::PDFDecryptionManager;

namespace {

struct Kind {
  const char* name;
  int revision;
  int version;
  int keyLength;
};

constexpr Kind r2{"R2", 2, 1, 40};
constexpr Kind r3{"R3", 3, 2, 128};
constexpr Kind r3Short{"R3 with 40 bits", 3, 2, 40};
constexpr Kind r4{"R4", 4, 4, 128};
constexpr Kind kinds[] = {r2, r3, r4};

/// Both sides' view of one protected file.
struct File {
  EncryptInfo info;  ///< as the manager gets it: without a key
  CEncrypt record;   ///< as the older functions get it
  std::string key;   ///< the right one
};

File protect(const Kind& kind, const std::string& user, const std::string& owner) {
  File file;
  EncryptInfo& info = file.info;
  info.R = kind.revision;
  info.V = kind.version;
  info.keyLength = kind.keyLength;
  info.permissions = -44;
  info.fileIdentifier = "0123456789abcdef";
  info.method = 1;
  pcrypt::EncryptOption option;
  option.userPassword = user;
  option.ownerPassword = owner;
  option.permissions = info.permissions;
  option.keyLength = info.keyLength;
  const pcrypt::PDFEncryptionManager maker;
  maker.calculateOKey(option, info);
  maker.createKey(info, user);
  maker.calculateUKey(option, info);
  file.key = std::move(info.fileKey);
  info.fileKey.clear();
  resaveEncryptInfo(info, file.record);
  file.record.accessState = CEncrypt::openedByEmptyPassword;
  return file;
}

std::string keyOf(const CEncrypt& record) { return record.fileKey.first(record.keyBytes()); }

unsigned char* bytes(std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); }

std::string padded(std::string password) {
  pcrypt::PDFEncryptionBase().padKey(password, static_cast<int>(password.size()));
  return password;
}

int stateByManager(const File& file, std::string password) {
  EncryptInfo info = file.info;
  return Manager().calPassWordState(info, password);
}

int stateByLegacy(const File& file, const std::string& password) {
  CEncrypt record = file.record;
  record.setPassword(password);
  return GetPassWordState(record);
}

struct StateCase {
  const char* user;
  const char* owner;
  const char* given;
  int state;
};

constexpr StateCase states[] = {
    {"", "own", "own", 2},    {"", "own", "x", 6},    {"", "own", "", 6},    {"use", "own", "own", 3},
    {"use", "own", "use", 4}, {"use", "own", "x", 5}, {"use", "own", "", 5}, {"same", "same", "same", 7},
};

TEST(LegacyPassword, ReachesTheStatesThatTheManagerReaches) {
  for (const Kind& kind : kinds)
    for (const StateCase& row : states) {
      const File file = protect(kind, row.user, row.owner);
      EXPECT_EQ(stateByManager(file, row.given), row.state) << kind.name << ' ' << row.given;
      if (kind.revision == 2 && row.state == 6) continue;  // the next test
      EXPECT_EQ(stateByLegacy(file, row.given), row.state) << kind.name << ' ' << row.given;
    }
}

TEST(LegacyPassword, InRevision2WithoutAUserPasswordAnyTextCountsAsTheOwnersAndNotForTheManager) {
  const File file = protect(r2, "", "own");
  EXPECT_EQ(stateByLegacy(file, "x"), 2);
  EXPECT_EQ(stateByManager(file, "x"), 6);
}

TEST(LegacyPassword, WithoutAnAccessStateTheResultIs1WhateverTheTestsGive) {
  for (const StateCase& row : states) {
    File file = protect(r3, row.user, row.owner);
    file.record.accessState = CEncrypt::closed;
    EXPECT_EQ(stateByLegacy(file, row.given), 1) << row.given;
    EXPECT_EQ(stateByManager(file, row.given), row.state) << row.given;
  }
}

struct FlagsCase {
  const char* user;
  const char* given;
  bool first;
  bool second;
  int accessState;
};

TEST(LegacyPassword, LeavesTheFlagsOfTheStateAndAnAccessState) {
  constexpr FlagsCase rows[] = {
      {"", "own", true, false, 2},   {"", "x", true, false, 2},    {"use", "own", true, true, 2},
      {"use", "use", true, true, 3}, {"use", "x", false, true, 2}, {"own", "own", false, true, 3},
  };
  for (const FlagsCase& row : rows) {
    CEncrypt record = protect(r3, row.user, "own").record;
    record.setPassword(row.given);
    GetPassWordState(record);
    EXPECT_EQ(record.firstAccess, row.first) << row.user << ' ' << row.given;
    EXPECT_EQ(record.secondAccess, row.second) << row.user << ' ' << row.given;
    EXPECT_EQ(record.accessState, row.accessState) << row.user << ' ' << row.given;
  }
}

struct LeftKeyCase {
  Kind kind;
  const char* given;
  bool right;
};

TEST(LegacyPassword, LeavesTheFileKeyOfEitherPassword) {
  constexpr LeftKeyCase rows[] = {{r2, "use", true}, {r2, "own", true}, {r2, "x", false},
                                  {r3, "use", true}, {r3, "own", true}, {r4, "own", true}};
  for (const LeftKeyCase& row : rows) {
    const File file = protect(row.kind, "use", "own");
    CEncrypt record = file.record;
    record.setPassword(row.given);
    GetPassWordState(record);
    EXPECT_EQ(keyOf(record), row.right ? file.key : std::string(file.key.size(), '\0')) << row.given;
  }
}

TEST(LegacyPassword, StoresThePasswordsThatItFound) {
  CEncrypt record = protect(r3, "", "own").record;
  record.setPassword("own");
  GetPassWordState(record);
  EXPECT_EQ(record.ownerPassword, "own");
  EXPECT_EQ(record.userPassword, "");
  CEncrypt both = protect(r3, "own", "own").record;
  both.setPassword("own");
  GetPassWordState(both);
  EXPECT_EQ(both.ownerPassword, "");
}

TEST(LegacyPassword, PdfTryKeyGives0WhereTheManagerGivesTrue) {
  for (const Kind& kind : kinds) {
    File file = protect(kind, "use", "own");
    std::string right = padded("use");
    std::string wrong = padded("own");
    EXPECT_EQ(PdfTryKey(file.record, bytes(right)), 0) << kind.name;
    EXPECT_EQ(keyOf(file.record), file.key) << kind.name;
    EXPECT_TRUE(Manager().PdfTryKey(file.info, right)) << kind.name;
    EXPECT_EQ(PdfTryKey(file.record, bytes(wrong)), 3001) << kind.name;
    EXPECT_FALSE(Manager().PdfTryKey(file.info, wrong)) << kind.name;
  }
}

struct CompareCase {
  Kind kind;
  std::size_t lastByte;  ///< of /U that counts
};

/// By the test of the revision, which makes the key itself.
bool isUsers(const Kind& kind, CEncrypt& record, std::string password) {
  if (kind.revision == 2) return isUserPWD(record, bytes(password), static_cast<int>(password.size()));
  password = padded(password);
  return isUserPWDR3(record, bytes(password), true);
}

TEST(LegacyPassword, ComparesAsManyBytesOfUAsTheRevisionHas) {
  constexpr CompareCase rows[] = {{r2, 31}, {r3, 15}, {r4, 15}};
  for (const CompareCase& row : rows) {
    const File file = protect(row.kind, "use", "own");
    std::string right = padded("use"), user = file.info.U;
    CEncrypt record = file.record;
    for (std::size_t i = row.lastByte + 1; i < user.size(); ++i) user[i] = '?';
    record.U.put(user);
    EXPECT_EQ(PdfTryKey(record, bytes(right)), 0) << row.kind.name;
    EXPECT_TRUE(isUsers(row.kind, record, "use")) << row.kind.name;
    user[row.lastByte] = static_cast<char>(user[row.lastByte] ^ 1);
    record.U.put(user);
    EXPECT_EQ(PdfTryKey(record, bytes(right)), 3001) << row.kind.name;
    EXPECT_FALSE(isUsers(row.kind, record, "use")) << row.kind.name;
  }
}

TEST(LegacyPassword, IsOwnerPWDOfRevision2NeedsAUserPasswordWithoutAParenthesis) {
  std::string owner = "own";
  File file = protect(r2, "u(se", "own");
  EXPECT_FALSE(isOwnerPWD(file.record, bytes(owner), 3));
  File later = protect(r3, "u(se", "own");
  EXPECT_TRUE(isOwnerPWD(later.record, bytes(owner), 3));
  EXPECT_EQ(later.record.userPassword, "u");
}

/// /U with all but its first five bytes changed.
File withChangedTail(const Kind& kind) {
  File file = protect(kind, "use", "own");
  for (std::size_t i = 5; i < file.info.U.size(); ++i) file.info.U[i] = static_cast<char>(file.info.U[i] ^ 1);
  resaveEncryptInfo(file.info, file.record);
  return file;
}

TEST(LegacyPassword, PdfTryKeyCompares16BytesAndTheManagerAsManyAsTheKeyHas) {
  File file = withChangedTail(r3Short);
  std::string right = padded("use");
  EXPECT_EQ(PdfTryKey(file.record, bytes(right)), 3001);
  EXPECT_TRUE(Manager().PdfTryKey(file.info, right));
}

TEST(LegacyPassword, IsUserPWDR3Compares16BytesAndTheManagerAsManyAsTheKeyHas) {
  File file = protect(r3Short, "use", "own");
  std::string right = padded("use");
  EXPECT_FALSE(isUserPWDR3(file.record, bytes(right), true));
  EXPECT_TRUE(Manager().isUserPWDR3(file.info, right, true));
  File wide = protect(r3, "use", "own");
  EXPECT_TRUE(isUserPWDR3(wide.record, bytes(right), true));
  EXPECT_TRUE(Manager().isUserPWDR3(wide.info, right, true));
}

TEST(LegacyPassword, IsUserPWDR3StoresThePasswordAtHandAndTheManagerClears) {
  File file = protect(r3, "use", "own");
  file.record.setPassword("at hand");
  file.info.userPassword = "something";
  std::string right = padded("use");
  EXPECT_TRUE(isUserPWDR3(file.record, bytes(right), true));
  EXPECT_EQ(file.record.userPassword, "at hand");
  EXPECT_TRUE(Manager().isUserPWDR3(file.info, right, true));
  EXPECT_EQ(file.info.userPassword, "");
}

TEST(LegacyPassword, IsUserPWDR3TakesAnIdentifierThatBeginsWithAZeroByteAndTheManagerDoesNot) {
  Kind kind = r3;
  File file = protect(kind, "use", "own");
  file.info.fileIdentifier = std::string("\0identifier", 11);
  pcrypt::EncryptOption option;
  option.userPassword = "use";
  const pcrypt::PDFEncryptionManager maker;
  maker.createKey(file.info, "use");
  maker.calculateUKey(option, file.info);
  CEncrypt record;
  resaveEncryptInfo(file.info, record);
  std::string right = padded("use");
  EXPECT_TRUE(isUserPWDR3(record, bytes(right), true));
  EXPECT_FALSE(Manager().isUserPWDR3(file.info, right, true));
}

TEST(LegacyPassword, IsUserPWDR3WithoutRecomputingTestsTheKeyInHand) {
  File file = protect(r3, "use", "own");
  std::string none = padded("");
  EXPECT_FALSE(isUserPWDR3(file.record, bytes(none), false));
  file.record.fileKey.put(file.key);
  EXPECT_TRUE(isUserPWDR3(file.record, bytes(none), false));
}

TEST(LegacyPassword, IsUserPWDStoresThePasswordAndTheManagerDoesNot) {
  File file = protect(r2, "use", "own");
  std::string right = "use";
  std::string wrong = "own";
  EXPECT_TRUE(isUserPWD(file.record, bytes(right), 3));
  EXPECT_EQ(file.record.userPassword, "use");
  EXPECT_TRUE(Manager().isUserPWD(file.info, right));
  EXPECT_EQ(file.info.userPassword, "");
  EXPECT_FALSE(isUserPWD(file.record, bytes(wrong), 3));
  EXPECT_FALSE(Manager().isUserPWD(file.info, wrong));
}

TEST(LegacyPassword, IsUserPWDTakes32BytesAndTheManagerAll) {
  const std::string long32(32, 'p');
  File file = protect(r2, long32, "own");
  std::string longer = long32 + "more";
  EXPECT_TRUE(isUserPWD(file.record, bytes(longer), static_cast<int>(longer.size())));
  EXPECT_FALSE(Manager().isUserPWD(file.info, longer));
}

TEST(LegacyPassword, IsOwnerPWDStoresBothPasswords) {
  for (const Kind& kind : kinds) {
    File file = protect(kind, "use", "own");
    std::string right = "own";
    std::string wrong = "use";
    EXPECT_TRUE(isOwnerPWD(file.record, bytes(right), 3)) << kind.name;
    EXPECT_EQ(file.record.ownerPassword, "own") << kind.name;
    EXPECT_EQ(file.record.userPassword, "use") << kind.name;
    EXPECT_TRUE(Manager().isOwnerPWD(file.info, right)) << kind.name;
    EXPECT_EQ(file.info.ownerPassword, "own") << kind.name;
    EXPECT_FALSE(isOwnerPWD(file.record, bytes(wrong), 3)) << kind.name;
    EXPECT_FALSE(Manager().isOwnerPWD(file.info, wrong)) << kind.name;
  }
}

TEST(LegacyPassword, IsOwnerPWDTakesAUserPasswordOf32BytesAsEmptyAndTheManagerAsItIs) {
  const std::string user(32, 'u');
  std::string owner = "own";
  File early = protect(r2, user, owner);
  EXPECT_FALSE(isOwnerPWD(early.record, bytes(owner), 3));
  EXPECT_TRUE(Manager().isOwnerPWD(early.info, owner));
  File later = protect(r3, user, owner);
  EXPECT_TRUE(isOwnerPWD(later.record, bytes(owner), 3));
  EXPECT_EQ(later.record.userPassword, "");
  EXPECT_TRUE(Manager().isOwnerPWD(later.info, owner));
  EXPECT_EQ(later.info.userPassword, user);
}

TEST(LegacyPassword, IsOwnerPWDStoresAnEmptyUserPasswordAndTheManagerItsPadding) {
  File file = protect(r3, "", "own");
  std::string owner = "own";
  EXPECT_TRUE(isOwnerPWD(file.record, bytes(owner), 3));
  EXPECT_EQ(file.record.userPassword, "");
  EXPECT_TRUE(Manager().isOwnerPWD(file.info, owner));
  EXPECT_EQ(file.info.userPassword, padded(""));
}

TEST(LegacyPassword, IsOwnerPWDPutsAFileKeyBackThatWasThere) {
  File file = protect(r3, "use", "own");
  std::string owner = "own";
  const std::string there(16, 'k');
  file.record.fileKey.put(there);
  EXPECT_TRUE(isOwnerPWD(file.record, bytes(owner), 3));
  EXPECT_EQ(keyOf(file.record), there);
  CEncrypt without = protect(r3, "use", "own").record;
  EXPECT_TRUE(isOwnerPWD(without, bytes(owner), 3));
  EXPECT_EQ(keyOf(without), file.key);
}

TEST(LegacyPassword, CreatekeyMakesTheManagersKey) {
  for (const Kind& kind : kinds)
    for (const bool metadata : {true, false}) {
      File file = protect(kind, "use", "own");
      file.info.encryptMetadata = file.record.encryptMetadata = metadata;
      std::string password = padded("use");
      createkey(file.record, bytes(password));
      Manager().createKey(file.info, password, false, false);
      EXPECT_EQ(keyOf(file.record), file.info.fileKey) << kind.name;
      EXPECT_EQ(keyOf(file.record) == file.key, metadata) << kind.name;
    }
}

TEST(LegacyPassword, CreateTestKeyLeavesTheFileKeyAlone) {
  const File file = protect(r3, "use", "own");
  std::string buffer = padded("use");
  createTestKey(file.record, bytes(buffer), false);
  EXPECT_EQ(buffer.substr(0, 16), file.key);
  EXPECT_EQ(buffer.substr(16), padded("use").substr(16));
  EXPECT_EQ(keyOf(file.record), std::string(16, '\0'));
}

TEST(LegacyPassword, CreateTestKeyWithHashOnlyStopsAfterOneHashAndTheManagersGoesOn) {
  File file = protect(r3, "use", "own");
  std::string buffer = padded("own");
  createTestKey(file.record, bytes(buffer), true);
  std::string once;
  pcrypt::PDFEncryptionMD5().MD5(padded("own"), once, 16);
  EXPECT_EQ(buffer.substr(0, 16), once);
  std::string byManager = padded("own");
  Manager().createKey(file.info, byManager, true, true);
  EXPECT_NE(byManager, once);
}

struct KeyCase {
  const char* user;
  const char* given;
  int revision;
  int result;
  int accessState;
  bool first;
  bool second;
};

TEST(LegacyPassword, GetFileKeyUsesTheShortOwnerWayForEveryRevision) {
  constexpr KeyCase rows[] = {
      {"", "", 2, 0, 2, true, false},          {"", "x", 3, 0, 2, true, false},
      {"use", "use", 3, 0, 3, false, true},    {"use", "own", 2, 0, 3, false, true},
      {"use", "own", 3, 3001, 3, false, true}, {"use", "x", 2, 3001, 3, false, true},
  };
  for (const KeyCase& row : rows) {
    const File file = protect(row.revision == 2 ? r2 : r3, row.user, "own");
    CEncrypt record = file.record;
    record.setPassword(row.given);
    EXPECT_EQ(GetFileKey(record), row.result) << row.given << row.revision;
    EXPECT_EQ(record.accessState, row.accessState) << row.given << row.revision;
    EXPECT_EQ(record.firstAccess, row.first) << row.given << row.revision;
    EXPECT_EQ(record.secondAccess, row.second) << row.given << row.revision;
    EXPECT_EQ(keyOf(record), row.result == 0 ? file.key : std::string(file.key.size(), '\0'));
  }
}

TEST(LegacyPassword, TheManagerFindsTheKeyOfAnOwnerPasswordOfRevision3) {
  File file = protect(r3, "use", "own");
  bool needed = false;
  bool empty = false;
  EXPECT_TRUE(Manager().getFileKey(file.info, "own", needed, empty));
  EXPECT_EQ(file.info.fileKey, file.key);
}

TEST(LegacyPassword, GetFileKeyWithoutAnAccessStateTriesTheEmptyPasswordAlone) {
  CEncrypt open = protect(r3, "", "own").record;
  open.accessState = CEncrypt::closed;
  EXPECT_EQ(GetFileKey(open), 0);
  EXPECT_EQ(open.accessState, CEncrypt::closed);
  CEncrypt shut = protect(r3, "use", "own").record;
  shut.accessState = CEncrypt::closed;
  shut.setPassword("use");
  EXPECT_EQ(GetFileKey(shut), 3001);
  EXPECT_FALSE(shut.secondAccess);
}

TEST(LegacyPassword, KnowsNothingOfRevisions5And6) {
  CEncrypt record = protect(r3, "", "").record;
  for (const int revision : {5, 6}) {
    record.R = revision;
    std::string empty = padded("");
    EXPECT_EQ(PdfTryKey(record, bytes(empty)), 3001);
  }
}

TEST(LegacyPassword, AnUnknownKeyLengthOpensNothing) {
  for (const int length : {0, 7, -8, 2147483647}) {
    CEncrypt record = protect(r3, "use", "own").record;
    record.keyLength = length;
    record.setPassword("use");
    EXPECT_EQ(GetFileKey(record), 3001) << length;
    EXPECT_EQ(GetPassWordState(record), 5) << length;
  }
}

TEST(LegacyPassword, CalcKeyIsTheManagersKeyExceptForMethod3) {
  File file = protect(r4, "use", "own");
  file.info.fileKey = file.key;
  file.record.fileKey.put(file.key);
  const SObj object(70000, 300);
  std::string legacy;
  std::string manager;
  for (const int method : {1, 2, 3}) {
    file.info.method = file.record.method = method;
    calcKey(file.record, &object, legacy);
    Manager().calculateKey(object.objNum, object.genNum, file.info, manager);
    EXPECT_EQ(legacy == manager, method != 3) << method;
    EXPECT_EQ(legacy.size(), 16U);
  }
}

TEST(LegacyPassword, CalcKeyOfAShortFileKeyCountsTheSalt) {
  CEncrypt record;
  record.keyLength = 40;
  record.method = 1;
  std::string key;
  const SObj object(1, 0);
  calcKey(record, &object, key);
  EXPECT_EQ(key.size(), 10U);
  record.method = 2;
  calcKey(record, &object, key);
  EXPECT_EQ(key.size(), 14U);
}

TEST(LegacyPassword, DecryptAESUndoesEncryptAES) {
  std::string key = "0123456789abcdef";
  for (const std::size_t size : {0U, 1U, 15U, 16U, 31U, 100U}) {
    std::string data(size, 'd');
    encryptAES(data, bytes(key), 4);
    int length = static_cast<int>(data.size());
    EXPECT_EQ(decryptAES(bytes(data), length, bytes(key)), 0) << size;
    EXPECT_EQ(data.substr(0, static_cast<std::size_t>(length)), std::string(size, 'd'));
  }
}

TEST(LegacyPassword, DecryptAESRefusesWhatTheManagerPassesOver) {
  std::string key = "0123456789abcdef";
  EncryptInfo info;
  info.fileKey = key;
  info.fileKeyForAllObjects = true;
  info.method = 2;
  for (const std::size_t size : {17U, 32U, 48U}) {
    std::string data(size, 'x');
    int length = static_cast<int>(size);
    EXPECT_EQ(decryptAES(bytes(data), length, bytes(key)), -1) << size;
    EXPECT_EQ(length, static_cast<int>(size));
    Manager().DecryptData(info, 1, 0, bytes(data), &length);
    EXPECT_EQ(length, static_cast<int>(size));
    EXPECT_EQ(data, std::string(size, 'x'));
  }
}

TEST(LegacyPassword, SmallFunctionsAreThoseOfTheLibrary) {
  std::string data = "abc";
  std::string digest(16, '\0');
  EXPECT_EQ(MD5decrypt(bytes(data), 3, bytes(digest), 16), 0);
  EXPECT_EQ(digest, "\x90\x01\x50\x98\x3c\xd2\x4f\xb0\xd6\x96\x3f\x7d\x28\xe1\x7f\x72");
  std::string key = "Key";
  std::string text = "Plaintext";
  EXPECT_EQ(decryptrc4(bytes(text), 9, bytes(key), 3), 0);
  EXPECT_EQ(text, "\xBB\xF3\x16\xE8\xD9\x40\xAF\x0A\xD3");
}

}  // namespace
