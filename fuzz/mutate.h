// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>

// libFuzzer's default mutation; null in builds without libFuzzer.
extern "C" __attribute__((weak)) std::size_t LLVMFuzzerMutate(std::uint8_t* bytes, std::size_t size,
                                                              std::size_t most);

// A target may define this function: libFuzzer calls it to change an input of `size` bytes in its
// place, to at most `most` bytes, and expects the new size.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* bytes, std::size_t size,
                                               std::size_t most, unsigned seed);
