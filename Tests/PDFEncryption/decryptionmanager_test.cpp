#include "PDFEncryption/decryptionmanager.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "PDFEncryption/hashes.h"
#include "PDFEncryption/randomsource.h"
#include "PDFEncryption/rc4.h"
#include "PDFEncryption/rijndael.h"
#include "Tests/PDFEncryption/bytes_in_tests.h"
#include "Tests/PDFEncryption/protection.h"

namespace {

using namespace pcrypt;
using raw::hex;
using raw::padText;
using raw::toHex;

const PDFDecryptionManager manager;

struct Decision {
  int state;
  EncryptInfo info;
};

Decision decide(const EncryptInfo& file, std::string password) {
  EncryptInfo info = stored(file);
  const int state = manager.calPassWordState(info, password);
  return {state, info};
}

std::string flags(const EncryptInfo& info) {
  return std::string(info.firstAccess ? "1" : "-") + (info.secondAccess ? "2" : "-");
}

/// Kind of file: revision and key length.
struct Kind {
  int revision, keyLength;
};

void PrintTo(const Kind& k, std::ostream* out) {
  *out << "R " << k.revision << ", " << k.keyLength << " bits";
}

class EveryRevision : public testing::TestWithParam<Kind> {
 protected:
  static EncryptInfo file(const std::string& user, const std::string& owner) {
    return protect(GetParam().revision, GetParam().keyLength, user, owner);
  }

