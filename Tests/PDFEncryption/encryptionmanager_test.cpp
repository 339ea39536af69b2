#include "PDFEncryption/encryptionmanager.h"

#include <gtest/gtest.h>

#include "PDFEncryption/decryptionmanager.h"
#include "PDFEncryption/rc4.h"
#include "PDFEncryption/rijndael.h"
#include "Tests/PDFEncryption/bytes_in_tests.h"
#include "Tests/PDFEncryption/protection.h"

namespace {

using namespace pcrypt;
using raw::hex;
using raw::padText;
using raw::toHex;

const std::string filler16(16, '\x5a');

/// Entries that another program computed from the standard's steps, for user password "user", owner password
/// "owner", the identifier and permissions of `protect`, and 0x5a for each random byte.
struct Published {
  int revision, keyLength;
  std::string O, U, OE, UE, Perms;
};

const Published published[] = {
    {2, 40, "94e8094419662a774442fb072e3d9f19e9d130ec09a4d0061e78fe920f7ab62f",
     "c32ed13b2719e33b74adbc9a42e11f4bc92942ea4c9270276ecb2a004aec12db", "", "", ""},
    {3, 128, "0ba3835f88f90388e74e54584125ce142be0de24c6b0d37746e075b891756671",
     "d968e4d6d4ed52ed1874a93d59cdf23628bf4e5e4e758a4164004e56fffa0108", "", "", ""},
    {4, 128, "0ba3835f88f90388e74e54584125ce142be0de24c6b0d37746e075b891756671",
     "d968e4d6d4ed52ed1874a93d59cdf23628bf4e5e4e758a4164004e56fffa0108", "", "", ""},
    {5, 256,
     "1a4820165f5b42a9f2e6a45e4c75f95a3304c1e613f922235c1ae834ef54d01a5a5a5a5a5a5a5a5a5a5a5a5a5a5a5a5a",
     "4e3d0414a541dbd4efd3e0b5e3b6db9cfd397aef05fc6a0d06aa88f564bf1a8b5a5a5a5a5a5a5a5a5a5a5a5a5a5a5a5a",
     "109d63dec32bdb4888512c301dc803e8972e243ce7f47c503c6bfde91fd83949",
     "227c17cff0fd37a08b122ff74960fce1a0a9fd289563ea10e9764f7957976a7d", "191c0d622e072b4b9d2a84ca1ee7f207"},
    {6, 256,
     "8f8c36119587612160b6f6fc7954dde52d2aba1e553f61a28f5d87b64a3eb8445a5a5a5a5a5a5a5a5a5a5a5a5a5a5a5a",
     "7387fe3fcbd9752731be4ee8b5c5e8c8ab649ffacc66a7cc80b09cd22403b5f15a5a5a5a5a5a5a5a5a5a5a5a5a5a5a5a",
     "f4f6b366aa4155ca766a0840e139ec2a8dbc3833e17a1bbde2e21e17ed23fdd3",
     "d8c207033539f79b0b6290f24f37c93329cfdf4e1444617c6f787c2e96073f98", "191c0d622e072b4b9d2a84ca1ee7f207"},
};

TEST(EncryptionManager, EntriesEqualThoseThatTheStandardsStepsGive) {
  for (const Published& p : published) {
    const EncryptInfo info = protect(p.revision, p.keyLength, "user", "owner");
    EXPECT_EQ(toHex(info.O), p.O) << p.revision;
    EXPECT_EQ(toHex(info.U), p.U) << p.revision;
    EXPECT_EQ(toHex(info.OE), p.OE) << p.revision;
    EXPECT_EQ(toHex(info.UE), p.UE) << p.revision;
    EXPECT_EQ(toHex(info.Perms), p.Perms) << p.revision;
  }
}

TEST(EncryptionManager, FileKeysEqualThoseThatTheStandardsStepsGive) {
  EXPECT_EQ(toHex(protect(2, 40, "user", "owner").fileKey), "c01e642911");
  EXPECT_EQ(toHex(protect(3, 128, "user", "owner").fileKey), "8c8b000fb9e91ef3ecb6290bbbad4737");
  EXPECT_EQ(protect(6, 256, "user", "owner").fileKey, filler16 + filler16);
}

TEST(EncryptionManager, PermsStayBelowRevision5) {
  EncryptInfo info;
  info.R = 4;
  info.Perms = "as before";
  PDFEncryptionManager().calculatePerms({}, info);
  EXPECT_EQ(info.Perms, "as before");
}

TEST(EncryptionManager, PermsHoldTheOptionsPermissionsAndMetadataFlag) {
  EncryptInfo info;
  EncryptOption option;
  info.R = 6;
  info.fileKey = std::string(32, 'k');
  option.permissions = -44;
  option.encryptMetadata = false;
  PDFEncryptionManager().calculatePerms(option, info);
  Rijndael cipher;
  std::string plain(16, '?');
  cipher.init(Rijndael::ECB, Rijndael::Decrypt, raw::at(info.fileKey), Rijndael::Key32Bytes);
  cipher.blockDecrypt(raw::at(info.Perms), 128, raw::at(plain));
  EXPECT_EQ(toHex(plain), "d4ffffffffffffff466164625a5a5a5a");
}

TEST(EncryptionManager, UserPasswordStandsForAnEmptyOwnerPassword) {
  for (const auto& [revision, keyLength] : {std::pair{2, 40}, {3, 128}, {5, 256}, {6, 256}}) {
    EXPECT_EQ(protect(revision, keyLength, "same", "").O, protect(revision, keyLength, "same", "same").O);
    EXPECT_NE(protect(revision, keyLength, "same", "").O, protect(revision, keyLength, "same", "other").O);
  }
}

TEST(EncryptionManager, UserEntryOfRevision2DecryptsToThePadding) {
  EncryptInfo info = protect(2, 40, "user", "owner");
  ASSERT_EQ(info.U.size(), 32U);
  PDFEncryptionRC4().RC4(info.U, 32, info.fileKey);
  EXPECT_EQ(info.U, padText);
}

TEST(EncryptionManager, UserEntryOfRevision3EndsInThePadding) {
  EXPECT_EQ(protect(3, 128, "user", "owner").U.substr(16), padText.substr(0, 16));
}

TEST(EncryptionManager, EntriesOfRevisions5And6HaveTheirSizes) {
  for (const int revision : {5, 6}) {
    const EncryptInfo info = protect(revision, 256, "user", "owner");
    EXPECT_EQ(info.O.size(), 48U);
    EXPECT_EQ(info.U.size(), 48U);
    EXPECT_EQ(info.OE.size(), 32U);
    EXPECT_EQ(info.UE.size(), 32U);
    EXPECT_EQ(info.Perms.size(), 16U);
  }
}

TEST(EncryptionManager, FileKeyOfRevision5DoesNotDependOnThePassword) {
  EncryptInfo one, other;
  one.R = other.R = 5;
  one.keyLength = other.keyLength = 256;
  PDFEncryptionManager().createKey(one, "one");
  PDFEncryptionManager().createKey(other, "other");
  EXPECT_EQ(one.fileKey, other.fileKey);
  EXPECT_EQ(one.fileKey.size(), 32U);
}

TEST(EncryptionManager, OwnerEntryHas32BytesForLongPasswordsToo) {
  EXPECT_EQ(protect(3, 128, std::string(200, 'u'), std::string(200, 'o')).O.size(), 32U);
}

TEST(EncryptionManager, EqualPasswordsGiveEqualEntries) {
  const EncryptInfo one = protect(6, 256, "user", "owner"), again = protect(6, 256, "user", "owner");
  EXPECT_EQ(one.O + one.OE + one.U + one.UE + one.Perms,
            again.O + again.OE + again.U + again.UE + again.Perms);
}

TEST(EncryptionManager, SystemRandomMakesEachKeyAndSaltAnew) {
  PDFEncryptionManager::useSystemRandom();
  const EncryptInfo one = protect(6, 256, "user", "owner"), other = protect(6, 256, "user", "owner");
  PDFEncryptionManager::useSystemRandom(false);
  EXPECT_NE(one.fileKey, other.fileKey);
  EXPECT_NE(one.U.substr(32), other.U.substr(32));
  EXPECT_NE(one.O.substr(32), one.U.substr(32));
  EXPECT_NE(one.U.substr(32, 8), one.U.substr(40, 8));
  EXPECT_EQ(protect(6, 256, "user", "owner").fileKey, filler16 + filler16);
}

// An owner that nobody is.

TEST(DrawnOwnerEntry, HasTheSizesOfTheRevision) {
  for (int revision = 2; revision <= 6; ++revision) {
    EncryptInfo info;
    info.R = revision;
    PDFEncryptionManager().drawOKey(info);
    EXPECT_EQ(info.O, std::string(revision < 5 ? 32 : 48, '\x5a'));
    EXPECT_EQ(info.OE, std::string(revision < 5 ? 0 : 32, '\x5a'));
  }
}

TEST(DrawnOwnerEntry, IsOfChanceWithTheSystemsSource) {
  EncryptInfo one, other;
  one.R = other.R = 6;
  PDFEncryptionManager::useSystemRandom();
  PDFEncryptionManager().drawOKey(one);
  PDFEncryptionManager().drawOKey(other);
  PDFEncryptionManager::useSystemRandom(false);
  for (const std::size_t part : {0U, 8U, 16U, 24U, 32U, 40U})
    EXPECT_NE(one.O.substr(part, 8), other.O.substr(part, 8));
  EXPECT_NE(one.OE, other.OE);
  EXPECT_NE(one.OE, one.O.substr(0, 32));
}

TEST(DrawnOwnerEntry, OpensForTheUserAndForNoOwner) {
  const PDFDecryptionManager reader;
  const PDFEncryptionManager manager;
  for (const auto& [revision, keyLength] : {std::pair{2, 40}, {3, 128}, {4, 128}, {5, 256}, {6, 256}}) {
    EncryptInfo info = protect(revision, keyLength, "user", "owner");
    manager.drawOKey(info);
    if (revision < 5) manager.createKey(info, "user");
    manager.calculateUKey({"user", "", -1340, keyLength}, info);
    std::string user = "user", owner = "owner", none;
    EncryptInfo found = stored(info);
    EXPECT_EQ(reader.calPassWordState(found, user), PDFDecryptionManager::userOnly) << revision;
    EXPECT_EQ(found.fileKey, info.fileKey) << revision;
    found = stored(info);
    EXPECT_EQ(reader.calPassWordState(found, owner), PDFDecryptionManager::neither) << revision;
    found = stored(info);
    EXPECT_EQ(reader.calPassWordState(found, none), PDFDecryptionManager::neither) << revision;
  }
}

TEST(EncryptOption, PasswordsAreSetFromTextAndNullIsNone) {
  EncryptOption option;
  option.saveUPW("user");
  option.saveOPW("owner");
  EXPECT_EQ(option.userPassword + " " + option.ownerPassword, "user owner");
  option.saveUPW(nullptr);
  option.saveOPW(nullptr);
  EXPECT_EQ(option.userPassword + option.ownerPassword, "");
}

}  // namespace
