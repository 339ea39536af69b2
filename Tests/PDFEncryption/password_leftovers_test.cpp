// What the password tests compare, and what they leave behind in the state.

#include <gtest/gtest.h>

#include "PDFEncryption/decryptionmanager.h"
#include "Tests/PDFEncryption/bytes_in_tests.h"
#include "Tests/PDFEncryption/protection.h"

namespace {

using namespace pcrypt;
using raw::hex;
using raw::padText;
using raw::toHex;

const PDFDecryptionManager manager;

EncryptInfo decided(EncryptInfo info, std::string password, int state) {
  EXPECT_EQ(manager.calPassWordState(info, password), state);
  return info;
}

struct Kind {
  int revision, keyLength;
};
constexpr Kind kinds[] = {{2, 40}, {3, 40}, {3, 128}, {4, 128}, {5, 256}, {6, 256}};

// State 5.

TEST(WrongPassword, LeavesNoFileKeyInRevisions2And5And6) {
  for (const Kind& kind : {Kind{2, 40}, {5, 256}, {6, 256}}) {
    const EncryptInfo info = decided(protect(kind.revision, kind.keyLength, "user", "owner"), "wrong", 5);
    EXPECT_EQ(toHex(info.fileKey), "") << kind.revision;
  }
}

struct LeftoverCase {
  Kind kind;
  const char* key;
};

// The last test makes a key of what it takes for the user password, and there was none to put back.
TEST(WrongPassword, LeavesTheKeyOfTheLastAttemptInRevisions3And4) {
  constexpr LeftoverCase rows[] = {{{3, 40}, "783dca8926"},
                                   {{3, 128}, "6cc4da34367164517bc1b43d862bd0c5"},
                                   {{4, 128}, "6cc4da34367164517bc1b43d862bd0c5"}};
  for (const LeftoverCase& row : rows) {
    const EncryptInfo made = protect(row.kind.revision, row.kind.keyLength, "user", "owner");
    EXPECT_EQ(toHex(decided(stored(made), "wrong", 5).fileKey), row.key);
  }
}

TEST(WrongPassword, IsStoredNowhere) {
  for (const Kind& kind : kinds) {
    const EncryptInfo info =
        decided(stored(protect(kind.revision, kind.keyLength, "user", "owner")), "wrong", 5);
    EXPECT_EQ(info.userPassword + info.ownerPassword, "") << kind.revision;
  }
}

// Passwords that are kept.

struct KeptCase {
  Kind kind;
  std::string user;  ///< of the owner's decision
  std::string ofUsersDecision;
};

TEST(OwnerPassword, IsKeptWithTheUserPasswordThatItRecovered) {
  const KeptCase rows[] = {{{2, 40}, "", ""},
                           {{3, 128}, "user", ""},
                           {{4, 128}, "user", ""},
                           {{5, 256}, "", "user"},
                           {{6, 256}, "", "user"}};
  for (const KeptCase& row : rows) {
    const EncryptInfo made = stored(protect(row.kind.revision, row.kind.keyLength, "user", "owner"));
    EXPECT_EQ(decided(made, "owner", 3).ownerPassword, "owner") << row.kind.revision;
    EXPECT_EQ(decided(made, "owner", 3).userPassword, row.user) << row.kind.revision;
    EXPECT_EQ(decided(made, "user", 4).ownerPassword, "") << row.kind.revision;
    EXPECT_EQ(decided(made, "user", 4).userPassword, row.ofUsersDecision) << row.kind.revision;
  }
}

TEST(OwnerPassword, OfRevision3KeepsTheUserPasswordUpToItsFirstParenthesis) {
  EncryptInfo info = stored(protect(3, 128, "u(ser", "owner"));
  EXPECT_TRUE(manager.isOwnerPWD(info, "owner"));
  EXPECT_EQ(info.userPassword, "u");
}

TEST(OwnerPassword, IsForgottenInState7OfEveryRevision) {
  for (const Kind& kind : kinds) {
    const EncryptInfo made = stored(protect(kind.revision, kind.keyLength, "a", "a"));
    EXPECT_EQ(decided(made, "a", 7).ownerPassword, "") << kind.revision;
  }
}

TEST(OwnerPassword, InState2ClearsTheUserPassword) {
  for (const Kind& kind : kinds) {
    EncryptInfo made = stored(protect(kind.revision, kind.keyLength, "", "owner"));
    made.userPassword = "left over";
    EXPECT_EQ(decided(made, "owner", 2).userPassword, "") << kind.revision;
  }
}

TEST(UserPassword, TestOfRevision2StoresNothingAndLeavesTheFileKey) {
  EncryptInfo info = stored(protect(2, 40, "user", "owner"));
  info.fileKey = "kept";
  info.userPassword = "left over";
  EXPECT_TRUE(manager.isUserPWD(info, "user"));
  EXPECT_EQ(info.fileKey, "kept");
  EXPECT_EQ(info.userPassword, "left over");
}

// A file identifier that begins with a zero byte.

struct StateCase {
  const char *user, *owner, *given;
  int state;
  int stateBehindAZeroByte;  ///< by the handler's own decision
};
constexpr StateCase states[] = {{"", "own", "own", 2, 6},    {"", "own", "x", 6, 6},
                                {"", "own", "", 6, 6},       {"use", "own", "own", 3, 5},
                                {"use", "own", "use", 4, 5}, {"use", "own", "x", 5, 5},
                                {"use", "own", "", 5, 5},    {"a", "a", "a", 7, 5}};

const std::string zeroIdentifier = '\0' + std::string("entifier-of-16 ");

TEST(IdentifierBehindAZeroByte, TakesRightPasswordsForWrongOnesInRevisions3And4) {
  for (const StateCase& row : states) {
    for (const Kind& kind : kinds) {
      const bool mistaken = kind.revision == 3 || kind.revision == 4;
      const EncryptInfo made = protect(kind.revision, kind.keyLength, row.user, row.owner, zeroIdentifier);
      decided(stored(made), row.given, mistaken ? row.stateBehindAZeroByte : row.state);
    }
  }
}

TEST(IdentifierBehindAZeroByte, LeavesTheRightFileKeyAllTheSame) {
  for (const StateCase& row : states) {
    const EncryptInfo made = protect(3, 128, row.user, row.owner, zeroIdentifier);
    const EncryptInfo info = decided(stored(made), row.given, row.stateBehindAZeroByte);
    EXPECT_EQ(info.fileKey == made.fileKey, row.state != 5) << row.user << ' ' << row.given;
  }
}

TEST(StateByKeys, IsRightWhateverTheIdentifierBeginsWith) {
  for (const StateCase& row : states) {
    for (const Kind& kind : kinds) {
      for (const std::string& identifier : {zeroIdentifier, std::string("identifier-of-16"), std::string()}) {
        EncryptInfo info = stored(protect(kind.revision, kind.keyLength, row.user, row.owner, identifier));
        std::string password = row.given;
        EXPECT_EQ(manager.stateByKeys(info, password), row.state) << kind.revision << ' ' << row.given;
        EXPECT_EQ(password, row.given);
      }
    }
  }
}

TEST(StateByKeys, KnowsTheOwnerOfRevision2WhateverTheUserPasswordIs) {
  EncryptInfo info = stored(protect(2, 40, "u(ser", "owner"));
  decided(info, "owner", 5);
  std::string password = "owner";
  EXPECT_EQ(manager.stateByKeys(info, password), 3);
}

// How much of /U and /O counts.

struct CompareCase {
  Kind kind;
  std::size_t lastByte;  ///< of /U that counts
};

TEST(UserEntryTest, ComparesAsManyBytesAsTheRevisionAsksFor) {
  constexpr CompareCase rows[] = {{{2, 40}, 31}, {{3, 40}, 4}, {{3, 64}, 7}, {{3, 128}, 15}, {{4, 128}, 15}};
  for (const CompareCase& row : rows) {
    const EncryptInfo made = stored(protect(row.kind.revision, row.kind.keyLength, "user", "owner"));
    std::string password = ("user" + padText).substr(0, 32);
    EncryptInfo good = made, bad = made;
    for (std::size_t i = row.lastByte + 1; i < good.U.size(); ++i) good.U[i] = '?';
    bad.U[row.lastByte] = static_cast<char>(bad.U[row.lastByte] ^ 1);
    EXPECT_TRUE(manager.PdfTryKey(good, password)) << row.kind.revision << ' ' << row.kind.keyLength;
    EXPECT_FALSE(manager.PdfTryKey(bad, password)) << row.kind.revision << ' ' << row.kind.keyLength;
  }
}

TEST(SealedEntryTest, ComparesThe32BytesInFrontOfTheSalts) {
  for (const int revision : {5, 6}) {
    for (const std::size_t byte : {0U, 31U}) {
      EncryptInfo info = stored(protect(revision, 256, "user", "owner"));
      info.U[byte] = static_cast<char>(info.U[byte] ^ 1);
      EXPECT_FALSE(manager.isUserPWD(info, "user")) << revision << ' ' << byte;
      info = stored(protect(revision, 256, "user", "owner"));
      info.O[byte] = static_cast<char>(info.O[byte] ^ 1);
      EXPECT_FALSE(manager.isOwnerPWD(info, "owner")) << revision << ' ' << byte;
    }
  }
}

// Keys of objects, and what they open. The bytes were computed by another program.

struct ObjectKeyCase {
  std::string fileKey;
  int number, generation, method;
  const char* key;
};

TEST(ObjectKey, IsTheHashOfFileKeyAndIdentityAndForAesV2OfTheSalt) {
  const std::string key12 = "0123456789ab", key16 = "0123456789abcdef", key32(32, 'k');
  const ObjectKeyCase rows[] = {
      {"12345", 0x7f030201, 0x7f0504, Method::none, "7790bdd5da0bb2152d01"},
      {"12345", 0x7f030201, 0x7f0504, Method::rc4, "7790bdd5da0bb2152d01"},
      {"12345", 0x030201, 0x0504, Method::aesV2, "19111e7ad0d0c115268524ad9d12"},
      {key12, 1, 0, Method::rc4, "5fbc52a3f857d554d4c8736b7c169a87"},
      {key12, 1, 0, Method::aesV2, "7d0ec551b4b4945aa61d3c515d0d408a"},
      {key16, 7, 0, Method::rc4, "b43a09c84da79d1a8d82b6ad272bd7e1"},
      {key16, 7, 0, Method::aesV2, "62f6181d7f544e39a2e7921b0df08ec5"},
      {key32, 7, 0, Method::aesV2, "3bcc1e63bcf3807c0e86fb487736d4b5"},
      {"12345", 7, 0, Method::aesV3, "3132333435"},
  };
  for (const ObjectKeyCase& row : rows) {
    EncryptInfo info;
    std::string key;
    info.fileKey = row.fileKey;
    info.method = row.method;
    manager.calculateKey(row.number, row.generation, info, key);
    EXPECT_EQ(toHex(key), row.key) << row.fileKey << ' ' << row.method;
  }
}

struct DataCase {
  int method;
  std::string cipher;  ///< for object 7 0
  std::string plain;
};

TEST(ObjectData, IsDecryptedByTheCipherOfTheMethod) {
  const std::string vector = "7369787465656e206279746573206976";
  const std::string rc4 = "a4bb81f12f7cea6d84c7214d19";
  const DataCase rows[] = {
      {Method::none, rc4, "an odd length"},
      {Method::rc4, rc4, "an odd length"},
      {Method::aesV2, vector + "2e6a8a5806dd027d05bf362ca3f591003472a61d0b8b4e570eb4009270dd8cff",
       "a text of twenty byt"},
      {Method::aesV2, vector + "bb7f8f717ceecea3980e26e7ae914c2240f74b601babdf102112590ad2df6f54",
       "sixteen bytes!!!"},
      {Method::aesV2, vector + "2d34ec739bec0b8e04a79d56dbd1cf6a", ""},
      {Method::aesV3, vector + "55f089e7845755f19a5f472e77d8bd8ea2ca093a408958e7c763d8826b5d5da3",
       "a text of twenty byt"},
  };
  for (const DataCase& row : rows) {
    EncryptInfo info;
    info.method = row.method;
    info.fileKey = row.method == Method::aesV3 ? "0123456789abcdef0123456789ABCDEF" : "0123456789abcdef";
    std::string data = hex(row.cipher);
    int length = raw::size(data);
    manager.DecryptData(info, 7, 0, raw::at(data), &length);
    EXPECT_EQ(data.substr(0, static_cast<std::size_t>(length)), row.plain) << row.method;
  }
}

}  // namespace
