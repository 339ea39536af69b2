#include "PDFEncryption/rc4.h"

#include <numeric>
#include <utility>

#include "PDFEncryption/bytes.h"

namespace pcrypt {
namespace {

constexpr int stateSize = 256;
using Byte = unsigned char;
using State = PDFEncryptionRC4::RC4_KEY;

State begin(const Byte* key, int keyLength) {
  State state = {};
  std::iota(std::begin(state.S), std::end(state.S), Byte{0});
  if (keyLength < 1) return state;
  Byte j = 0;
  for (int i = 0; i < stateSize; ++i) {
    j = static_cast<Byte>(j + state.S[i] + key[i % keyLength]);
    std::swap(state.S[i], state.S[j]);
  }
  return state;
}

void apply(State& state, Byte* data, int length) {
  Byte x = state.x, y = state.y;
  for (int i = 0; i < length; ++i) {
    x = static_cast<Byte>(x + 1);
    const Byte a = state.S[x];
    y = static_cast<Byte>(y + a);
    const Byte b = state.S[y];
    state.S[x] = b;
    state.S[y] = a;
    data[i] ^= state.S[static_cast<Byte>(a + b)];
  }
  state.x = x;
  state.y = y;
}

}  // namespace

PDFEncryptionRC4::PDFEncryptionRC4(unsigned char* key, int keyLength) { SetEncryptionKey(key, keyLength); }

void PDFEncryptionRC4::RC4(unsigned char* data, int length, unsigned char* key, int keyLength) {
  if (length < 1) return;
  State state = begin(key, keyLength);
  apply(state, data, length);
}

void PDFEncryptionRC4::RC4(std::string& data, int length, const std::string& key) {
  if (length < 1) return;
  data.resize(static_cast<std::size_t>(length));
  State state = begin(bytes::of(key.data()), static_cast<int>(key.size()));
  apply(state, bytes::of(data.data()), length);
}

void PDFEncryptionRC4::SetEncryptionKey(unsigned char* key, int keyLength) {
  PrepareKey(key, keyLength, &key_);
  keySet_ = true;
}

int PDFEncryptionRC4::newRC4(unsigned char* data, int length) {
  if (!keySet_) return 0;
  RC4Imp(data, length, &key_);
  return 1;
}

void PDFEncryptionRC4::PrepareKey(unsigned char* key, int keyLength, RC4_KEY* state) {
  *state = begin(key, keyLength);
}

void PDFEncryptionRC4::RC4Imp(unsigned char* data, int length, RC4_KEY* state) {
  apply(*state, data, length);
}

}  // namespace pcrypt
