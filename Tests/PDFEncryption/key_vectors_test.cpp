// Keys and entries of the standard security handler, byte for byte. What is expected was computed by another
// program from the standard's steps, and from what is told beside the case where these steps part from it.

#include <gtest/gtest.h>

#include "PDFEncryption/decryptionmanager.h"
#include "PDFEncryption/encryptionmanager.h"
#include "PDFEncryption/hardenedhash.h"
#include "Tests/PDFEncryption/bytes_in_tests.h"
#include "Tests/PDFEncryption/protection.h"

namespace {

using namespace pcrypt;
using raw::hex;
using raw::padText;
using raw::toHex;

const PDFDecryptionManager reader;
const PDFEncryptionManager writer;

const std::string ownerEntry = "owner entry of thirty-two bytes.";
const std::string identifier = "identifier-of-16";
const std::string zeroIdentifier = '\0' + identifier.substr(1);
const std::string filler16(16, '\x5a');
const std::string fillerSalts = toHex(filler16);

std::string padded(const std::string& password) { return (password + padText).substr(0, 32); }

EncryptInfo infoOf(int revision, int keyLength) {
  EncryptInfo info;
  info.R = revision;
  info.keyLength = keyLength;
  info.permissions = -1340;
  info.fileIdentifier = identifier;
  info.O = ownerEntry;
  return info;
}

// The file key up to revision 4.

struct KeyCase {
  const char* name;
  int revision, keyLength;
  bool metadata;
  std::string identifier, password, O, key;
};
void PrintTo(const KeyCase& row, std::ostream* out) { *out << row.name; }

class FileKey : public testing::TestWithParam<KeyCase> {
 protected:
  static EncryptInfo info() {
    EncryptInfo result = infoOf(GetParam().revision, GetParam().keyLength);
    result.encryptMetadata = GetParam().metadata;
    result.fileIdentifier = GetParam().identifier;
    result.O = GetParam().O;
    return result;
  }
};

TEST_P(FileKey, OfTheReadingSide) {
  EncryptInfo made = info();
  std::string password = GetParam().password;
  reader.createKey(made, password, false, false);
  EXPECT_EQ(toHex(made.fileKey), GetParam().key);
}

TEST_P(FileKey, OfTheWritingSide) {
  EncryptInfo made = info();
  writer.createKey(made, GetParam().password);
  EXPECT_EQ(toHex(made.fileKey), GetParam().key);
}

INSTANTIATE_TEST_SUITE_P(
    Suite, FileKey,
    testing::Values(KeyCase{"R2", 2, 40, true, identifier, "user", ownerEntry, "d6789c409d"},
                    KeyCase{"R2ClearMetadata", 2, 40, false, identifier, "user", ownerEntry, "a8ae074b12"},
                    KeyCase{"R2NoIdentifier", 2, 40, true, "", "user", ownerEntry, "8ea20d1b6e"},
                    KeyCase{"R3Bits40", 3, 40, true, identifier, "user", ownerEntry, "de8471332c"},
                    KeyCase{"R3Bits64", 3, 64, true, identifier, "user", ownerEntry, "a2586eafe037d5eb"},
                    KeyCase{"R3ClearMetadata", 3, 128, false, identifier, "user", ownerEntry,
                            "81f06f40d6431b5a54866ad28d7705ff"},
                    KeyCase{"R3NoPassword", 3, 128, true, identifier, "", ownerEntry,
                            "3213d89fc2b28815906c78b639aa5749"},
                    KeyCase{"R3IdentifierBehindAZeroByte", 3, 128, true, zeroIdentifier, "user", ownerEntry,
                            "ce614e4dc4825c2c543ede3673313438"},
                    KeyCase{"R4OwnerEntryCountsWhole", 4, 128, true, identifier, "user",
                            ownerEntry + "and sixteen more", "69154b96e01128838c44a136064433c6"},
                    KeyCase{"R4Bits256", 4, 256, true, identifier, "user", ownerEntry,
                            "1d5d67c301569831d6b0f24e647211a1"},
                    KeyCase{"R4PasswordOf200Bytes", 4, 128, true, identifier, std::string(200, 'p'),
                            ownerEntry, "7d4b4bfc18a5f2a627d681006dbdcbf1"},
                    KeyCase{"R5Bits128", 5, 128, false, identifier, "user", ownerEntry,
                            "81f06f40d6431b5a54866ad28d7705ff"}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST(FileKeyInput, TakesThePermissionsLowByteFirst) {
  EncryptInfo info = infoOf(3, 128);
  info.permissions = 0x01020304;
  writer.createKey(info, "user");
  EXPECT_EQ(toHex(info.fileKey), "fd67765d9e800e7b1c789e3bb03cb187");
}

struct HashCase {
  int revision, keyLength;
  const char* hash;
};

TEST(HashOnly, OfAPasswordHas50MoreRoundsFromRevision3On) {
  constexpr HashCase rows[] = {{2, 40, "1cb251ec0d"}, {3, 40, "7b1a6b6ac6"}};
  for (const HashCase& row : rows) {
    EncryptInfo info = infoOf(row.revision, row.keyLength);
    std::string password = "text";
    reader.createKey(info, password, true, true);
    EXPECT_EQ(toHex(password), row.hash);
    EXPECT_EQ(info.fileKey, "");
  }
}

TEST(HashOnly, OfABufferHasNoMoreRounds) {
  constexpr HashCase rows[] = {{2, 40, "31d9734a2e"}, {3, 128, "31d9734a2e0e5369eae2fb2f6a923b10"}};
  for (const HashCase& row : rows) {
    EncryptInfo info = infoOf(row.revision, row.keyLength);
    std::string buffer = padded("user");
    reader.createKey(info, raw::at(buffer), true, true);
    EXPECT_EQ(toHex(buffer),
              row.hash + toHex(padded("user").substr(static_cast<std::size_t>(row.keyLength / 8))));
  }
}

struct BufferCase {
  int revision, keyLength;
  std::size_t identifierSize;
  bool metadata;
  const char* key;
};

// 32 bytes of /O, 4 of the permissions and 188 of the identifier fill the 224; the flag's bytes are lost
// behind them.
TEST(BufferKey, Hashes224BytesBehindThePassword) {
  constexpr BufferCase rows[] = {{3, 128, 187, false, "43cbdeb9d5839e1d105c6b47f17f3763"},
                                 {3, 128, 188, false, "c09ff5f0b6d9fb94f95202db9849adb6"},
                                 {3, 128, 188, true, "c09ff5f0b6d9fb94f95202db9849adb6"},
                                 {3, 128, 189, true, "c09ff5f0b6d9fb94f95202db9849adb6"},
                                 {2, 40, 300, true, "f97f478ccf"}};
  for (const BufferCase& row : rows) {
    EncryptInfo info = infoOf(row.revision, row.keyLength);
    info.fileIdentifier = std::string(row.identifierSize, 'i');
    info.encryptMetadata = row.metadata;
    std::string buffer = padded("user");
    reader.createKey(info, raw::at(buffer), false, false);
    EXPECT_EQ(toHex(info.fileKey), row.key) << row.identifierSize;
    EXPECT_EQ(buffer, padded("user"));
  }
}

// The file key of revisions 5 and 6.

/// Entries whose salts differ in sight, and 0 to 63 as the encrypted keys.
EncryptInfo sealedInfo(int revision) {
  EncryptInfo info;
  info.R = revision;
  info.keyLength = 256;
  info.U = std::string(32, 'u') + "validatekeysalt.";
  info.O = std::string(32, 'o') + "validatekeysalt.";
  for (char i = 0; i < 32; ++i) {
    info.UE += i;
    info.OE += static_cast<char>(32 + i);
  }
  return info;
}

struct SealedCase {
  int revision;
  bool owner;
  const char* password;
  const char* key;
};

constexpr SealedCase sealedKeys[] = {
    {5, false, "user", "b461610b654e6ed9846d9622f8eaa77f2d3316fe99ae9f975ea42ca6b0f01962"},
    {6, false, "user", "0244015469d2c5813a29b60a0b387dbc9614260beae2c95ae084040bb5a19be8"},
    {5, true, "own", "f8cea290c73a3966f1ce599679ee2c1b269345d3a130be4f5463ce46f72eae2a"},
    {6, true, "own", "a9dc377522debb031ff3f419421578a9d6946778c74086de7dcc0ed9f1c49268"}};

TEST(SealedKey, IsDecryptedUnderAHashWithTheKeySalt) {
  for (const SealedCase& row : sealedKeys) {
    EncryptInfo info = sealedInfo(row.revision);
    std::string password = row.password;
    reader.createKeyAES256(info, password, false, row.owner);
    EXPECT_EQ(toHex(info.fileKey), row.key) << row.revision << row.password;
    EXPECT_EQ(password, row.password);
  }
}

TEST(SealedKey, IsMadeByCreateKeyTooWhoseLastArgumentMeansTheOwner) {
  for (const SealedCase& row : sealedKeys) {
    EncryptInfo info = sealedInfo(row.revision);
    std::string password = row.password;
    reader.createKey(info, password, true, row.owner);
    EXPECT_EQ(toHex(password), row.key) << row.revision << row.password;
    EXPECT_EQ(info.fileKey, "");
  }
}

TEST(SealedKey, OfABufferComesFromTheValidationSalt) {
  EncryptInfo info = sealedInfo(5);
  std::string buffer = padded("user");
  buffer[4] = '\0';
  reader.createKey(info, raw::at(buffer), false, false);
  EXPECT_EQ(toHex(info.fileKey), "cfb78c30c7d59c8ba5a9d794d8f33d79af9a342f93b45aa658e64839bd396503");
}

// The hash of revision 6. It ends at the first round from 63 on whose number, less 31, is at least the last
// byte; these passwords tell the bounds apart.

struct SlowHashCase {
  const char* password;
  bool user;
  const char* hash;
};

constexpr SlowHashCase slowHashes[] = {
    // round 63, and its bound met exactly
    {"user971", true, "57b7bbc0387a34bcb77465e7402ab546427e1966667a36ac6022da86aa3fb791"},
    {"own394", false, "6d9f624e03edbfe215a54070cd92abb83fde70b2a48eb2cd9f7d1cdb3c42fea1"},
    // a later round, and its bound met exactly
    {"user20", true, "2aa335f21a5cfa13f8f9f9a0147ead38244490c5d65717e59b8510c28e4a7a89"},
    {"own61", false, "6e21b34ca408c4e3fd1a95c2870fb9e2aadc3299bd9070cd8e3e2892d1de2723"},
    // round 63 misses its bound by one
    {"user73", true, "b076bed2e9b6f7e42c87503be51a2e1e5749616858327535b58bf0eff0a3aed8"},
    {"own7", false, "0ef00915b808f9a410fe5b87500a8d6e7ecf9f734d3fcc5fa7c600a4926c7d68"},
    // round 62 would do
    {"user0", true, "851b35f7b15fc1b0946aff634c835f14901d1862eeadc910c06148020ff87172"},
    {"own2", false, "8c48c76347c89f26e3667471e524e14136814b5965d8943dc3c81510e6862101"},
};

TEST(SlowHash, EndsAtTheRoundThatItsLastByteSays) {
  const std::string salts = "validatekeysalt.";
  for (const SlowHashCase& row : slowHashes) {
    EncryptInfo info;
    info.R = 6;
    info.U = (row.user ? hex(row.hash) : std::string(32, 'u')) + salts;
    info.O = (row.user ? std::string(32, 'o') : hex(row.hash)) + salts;
    const bool fits =
        row.user ? reader.isUserPWDR6(info, row.password) : reader.isOwnerPWD6(info, row.password);
    EXPECT_TRUE(fits) << row.password;
  }
}

/// What a hash begins with, under the salts of the test above.
HardenedHash beginOf(const SlowHashCase& row) {
  const std::string u = row.user ? "" : std::string(32, 'u') + "validatekeysalt.";
  const std::string text = row.password + std::string("validate") + u;
  return {row.password, raw::openssl("dgst -sha256 -binary", text), u};
}

TEST(SlowHash, SeveralAtOnceAreWhatEachIsByItself) {
  for (std::size_t count = 0; count <= std::size(slowHashes); ++count) {
    std::vector<HardenedHash> together;
    for (std::size_t i = 0; i < count; ++i) together.push_back(beginOf(slowHashes[i]));
    harden(together);
    for (std::size_t i = 0; i < count; ++i) EXPECT_EQ(toHex(together[i].hash), slowHashes[i].hash) << count;
  }
}

TEST(SlowHash, OfATextThatTheCipherCannotCountIsTheFirstHash) {
  constexpr std::size_t mebi = std::size_t{1} << 20;
  std::vector<HardenedHash> together = {{std::string(4 * mebi, 'p'), "begin", ""}, beginOf(slowHashes[0])};
  harden(together);
  EXPECT_EQ(together[0].hash, "begin" + std::string(27, '\0'));
  EXPECT_EQ(toHex(together[1].hash), slowHashes[0].hash);
}

struct HashCountCase {
  const char *user, *password;
  bool opens;
  std::size_t count;  ///< key and test of the empty password, both of the given one, test of the owner's
  int state;
};

TEST(SlowHash, IsMadeBeforeADecisionAsksForIt) {
  const HashCountCase rows[] = {
      {"user", "user", true, 5, PDFDecryptionManager::userOnly},
      {"user", "owner", true, 6, PDFDecryptionManager::ownerOnly},  // and the owner's key
      {"user", "x", false, 5, PDFDecryptionManager::neither},
      {"", "", true, 3, PDFDecryptionManager::emptyNotOwner}};
  for (const HashCountCase& row : rows) {
    PDFEncryptionManager::useSystemRandom();  // equal salts would give equal hashes
    EncryptInfo info = stored(protect(6, 256, row.user, "owner"));
    PDFEncryptionManager::useSystemRandom(false);
    bool needed = false, empty = false;
    info.knownHashes.clear();
    EXPECT_EQ(reader.getFileKey(info, row.password, needed, empty), row.opens) << row.password;
    EXPECT_EQ(info.knownHashes.size(), row.count) << row.password;
    const auto known = info.knownHashes;
    std::string password = row.password;
    EXPECT_EQ(reader.calPassWordState(info, password), row.state);
    EXPECT_EQ(info.knownHashes, known) << row.password;
  }
}

// Entries of the dictionary.

struct OwnerEntryCase {
  int revision, keyLength;
  std::string user, owner;
  const char* O;
};

TEST(OwnerEntry, OfEachRevisionUpTo4) {
  const OwnerEntryCase rows[] = {
      {2, 40, "user", "owner", "94e8094419662a774442fb072e3d9f19e9d130ec09a4d0061e78fe920f7ab62f"},
      {2, 40, "user", "", "8ec99e00c3d184910a4064df0f9516b041362b9bf1dc3f68d15bf71fb16dc5f3"},
      {3, 40, "user", "owner", "cf2662e6fb01997cc7651e17056d4dfad2c78dd5f3f4109bdffb50433bb04670"},
      {3, 64, "user", "owner", "c72a52a5d0d5489d9d674ab6a9a8c5bd0c1adad9602807eb1f52867fedb2cd61"},
      {3, 128, "", "", "36451bd39d753b7c1d10922c28e6665aa4f3353fb0348b536893e3b1db5c579b"},
      {4, 128, std::string(32, 'u'), std::string(32, 'o'),
       "ed37c6b22869e4e6ce0e44dec859189b8dc96992a9213255916689bf79abdb00"},
      // A key below 8 bits is empty, and RC4 under it undoes itself with each second pass.
      {2, 7, "user", "owner", "7776627f25a85176664db80932653bd07d5ab5c1f1d857bda62359048dcd487b"},
      {3, 7, "user", "owner", "7573657228bf4e5e4e758a4164004e56fffa01082e2e00b6d0683e802f0ca9fe"},
  };
  for (const OwnerEntryCase& row : rows) {
    EncryptInfo info;
    info.R = row.revision;
    info.keyLength = 128;  // that of the option counts
    EncryptOption option;
    option.userPassword = row.user;
    option.ownerPassword = row.owner;
    option.keyLength = row.keyLength;
    writer.calculateOKey(option, info);
    EXPECT_EQ(toHex(info.O), row.O) << row.revision << ' ' << row.keyLength;
    EXPECT_EQ(info.OE, "");
  }
}

struct UserEntryCase {
  int revision;
  std::string key, identifier;
  const char* U;
};

TEST(UserEntry, OfEachRevisionUpTo4) {
  const std::string key16 = "0123456789abcdef";
  const UserEntryCase rows[] = {
      {2, "12345", identifier, "788a763c626b862eff239ae6279cd31ed748398f6d202c621a06b114e36232a0"},
      {3, "12345", identifier, "4225f2caa1b82001eef12c3ee3373d7e28bf4e5e4e758a4164004e56fffa0108"},
      {3, "12345", zeroIdentifier, "13235d2e81dccdea86d4e05c2238901028bf4e5e4e758a4164004e56fffa0108"},
      {3, "12345", "", "59fcee760395d32104977acca16d89c728bf4e5e4e758a4164004e56fffa0108"},
      {4, key16, identifier, "1695de2bd1fb5b1586163064f18a820228bf4e5e4e758a4164004e56fffa0108"}};
  for (const UserEntryCase& row : rows) {
    EncryptInfo info;
    info.R = row.revision;
    info.keyLength = 8 * raw::size(row.key);
    info.fileKey = row.key;
    info.fileIdentifier = row.identifier;
    writer.calculateUKey({}, info);
    EXPECT_EQ(toHex(info.U), row.U) << row.revision;
    EXPECT_EQ(info.UE, "");
  }
}

struct SealedEntriesCase {
  int revision;
  std::string user, owner;
  const char *U, *UE, *O, *OE;
};

// Long passwords count whole here; readers cut them.
TEST(SealedEntries, TakeThePasswordsWholeAndTheUsersForAnEmptyOwners) {
  const std::string user130(130, 'u'), owner140(140, 'o');
  const SealedEntriesCase rows[] = {
      {5, user130, owner140, "62b312bfc312a5146cc1ffa332892489b9e47caaf84b0d5c890ec740bd9ebfca",
       "de2d3f795051f8379d6d03280ebfbd33eb457dab559a0ad4dcd348b9fc45f18d",
       "d2b0d6ec105f204fac8773b26bc14dc21c7f83a2cfcabb620a00f9374f299d9a",
       "b2afbd178ea96d9eca4085419c7537d27b6efeec1344e4cbdb91ff25fda5e911"},
      {6, user130, owner140, "fb0c0a7e12e4e6b3eb0b143c80eb4bdc6494cfe96c0c6d02d7a702c18f98571e",
       "b851d09a191f4cd0d5d7ebff6a6c2b8470477651a526f2010abb06fc34e06cc6",
       "73ce4d8e53f902f0c418161dc3883861148e74e3954313311a6e4151a275cb79",
       "460487f6a5c7717b5ad23c06e276ae9481bfc3345cfaf966554c1ff397d68b41"},
      {5, "user", "", "4e3d0414a541dbd4efd3e0b5e3b6db9cfd397aef05fc6a0d06aa88f564bf1a8b",
       "227c17cff0fd37a08b122ff74960fce1a0a9fd289563ea10e9764f7957976a7d",
       "387f17ba38f247438b8fb75eb7218bfc99472b0a8580660368a8981e68cf7e29",
       "4008bb4f2a485e7c655822f2ea56178e1509ee63ea1adfd24d3999393898d74a"},
      {6, "user", "", "7387fe3fcbd9752731be4ee8b5c5e8c8ab649ffacc66a7cc80b09cd22403b5f1",
       "d8c207033539f79b0b6290f24f37c93329cfdf4e1444617c6f787c2e96073f98",
       "bf08c5e1ef7e790a085b254f0d5beadf276fea041d7a82be578780ebf7e4f247",
       "4e63b4e848b277b2a89231a3cf1131d24e3a14953b84b98a20d553af19dcb96e"}};
  for (const SealedEntriesCase& row : rows) {
    EncryptInfo info = infoOf(row.revision, 256);
    EncryptOption option;
    option.userPassword = row.user;
    option.ownerPassword = row.owner;
    writer.createKey(info, row.user);
    EXPECT_EQ(info.fileKey, filler16 + filler16);
    writer.calculateUKey(option, info);
    writer.calculateOKey(option, info);
    EXPECT_EQ(toHex(info.U), row.U + fillerSalts) << row.revision;
    EXPECT_EQ(toHex(info.UE), row.UE) << row.revision;
    EXPECT_EQ(toHex(info.O), row.O + fillerSalts) << row.revision;
    EXPECT_EQ(toHex(info.OE), row.OE) << row.revision;
  }
}

struct PermsCase {
  int permissions;
  bool metadata;
  const char* perms;
};

TEST(PermsEntry, IsOfTheOptionAndNotOfTheInfo) {
  constexpr PermsCase rows[] = {{-44, false, "f0dbc2b2fb49bb19d3818a41367d431f"},
                                {0x01020304, true, "59d3bfa934bbc2de9ce298639f6a8e58"}};
  for (const PermsCase& row : rows) {
    for (const int revision : {5, 6}) {
      EncryptInfo info = infoOf(revision, 256);
      info.encryptMetadata = !row.metadata;
      info.fileKey = std::string(32, 'k');
      EncryptOption option;
      option.permissions = row.permissions;
      option.encryptMetadata = row.metadata;
      writer.calculatePerms(option, info);
      EXPECT_EQ(toHex(info.Perms), row.perms);
    }
  }
}

// A file key in hand is good when bytes 9 to 11 of what it makes of /Perms are "adb"; the others don't count.
TEST(PermsEntry, OpensForAFileKeyByThreeOfItsBytes) {
  EncryptInfo info = sealedInfo(6);
  info.fileKey = std::string(32, 'k');
  info.userPassword = "left over";
  info.Perms = hex("08ff07c5ae2a2067ffe53189818e2347");  // "123456789adb3456"
  EXPECT_TRUE(reader.isUserPWDR6(info, "wrong"));
  EXPECT_EQ(info.userPassword, "left over");
  info.Perms = hex("252052b8322ef4589d7d49a6186fda66");  // "123456789adc3456"
  EXPECT_FALSE(reader.isUserPWDR6(info, "wrong"));
}

}  // namespace
