// SPDX-License-Identifier: Apache-2.0
#include "host/store/digest.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <openssl/evp.h>
#include <openssl/rand.h>

#include <array>
#include <stdexcept>

namespace pciinfo {

std::string Sha256(const std::string& text) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> bytes{};
  unsigned length = 0;
  if (EVP_Digest(text.data(), text.size(), bytes.data(), &length, EVP_sha256(), nullptr) != 1) {
    throw std::runtime_error("the system's cryptographic library has no SHA-256");
  }
  return fmt::format("sha256:{:02x}", fmt::join(bytes.begin(), bytes.begin() + length, ""));
}

std::string RandomDigits() {
  std::array<unsigned char, 16> bytes{};
  if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) {
    throw std::runtime_error("the system's cryptographic library has no random numbers");
  }
  return fmt::format("{:02x}", fmt::join(bytes, ""));
}

}  // namespace pciinfo
