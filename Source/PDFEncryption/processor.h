#pragma once

namespace pcrypt::processor {

/// Whether the processor has the AES instructions, and those that their use here needs beside them.
bool hasAes();

/// Whether the processor has the SHA-256 instructions, and those that their use here needs beside them.
bool hasSha();

}  // namespace pcrypt::processor
