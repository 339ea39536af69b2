#include "PDFEncryption/hardenedhash.h"

#include <algorithm>
#include <climits>
#include <numeric>
#include <vector>

#include "PDFEncryption/hashes.h"
#include "PDFEncryption/rijndael.h"
#include "PDFEncryption/rijndael_blocks.h"
#include "PDFEncryption/securitysteps.h"
#include "PDFEncryption/sha512_blocks.h"

namespace pcrypt {
namespace {

using Byte = unsigned char;
using steps::hashSize;

constexpr std::size_t copies = 64;
constexpr std::size_t keySize = 16;  // the rest of what the key is taken from is the initial vector
constexpr std::size_t selectorSize = 16;
constexpr int lastSureRound = 63;
constexpr int roundSlack = 31;
constexpr std::size_t mostBytes = INT_MAX / steps::octetBits;  // what the cipher's count of bits holds

/// The rounds of one hash. A round encrypts a text in place, and hashes it by one of the three SHA-2 to the
/// key of the next one.
class Rounds {
 public:
  explicit Rounds(HardenedHash& wanted) : wanted_(&wanted) {
    const std::size_t given = std::min(hashSize, wanted.hash.size());
    std::copy_n(wanted.hash.begin(), given, key_);
  }

  /// Fills the text of a round. @return whether there is one
  bool begin() {
    const std::size_t size = copies * (wanted_->password.size() + keyBytes_ + wanted_->u.size());
    if (isOver_ || size > mostBytes) return false;
    text_.resize(size + sha512::mostPadding);
    size_ = size;
    Byte* const text = text_.data();
    Byte* end = std::copy(wanted_->password.begin(), wanted_->password.end(), text);
    end = std::copy_n(key_, keyBytes_, end);
    end = std::copy(wanted_->u.begin(), wanted_->u.end(), end);
    // Each copy doubles what is there.
    while (end != text + size_) end = std::copy(text, end, end);
    cipher_.init(Rijndael::CBC, Rijndael::Encrypt, key_, Rijndael::Key16Bytes);
    return true;
  }

  /// The text as a chain, under this round's key.
  aes::Chain chain() {
    return {cipher_.expandedKey(), key_ + keySize, text_.data(), text_.data(), size_ / aes::blockSize};
  }

  /// Takes the encrypted text, and hashes it when that is for SHA-256. @return whether it is
  bool hashShort() {
    isOver_ = round_ >= lastSureRound && round_ - roundSlack >= text_[size_ - 1];
    ++round_;
    // The number that the bytes make has the same rest by 3 as their sum, as 256 is 1 modulo 3.
    choice_ = std::accumulate(text_.begin(), text_.begin() + selectorSize, 0) % 3;
    if (choice_ != 0) return false;
    keyBytes_ = hashSize;
    _Sha256Calc context;
    Sha256Calc_reset(&context);
    Sha256Calc_calculate(&context, reinterpret_cast<signed char*>(text_.data()), static_cast<int>(size_));
    std::copy(std::begin(context.digest), std::end(context.digest), key_);
    return true;
  }

  /// The encrypted text for SHA-384 or SHA-512.
  sha512::Message message() {
    const std::uint64_t* const initial = choice_ == 1 ? sha512::initial384 : sha512::initial512;
    std::copy_n(initial, sha512::hashWords, hash_);
    const std::size_t padding = sha512::pad(text_.data() + size_, {size_, 0});
    return {hash_, text_.data(), (size_ + padding) / sha512::blockSize};
  }

  /// Takes the hash of the message.
  void endLong() {
    keyBytes_ = choice_ == 1 ? sha512::digestSize384 : sha512::digestSize512;
    sha512::putDigest(hash_, key_, keyBytes_);
  }

  void giveResult() const { wanted_->hash.assign(key_, key_ + hashSize); }

 private:
  HardenedHash* wanted_;
  std::vector<Byte> text_;
  Byte key_[64] = {};
  std::size_t size_ = 0;
  std::size_t keyBytes_ = hashSize;
  int choice_ = 0;
  std::uint64_t hash_[sha512::hashWords] = {};
  Rijndael cipher_;
  int round_ = 0;
  bool isOver_ = false;
};

}  // namespace

void harden(std::span<HardenedHash> hashes) {
  std::vector<Rounds> rounds(hashes.begin(), hashes.end());
  std::vector<aes::Chain> chains;
  std::vector<sha512::Message> messages;
  std::vector<Rounds*> running;
  for (;;) {
    running.clear();
    chains.clear();
    for (Rounds& each : rounds) {
      if (!each.begin()) continue;
      running.push_back(&each);
      chains.push_back(each.chain());
    }
    if (running.empty()) break;
    aes::bestPath().chainEncrypt(chains);
    messages.clear();
    std::erase_if(running, [](Rounds* each) { return each->hashShort(); });
    for (Rounds* each : running) messages.push_back(each->message());
    sha512::bestMessagesPath()(messages);
    for (Rounds* each : running) each->endLong();
  }
  for (const Rounds& each : rounds) each.giveResult();
}

}  // namespace pcrypt
