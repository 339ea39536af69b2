#include "PDFEncryption/processor.h"

#if defined(__x86_64__)

#include <cpuid.h>

namespace pcrypt::processor {
namespace {

// Bits of the CPUID leaves 1 (ECX) and 7 (EBX), as the processor's manual numbers them.
constexpr unsigned int ssse3Bit = 1U << 9;
constexpr unsigned int sse41Bit = 1U << 19;
constexpr unsigned int aesBit = 1U << 25;
constexpr unsigned int shaBit = 1U << 29;
constexpr unsigned int featureLeaf = 1;
constexpr unsigned int extendedLeaf = 7;

struct Registers {
  unsigned int eax = 0, ebx = 0, ecx = 0, edx = 0;
};

Registers leaf(unsigned int number) {
  Registers r;
  if (__get_cpuid_count(number, 0, &r.eax, &r.ebx, &r.ecx, &r.edx) == 0) return {};
  return r;
}

bool has(unsigned int word, unsigned int bits) { return (word & bits) == bits; }

}  // namespace

bool hasAes() { return has(leaf(featureLeaf).ecx, aesBit); }

bool hasSha() {
  return has(leaf(featureLeaf).ecx, ssse3Bit | sse41Bit) && has(leaf(extendedLeaf).ebx, shaBit);
}

bool hasWideVectors() { return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("bmi2") != 0; }

}  // namespace pcrypt::processor

#else

namespace pcrypt::processor {

bool hasAes() { return false; }
bool hasSha() { return false; }
bool hasWideVectors() { return false; }

}  // namespace pcrypt::processor

#endif
