// SPDX-License-Identifier: Apache-2.0
#include "fuzz/fuzz.h"

// The name by which the fuzzer finds a target.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzz::CheckInput({reinterpret_cast<const char*>(bytes), size});
  return 0;
}
