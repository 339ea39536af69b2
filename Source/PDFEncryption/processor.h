#pragma once

namespace pcrypt::processor {

/// Whether the processor has the AES instructions, and those that their use here needs beside them.
bool hasAes();

/// Whether the processor has the SHA-256 instructions, and those that their use here needs beside them.
bool hasSha();

/// Whether the processor has 256-bit vectors of integers (AVX2) that the operating system keeps, and the
/// rotations of its second set of bit instructions (BMI2).
bool hasWideVectors();

/// Whether these vectors have rotations and functions of three operands (AVX-512 F and VL) too.
bool hasVectorRotation();

}  // namespace pcrypt::processor
