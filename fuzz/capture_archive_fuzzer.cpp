// SPDX-License-Identifier: Apache-2.0

// Captures as untrusted archives. An input is an archive, so that a finding can be passed to the
// program unchanged.
#include <sys/mman.h>
#include <unistd.h>

#include <array>

#include "fuzz/fuzz.h"
#include "fuzz/mutate.h"
#include "fuzz/unpacked_tree.h"
#include "runtime/file_descriptor.h"

namespace {

constexpr std::size_t kBlock = 512;
constexpr std::size_t kSumPlace = 148;
constexpr std::size_t kSumLength = 8;
constexpr std::size_t kMagicPlace = 257;

bool IsHeader(const std::uint8_t* block) {
  constexpr std::string_view kMagic = "ustar";
  return std::equal(kMagic.begin(), kMagic.end(), block + kMagicPlace);
}

void FixSum(std::uint8_t* block) {
  std::fill_n(block + kSumPlace, kSumLength, ' ');
  unsigned sum = 0;
  for (std::size_t i = 0; i < kBlock; ++i) sum += block[i];
  std::array<char, kSumLength> digits{};
  std::snprintf(digits.data(), digits.size(), "%06o", sum);
  std::copy_n(digits.begin(), kSumLength, block + kSumPlace);
}

}  // namespace

void fuzz::CheckInput(std::string_view input) {
  const vtq::FileDescriptor memory(memfd_create("capture", MFD_CLOEXEC));
  Require(memory.IsOpen() &&
              write(memory.Get(), input.data(), input.size()) == static_cast<ssize_t>(input.size()),
          "there is memory for the archive");
  CheckCapture("/proc/self/fd/" + std::to_string(memory.Get()));
}

// An archive whose headers have wrong checksums is refused at once, so most changed inputs get
// correct ones.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* bytes, std::size_t size,
                                               std::size_t most, unsigned seed) {
  size = LLVMFuzzerMutate(bytes, size, most);
  if (seed % 16 == 0) return size;
  for (std::size_t place = 0; place + kBlock <= size; place += kBlock) {
    if (IsHeader(bytes + place)) FixSum(bytes + place);
  }
  return size;
}
