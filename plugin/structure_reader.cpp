// SPDX-License-Identifier: Apache-2.0
#include "plugin/structure_reader.h"

#include <algorithm>

using NQZMVTQ20::smBiosGetFirst;
using NQZMVTQ20::smBiosGetNext;
using NQZMVTQ20::TVTQStatusCode;

TVTQStatusCode::EVTQStatusCode StructureReader::First(int type) {
  Clear();
  return smBiosGetFirst(handle_, type, Get(), &size_);
}

TVTQStatusCode::EVTQStatusCode StructureReader::Next() {
  Clear();
  return smBiosGetNext(handle_, Get(), &size_);
}

// Every fetch gets the same size variable; it never exceeds the size of the buffer.
void StructureReader::Clear() {
  buffer_.fill(0);
  size_ = std::min(size_, kCapacity);
}
