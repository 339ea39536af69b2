#pragma once

namespace pcrypt::processor {

/// Whether the processor has the AES instructions, and those that their use here needs beside them.
bool hasAes();

/// Whether the processor has the SHA-256 instructions, and those that their use here needs beside them.
bool hasSha();

/// Whether the processor has 256-bit vectors of integers (AVX2) that the operating system keeps, and the
/// rotations of its second set of bit instructions (BMI2).
bool hasWideVectors();

}  // namespace pcrypt::processor
