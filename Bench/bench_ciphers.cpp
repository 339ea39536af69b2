// Ciphers and hashes of the security handler by themselves: a line for each, in MB/s over blocks of 16 KiB.
// Where the processor has instructions for one, both ways are measured.

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

#include "PDFEncryption/hashes.h"
#include "PDFEncryption/rc4.h"
#include "PDFEncryption/rijndael.h"
#include "PDFEncryption/rijndael_blocks.h"
#include "PDFEncryption/sha256_blocks.h"
#include "PDFEncryption/sha512_blocks.h"

namespace {

using namespace pcrypt;
using Bytes = std::vector<unsigned char>;

constexpr std::size_t dataSize = 16384;  // as "openssl speed -bytes 16384"
constexpr double shortestRun = 0.5;      // seconds
constexpr double megabyte = 1e6;

/// Time of the process and not of the clock, as "openssl speed" takes it.
double processorSeconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

template <class Work>
void report(const char* name, Work work) {
  work();
  std::size_t runs = 0;
  double seconds = 0;
  for (const double start = processorSeconds(); seconds < shortestRun; seconds = processorSeconds() - start) {
    constexpr std::size_t batch = 64;
    for (std::size_t i = 0; i < batch; ++i) work();
    runs += batch;
  }
  std::printf("%-32s %8.0f MB/s\n", name, static_cast<double>(runs * dataSize) / seconds / megabyte);
}

void reportAes(const std::string& path, const aes::BlockPath& blocks, Rijndael::KeyLength size,
               const std::string& name) {
  const Bytes key(32, 7);
  Bytes data(dataSize, 1);
  for (const auto direction : {Rijndael::Encrypt, Rijndael::Decrypt}) {
    Rijndael cipher(blocks);
    cipher.init(Rijndael::CBC, direction, key.data(), size);
    const bool encrypts = direction == Rijndael::Encrypt;
    const std::string line = name + (encrypts ? " encrypt, " : " decrypt, ") + path;
    report(line.c_str(), [&] {
      constexpr int bits = 8 * static_cast<int>(dataSize);
      encrypts ? cipher.blockEncrypt(data.data(), bits, data.data())
               : cipher.blockDecrypt(data.data(), bits, data.data());
    });
  }
}

void reportAesPaths() {
  std::vector<std::pair<std::string, const aes::BlockPath*>> paths = {{"tables", &aes::tablePath()}};
  if (const aes::BlockPath* path = aes::instructionPath()) paths.emplace_back("instructions", path);
  for (const auto& [name, path] : paths) {
    reportAes(name, *path, Rijndael::Key16Bytes, "aes-128-cbc");
    reportAes(name, *path, Rijndael::Key32Bytes, "aes-256-cbc");
  }
}

/// The state is of words that are as wide as the path has them.
template <class Word>
void reportSha(const char* name, void (*path)(Word*, const unsigned char*, std::size_t),
               std::size_t blockSize) {
  const Bytes data(dataSize, 1);
  Word hash[8] = {};
  report(name, [&] { path(hash, data.data(), dataSize / blockSize); });
}

void reportShaPaths() {
  reportSha("sha-256, portable", sha256::portableBlocks, sha256::blockSize);
  if (const auto path = sha256::instructionPath())
    reportSha("sha-256, instructions", path, sha256::blockSize);
  reportSha("sha-512, portable", sha512::portableBlocks, sha512::blockSize);
  if (const auto path = sha512::vectorPath()) reportSha("sha-512, vectors", path, sha512::blockSize);
}

void reportOthers() {
  Bytes data(dataSize, 1);
  Bytes key(16, 7);
  report("rc4", [&] { PDFEncryptionRC4().RC4(data.data(), static_cast<int>(dataSize), key.data(), 16); });
  PDFEncryptionMD5 md5;
  PDFEncryptionMD5::MD5_CTX md5State;
  md5.MD5Init(&md5State);
  report("md5", [&] { md5.MD5Update(&md5State, data.data(), dataSize); });
}

}  // namespace

int main() {
  reportAesPaths();
  reportShaPaths();
  reportOthers();
  return 0;
}
