#include "PDFEncryption/processor.h"

#if defined(__x86_64__)

#include <cpuid.h>

// What the compiler's run-time has asked the processor at the start is not asked again: under a hypervisor
// each question takes some ten microseconds.

namespace pcrypt::processor {
namespace {

/// The run-time doesn't tell of SHA. Leaf 7, EBX, as the processor's manual numbers the bits.
bool hasShaBit() {
  constexpr unsigned int extendedLeaf = 7;
  constexpr unsigned int shaBit = 1U << 29;
  unsigned int eax = 0, ebx = 0, ecx = 0, edx = 0;
  return __get_cpuid_count(extendedLeaf, 0, &eax, &ebx, &ecx, &edx) != 0 && (ebx & shaBit) != 0;
}

}  // namespace

bool hasAes() { return __builtin_cpu_supports("aes") != 0; }

bool hasSha() {
  return __builtin_cpu_supports("ssse3") != 0 && __builtin_cpu_supports("sse4.1") != 0 && hasShaBit();
}

bool hasVectorRotation() {
  return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512vl") != 0;
}

bool hasWideVectors() { return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("bmi2") != 0; }

}  // namespace pcrypt::processor

#else

namespace pcrypt::processor {

bool hasAes() { return false; }
bool hasSha() { return false; }
bool hasWideVectors() { return false; }
bool hasVectorRotation() { return false; }

}  // namespace pcrypt::processor

#endif
