// SPDX-License-Identifier: Apache-2.0
#include "fuzz/fuzz.h"

// The name by which the fuzzer finds a target.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzz::CheckInput({reinterpret_cast<const char*>(bytes), size});
  return 0;
}

// The name by which AddressSanitizer finds its options; those of ASAN_OPTIONS come after them. It
// keeps freed memory aside to notice its use. 256 MiB, its default, holds that of thousands of
// inputs, which is of no use and keeps all of it out of the processor's caches. Of the calls that
// led to an allocation it records a few; set malloc_context_size=30 to see more for a finding.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options();

const char* __asan_default_options() {
  return "quarantine_size_mb=1:thread_local_quarantine_size_kb=64:max_malloc_fill_size=0:"
         "malloc_context_size=4";
}
