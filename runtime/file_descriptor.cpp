// SPDX-License-Identifier: Apache-2.0
#include "runtime/file_descriptor.h"

#include <cerrno>

namespace vtq {

ssize_t AppendFrom(int descriptor, std::string& text) {
  // The default capacity of a pipe.
  char chunk[65536];
  ssize_t count = 0;
  do {
    count = ::read(descriptor, chunk, sizeof chunk);
  } while (count < 0 && errno == EINTR);
  if (count > 0) text.append(chunk, static_cast<std::size_t>(count));
  return count;
}

}  // namespace vtq
