// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace pciinfo {

/// Blanks what can identify a card in vital product data (PCI Local Bus 3.0, appendix I): the
/// serial number and the vendor- and system-specific fields, of which only their makers know what
/// they mean. A checksum stays as right or wrong as it was. What cannot be decoded is cleared.
void RedactVitalProductData(std::string& bytes);

}  // namespace pciinfo