  static void expectDecision(const EncryptInfo& made, const std::string& password, int state,
                             const std::string& access) {
    const Decision decision = decide(made, password);
    EXPECT_EQ(decision.state, state);
    EXPECT_EQ(flags(decision.info), access);
    const bool opens = state != PDFDecryptionManager::neither;
    EXPECT_EQ(decision.info.fileKey == made.fileKey, opens);
  }
};

INSTANTIATE_TEST_SUITE_P(Suite, EveryRevision,
                         testing::Values(Kind{2, 40}, Kind{3, 40}, Kind{3, 128}, Kind{4, 128}, Kind{5, 256},
                                         Kind{6, 256}),
                         [](const auto& tested) {
                           return "R" + std::to_string(tested.param.revision) + "Bits" +
                                  std::to_string(tested.param.keyLength);
                         });

TEST_P(EveryRevision, UserPasswordGivesState4) { expectDecision(file("user", "owner"), "user", 4, "12"); }

TEST_P(EveryRevision, OwnerPasswordGivesState3) { expectDecision(file("user", "owner"), "owner", 3, "12"); }

TEST_P(EveryRevision, WrongPasswordGivesState5) { expectDecision(file("user", "owner"), "wrong", 5, "-2"); }

TEST_P(EveryRevision, NoPasswordGivesState5) { expectDecision(file("user", "owner"), "", 5, "-2"); }

TEST_P(EveryRevision, EqualPasswordsGiveState7) { expectDecision(file("a", "a"), "a", 7, "-2"); }

TEST_P(EveryRevision, OwnerPasswordBesideAnEmptyUserPasswordGivesState2) {
  const EncryptInfo made = file("", "owner");
  expectDecision(made, "owner", 2, "1-");
  EXPECT_EQ(decide(made, "owner").info.ownerPassword, "owner");
  EXPECT_EQ(decide(made, "owner").info.userPassword, "");
}

TEST_P(EveryRevision, AnythingElseBesideAnEmptyUserPasswordGivesState6) {
  expectDecision(file("", "owner"), "wrong", 6, "1-");
  expectDecision(file("", "owner"), "", 6, "1-");
}

TEST_P(EveryRevision, NoPasswordsAtAllGiveState2) { expectDecision(file("", ""), "", 2, "1-"); }

TEST_P(EveryRevision, PasswordsOf127BytesCountWhole) {
  const std::string user(127, 'u'), owner(127, 'o');
  EncryptInfo made = file(user, owner);
  expectDecision(made, user, 4, "12");
  expectDecision(made, user.substr(1), 5, "-2");
}

TEST_P(EveryRevision, PasswordsOf31And32BytesOpenTheFile) {
  const std::string user(32, 'u'), owner(31, 'o');
  expectDecision(file(user, owner), user, 4, "12");
  expectDecision(file(user, owner), owner, 3, "12");
}

TEST_P(EveryRevision, UncutUserPasswordOf200BytesOpensTheFileUpToRevision4Only) {
  const std::string password(200, 'p');
  const int expected = GetParam().revision < 5 ? 4 : 5;
  EXPECT_EQ(decide(file(password, "owner"), password).state, expected);
}

TEST_P(EveryRevision, FileKeyIsFoundWithTheEmptyPassword) {
  const EncryptInfo made = file("", "owner");
  EncryptInfo info = stored(made);
  bool needed = false, empty = false;
  EXPECT_TRUE(manager.getFileKey(info, "whatever", needed, empty));
  EXPECT_TRUE(empty);
  EXPECT_FALSE(needed);
  EXPECT_EQ(toHex(info.fileKey), toHex(made.fileKey));
}

TEST_P(EveryRevision, FileKeyIsFoundWithEitherPassword) {
  const EncryptInfo made = file("user", "owner");
  for (const char* password : {"user", "owner"}) {
    EncryptInfo info = stored(made);
    bool needed = false, empty = false;
    EXPECT_TRUE(manager.getFileKey(info, password, needed, empty)) << password;
    EXPECT_TRUE(needed);
    EXPECT_FALSE(empty);
    EXPECT_EQ(toHex(info.fileKey), toHex(made.fileKey));
  }
}

TEST_P(EveryRevision, FileKeyIsNotFoundWithAWrongPassword) {
  for (const char* password : {"wrong", ""}) {
    EncryptInfo info = stored(file("user", "owner"));
    bool needed = false, empty = false;
    EXPECT_FALSE(manager.getFileKey(info, password, needed, empty));
    EXPECT_TRUE(needed);
    EXPECT_FALSE(empty);
  }
}

TEST_P(EveryRevision, SystemRandomOpensAsWell) {
  PDFEncryptionManager::useSystemRandom();
  const EncryptInfo made = file("user", "owner");
  PDFEncryptionManager::useSystemRandom(false);
  expectDecision(made, "user", 4, "12");
  expectDecision(made, "owner", 3, "12");
}

TEST_P(EveryRevision, CutEntriesOpenNothingAndReadNothingBehindThem) {
  for (std::size_t size : {0U, 1U, 15U, 16U, 31U, 33U, 40U, 47U}) {
    EncryptInfo info = stored(file("", "owner"));
    for (std::string* entry : {&info.O, &info.OE, &info.U, &info.UE, &info.Perms}) {
      if (entry->size() > size) entry->resize(size);
    }
    std::string password = "owner";
    const int state = manager.calPassWordState(info, password);
    const bool opens = state != PDFDecryptionManager::neither;
    EXPECT_FALSE(opens && size < 5) << size;
  }
}

TEST_P(EveryRevision, KeyLengthBelow8OpensNothing) {
  for (const int length : {-8, 0, 7}) {
    EncryptInfo info = stored(file("", ""));
    info.keyLength = length;
    std::string empty = padText;
    EXPECT_FALSE(manager.PdfTryKey(info, empty)) << length;
  }
}

// Passwords and what is stored of them.

TEST(DecryptionManager, OwnerTestOfRevision3RecoversTheUserPassword) {
  EncryptInfo info = stored(protect(3, 128, "user", "owner"));
  EXPECT_TRUE(manager.isOwnerPWD(info, "owner"));
  EXPECT_EQ(info.userPassword, "user");
  EXPECT_EQ(info.ownerPassword, "owner");
}

TEST(DecryptionManager, OwnerTestOfRevision3StoresThePaddingForAnEmptyUserPassword) {
  EncryptInfo info = stored(protect(3, 128, "", "owner"));
  EXPECT_TRUE(manager.isOwnerPWD(info, "owner"));
  EXPECT_EQ(info.userPassword, padText);
}

TEST(DecryptionManager, OwnerTestOfRevision3PutsTheFileKeyBack) {
  EncryptInfo info = protect(3, 128, "user", "owner");
  info.fileKey = "kept";
  EXPECT_TRUE(manager.isOwnerPWD(info, "owner"));
  EXPECT_EQ(info.fileKey, "kept");
  EXPECT_FALSE(manager.isOwnerPWD(info, "wrong"));
  EXPECT_EQ(info.fileKey, "kept");
}

TEST(DecryptionManager, OwnerTestOfRevision2TakesTheUserPasswordUpToItsFirstParenthesis) {
  EncryptInfo plain = stored(protect(2, 40, "user", "owner")), odd = stored(protect(2, 40, "u(ser", "owner"));
  EXPECT_TRUE(manager.isOwnerPWD(plain, "owner"));
  EXPECT_FALSE(manager.isOwnerPWD(odd, "owner"));
}

TEST(DecryptionManager, UserTestOfRevision3ClearsTheStoredUserPassword) {
  EncryptInfo info = stored(protect(3, 128, "user", "owner"));
  info.userPassword = "left over";
  EXPECT_TRUE(manager.isUserPWD(info, "user"));
  EXPECT_EQ(info.userPassword, "");
}

TEST(DecryptionManager, UserTestsOfRevisions5And6StoreThePassword) {
  EncryptInfo five = stored(protect(5, 256, "user", "owner")), six = stored(protect(6, 256, "user", "owner"));
  EXPECT_TRUE(manager.isUserPWDR5(five, "user"));
  EXPECT_EQ(five.userPassword, "user");
  EXPECT_TRUE(manager.isUserPWDR6(six, "user"));
  EXPECT_EQ(six.userPassword, "user");
}

TEST(DecryptionManager, OwnerTestsOfRevisions5And6FindTheFileKeyInOE) {
  for (const int revision : {5, 6}) {
    EncryptInfo info = stored(protect(revision, 256, "user", "owner"));
    info.UE.clear();
    EXPECT_TRUE(revision == 5 ? manager.isOwnerPWD5(info, "owner") : manager.isOwnerPWD6(info, "owner"));
    EXPECT_EQ(info.fileKey, std::string(32, '\x5a'));
    EXPECT_EQ(info.ownerPassword, "owner");
  }
}

TEST(DecryptionManager, UserTestOfRevision6TakesAFileKeyThatOpensPerms) {
  EncryptInfo info = protect(6, 256, "user", "owner");
  EXPECT_TRUE(manager.isUserPWDR6(info, "wrong"));
  info.fileKey[0] = '!';
  EXPECT_FALSE(manager.isUserPWDR6(info, "wrong"));
  EXPECT_FALSE(manager.isUserPWDR6(info = stored(info), "wrong"));
}

TEST(DecryptionManager, LongPasswordsOfRevisions5And6CountWithTheirFirst127Bytes) {
  const std::string long200 = raw::random(200, 1);
  for (const int revision : {5, 6}) {
    const EncryptInfo made = protect(revision, 256, getUTF8Str(long200), "owner");
    EXPECT_EQ(decide(made, long200).state, 4);
    EXPECT_EQ(decide(made, long200.substr(0, 126)).state, 5);
  }
}

TEST(DecryptionManager, LongPasswordsUpToRevision4EnterTheHashWhole) {
  const std::string password = raw::random(200, 2);
  for (const auto& [revision, length] : {std::pair{2, 40}, {3, 128}, {4, 128}}) {
    EXPECT_EQ(decide(protect(revision, length, password, "owner"), password).state, 4);
    EXPECT_EQ(decide(protect(revision, length, password, "owner"), password.substr(0, 199)).state, 5);
    EXPECT_EQ(decide(protect(revision, length, "user", password), password).state, 3);
  }
}

TEST(DecryptionManager, Utf8StringIsTheFirst127BytesAsTheyCome) {
  EXPECT_EQ(getUTF8Str("\xe4\xff"), "\xe4\xff");
  EXPECT_EQ(getUTF8Str(std::string(127, 'x')).size(), 127U);
  EXPECT_EQ(getUTF8Str(std::string(128, 'x')).size(), 127U);
}

// A test with the key in hand leaves out an identifier that begins with a zero byte; making the key does not.
TEST(DecryptionManager, IdentifierBehindAZeroByteFailsTheTestOfRevision3Only) {
  const std::string identifier = '\0' + std::string("entifier-of-16 ");
  EncryptInfo info = stored(protect(3, 128, "user", "owner", identifier));
  std::string password = "user" + padText.substr(0, 28);
  EXPECT_TRUE(manager.PdfTryKey(info, password));
  EXPECT_FALSE(manager.isUserPWDR3(info, password, false));
}

TEST(DecryptionManager, TestOfA40BitKeyComparesFiveBytes) {
  EncryptInfo info = stored(protect(3, 40, "user", "owner"));
  std::string password = "user" + padText.substr(0, 28);
  info.U.replace(5, 27, std::string(27, '?'));
  EXPECT_TRUE(manager.PdfTryKey(info, password));
  EXPECT_TRUE(manager.isUserPWDR3(info, password, false));
  info.U[4] = '?';
  EXPECT_FALSE(manager.PdfTryKey(info, password));
  EXPECT_FALSE(manager.isUserPWDR3(info, password, false));
}

TEST(DecryptionManager, MetadataInTheClearIsPartOfTheKey) {
  EncryptInfo info = stored(protect(4, 128, "", "owner"));
  info.encryptMetadata = false;
  EXPECT_EQ(decide(info, "").state, 5);
}

// Keys.

TEST(DecryptionManager, HashesOfRevision6AreMadeOnceForARecord) {
  pcrypt::EncryptInfo info = stored(protect(6, 256, "user", "owner"));
  info.knownHashes.clear();
  std::string password = "user";
  EXPECT_EQ(manager.calPassWordState(info, password), 4);
  const auto hashes = info.knownHashes;
  EXPECT_FALSE(hashes.empty());
  EXPECT_EQ(manager.calPassWordState(info, password), 4);
  EXPECT_EQ(info.knownHashes, hashes);
  std::string other = "owner";
  EXPECT_EQ(manager.calPassWordState(info, other), 3);
  EXPECT_GT(info.knownHashes.size(), hashes.size());
}

TEST(DecryptionManager, ManyPasswordsLeaveFewHashesBehind) {
  pcrypt::EncryptInfo info = stored(protect(6, 256, "user", "owner"));
  for (int i = 0; i < 10; ++i) {
    std::string password = "wrong" + std::to_string(i);
    EXPECT_EQ(pcrypt::PDFDecryptionManager().calPassWordState(info, password), 5);
    EXPECT_LE(info.knownHashes.size(), 17U);
  }
}

TEST(CreateKey, MakesTheFileKeyOfAPaddedPassword) {
  const EncryptInfo made = protect(3, 128, "user", "owner");
  EncryptInfo info = stored(made);
  std::string password = "user";
  manager.createKey(info, password, false, false);
  EXPECT_EQ(toHex(info.fileKey), "8c8b000fb9e91ef3ecb6290bbbad4737");
  EXPECT_EQ(password, "user");
}

TEST(CreateKey, KeepsTheResultInThePassword) {
  EncryptInfo info = stored(protect(3, 128, "user", "owner"));
  std::string password = "user";
  manager.createKey(info, password, true, false);
  EXPECT_EQ(toHex(password), "8c8b000fb9e91ef3ecb6290bbbad4737");
  EXPECT_EQ(info.fileKey, "");
}

TEST(CreateKey, OnABufferEqualsTheStringForm) {
  for (const auto& [revision, length] : {std::pair{2, 40}, {3, 128}, {4, 128}}) {
    EncryptInfo byString = stored(protect(revision, length, "user", "owner")), byBuffer = byString;
    std::string text = "user" + padText.substr(0, 28), buffer = text;
    manager.createKey(byString, text, false, false);
    manager.createKey(byBuffer, raw::at(buffer), false, false);
    EXPECT_EQ(toHex(byBuffer.fileKey), toHex(byString.fileKey));
  }
}

TEST(CreateKey, OfTheOwnerTakesOEAndOfTheUserUE) {
  for (const int revision : {5, 6}) {
    EncryptInfo info = stored(protect(revision, 256, "user", "owner"));
    std::string user = "user", owner = "owner";
    manager.createKeyAES256(info, user, true, false);
    manager.createKeyAES256(info, owner, true, true);
    EXPECT_EQ(user, std::string(32, '\x5a'));
    EXPECT_EQ(owner, std::string(32, '\x5a'));
  }
}

TEST(PadKey, FillsUpTo32Bytes) {
  std::string text = "abc", full(32, 'x'), longer(40, 'x');
  manager.padKey(text, 3);
  manager.padKey(full, 32);
  manager.padKey(longer, 40);
  EXPECT_EQ(text, "abc" + padText.substr(0, 29));
  EXPECT_EQ(full, std::string(32, 'x'));
  EXPECT_EQ(longer, std::string(40, 'x'));
}

TEST(PadKey, OnABufferWritesBehindTheLength) {
  std::string buffer = "abc" + std::string(29, '?') + "end";
  manager.padKey(raw::at(buffer), 3);
  EXPECT_EQ(buffer, "abc" + padText.substr(0, 29) + "end");
}

TEST(PadInteger, WritesLowBytesFirst) {
  std::string buffer = "??????", text = "x";
  manager.padInteger(raw::at(buffer), 1, 0x01020304, 3);
  manager.padInteger(text, -4, 4);
  EXPECT_EQ(buffer, "?\4\3\2??");
  EXPECT_EQ(toHex(text), "78fcffffff");
}

TEST(HashR6, EqualsThatOfTheUserEntry) {
  const EncryptInfo info = protect(6, 256, "user", "owner");
  const std::string input = "user" + std::string(8, '\x5a');
  _Sha256Calc context;
  Sha256Calc_reset(&context);
  std::string message = input, result;
  Sha256Calc_calculate(&context, reinterpret_cast<signed char*>(message.data()), raw::size(message));
  manager.caculateHashR6(result, "user", {std::begin(context.digest), std::end(context.digest)}, "", true);
  EXPECT_EQ(toHex(result), "7387fe3fcbd9752731be4ee8b5c5e8c8ab649ffacc66a7cc80b09cd22403b5f1");
}

// Objects.

std::string keyOf(const EncryptInfo& info, int number, int generation) {
  std::string key;
  manager.calculateKey(number, generation, info, key);
  return toHex(key);
}

std::string md5(const std::string& text, int length) {
  std::string digest;
  PDFEncryptionMD5().MD5(text, digest, length);
  return toHex(digest);
}

TEST(CalculateKey, HashesNumberAndGenerationLowBytesFirst) {
  EncryptInfo info;
  info.fileKey = "12345";
  info.method = Method::rc4;
  EXPECT_EQ(keyOf(info, 0x7f030201, 0x7f0504), md5("12345\1\2\3\4\5", 10));
  info.method = Method::aesV2;
  EXPECT_EQ(keyOf(info, 0x030201, 0x0504), md5("12345\1\2\3\4\5sAlT", 14));
  info.fileKey = "1234567890123456";
  EXPECT_EQ(keyOf(info, 0x030201, 0x0504), md5("1234567890123456\1\2\3\4\5sAlT", 16));
}

TEST(CalculateKey, IsTheFileKeyForAesV3AndWithTheSwitch) {
  EncryptInfo info;
  info.fileKey = "the file key";
  info.method = Method::aesV3;
  EXPECT_EQ(keyOf(info, 1, 0), toHex("the file key"));
  info.method = Method::rc4;
  info.fileKeyForAllObjects = true;
  EXPECT_EQ(keyOf(info, 1, 0), toHex("the file key"));
}

/// Vector and padded text under the key of object 7 0.
std::string encryptedFor(const EncryptInfo& info, const std::string& plain) {
  const std::string vector = "sixteen bytes iv";
  std::string key, output(plain.size() + 16, '?');
  manager.calculateKey(7, 0, info, key);
  Rijndael cipher;
  const auto length = info.method == Method::aesV3 ? Rijndael::Key32Bytes : Rijndael::Key16Bytes;
  cipher.init(Rijndael::CBC, Rijndael::Encrypt, raw::at(key), length, raw::at(vector));
  output.resize(
      static_cast<std::size_t>(cipher.padEncrypt(raw::at(plain), raw::size(plain), raw::at(output))));
  return vector + output;
}

std::string decrypted(const EncryptInfo& info, std::string data) {
  int length = raw::size(data);
  manager.DecryptData(info, 7, 0, raw::at(data), &length);
  return data.substr(0, static_cast<std::size_t>(length));
}

EncryptInfo infoOf(int method) {
  EncryptInfo info;
  info.fileKey = std::string(method == Method::aesV3 ? 32 : 16, 'k');
  info.method = method;
  return info;
}

TEST(DecryptData, ReversesAesOfEveryLength) {
  for (const int method : {Method::aesV2, Method::aesV3}) {
    const EncryptInfo info = infoOf(method);
    for (std::size_t size = 0; size < 300; ++size) {
      const std::string plain = raw::random(size, static_cast<unsigned int>(size));
      ASSERT_EQ(toHex(decrypted(info, encryptedFor(info, plain))), toHex(plain)) << size;
    }
  }
}

TEST(DecryptData, ReversesRc4InPlaceAndKeepsTheLength) {
  const EncryptInfo info = infoOf(Method::rc4);
  std::string key, data = "an odd length";
  manager.calculateKey(7, 0, info, key);
  PDFEncryptionRC4().RC4(data, raw::size(data), key);
  EXPECT_EQ(decrypted(info, data), "an odd length");
}

TEST(DecryptData, VectorWithoutDataGivesNothing) {
  std::string data(16, 'x');
  int length = 16;
  manager.DecryptData(infoOf(Method::aesV2), 7, 0, raw::at(data), &length);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(data, '\0' + std::string(15, 'x'));
}

TEST(DecryptData, BadPaddingLeavesTheDataAsItIs) {
  const EncryptInfo info = infoOf(Method::aesV2);
  for (const std::size_t size : {32U, 48U, 320U}) {
    std::string data = encryptedFor(info, std::string(size - 32, 'x'));
    data[size - 17] ^= '\x55';
    EXPECT_EQ(decrypted(info, data), data);
  }
}

TEST(DecryptData, LengthsThatAreNotOfAesLeaveTheDataAsItIs) {
  for (const std::size_t size : {0U, 1U, 15U, 17U, 31U, 33U, 100U}) {
    const std::string data = raw::random(size, 4);
    EXPECT_EQ(decrypted(infoOf(Method::aesV2), data), data);
    EXPECT_EQ(decrypted(infoOf(Method::aesV3), data), data);
  }
}

TEST(DecryptData, FileKeyThatIsTooShortIsFilledUpWithZeros) {
  EncryptInfo info = infoOf(Method::aesV3), cut = info;
  info.fileKey = "abc" + std::string(29, '\0');
  cut.fileKey = "abc";
  EXPECT_EQ(decrypted(cut, encryptedFor(info, "text")), "text");
}

TEST(DecryptData, DrawsOneVectorFromRandForAes) {
  const EncryptInfo info = infoOf(Method::aesV2);
  const std::string data = encryptedFor(info, "text");
  std::string expected(16, '?'), next(16, '?');
  std::srand(1);
  makeInitialVector(raw::at(expected));
  makeInitialVector(raw::at(expected));
  std::srand(1);
  decrypted(info, data);
  makeInitialVector(raw::at(next));
  EXPECT_EQ(toHex(next), toHex(expected));
}

TEST(DecryptData, StringsOf15And16BytesComeFrom32And48) {
  const EncryptInfo info = infoOf(Method::aesV3);
  EXPECT_EQ(encryptedFor(info, std::string(15, 'x')).size(), 32U);
  EXPECT_EQ(encryptedFor(info, std::string(16, 'x')).size(), 48U);
}

}  // namespace
