// SPDX-License-Identifier: Apache-2.0
#include "host/cli/line_reader.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include "runtime/file_descriptor.h"

namespace pciinfo {

bool LineReader::Next(std::string& line) {
  std::size_t searched = begin_;
  std::size_t end = text_.find('\n', searched);
  while (end == std::string::npos) {
    searched = text_.size() - begin_;
    if (!ReadMore()) break;
    end = text_.find('\n', searched);
  }
  if (end == std::string::npos && begin_ == text_.size()) return false;
  line = text_.substr(begin_, end == std::string::npos ? end : end - begin_);
  begin_ = end == std::string::npos ? text_.size() : end + 1;
  return true;
}

std::string LineReader::Rest() {
  while (ReadMore()) {
  }
  return std::move(text_);
}

bool LineReader::ReadMore() {
  text_.erase(0, begin_);
  begin_ = 0;
  const ssize_t count = vtq::AppendFrom(descriptor_, text_);
  if (count < 0) throw std::runtime_error(name_ + " cannot be read: " + std::strerror(errno));
  if (most_ != 0 && text_.size() > most_) {
    throw std::runtime_error(name_ + ": a line is larger than --memory-limit");
  }
  return count > 0;
}

}  // namespace pciinfo
