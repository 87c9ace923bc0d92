// SPDX-License-Identifier: Apache-2.0
#include "topology/vital_product_reader.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "topology/vital_product_data.h"

namespace topology {
namespace {

using Clock = std::chrono::steady_clock;

/// The kernel waits up to an eighth of a second for each four bytes, and a read cannot be stopped.
constexpr std::size_t kPieceSize = 32;

std::string ReasonOf(int error) {
  if (error == EACCES || error == EPERM) return "only root may read it";
  if (error == ENOENT) return "the kernel shows no file of it";
  return std::string("reading it failed: ") + std::strerror(error);
}

/// Appends the next piece. Returns why there is none, or "".
std::string AppendPiece(int file, std::string& bytes, std::size_t needed) {
  std::array<char, kPieceSize> piece{};
  const std::size_t size = std::min(piece.size(), needed - bytes.size());
  const ssize_t count = pread(file, piece.data(), size, static_cast<off_t>(bytes.size()));
  if (count < 0) return ReasonOf(errno);
  if (count == 0) return "the data ends too early";
  bytes.append(piece.data(), static_cast<std::size_t>(count));
  return "";
}

VitalProductBytes ReadUntil(int file, Clock::time_point end) {
  VitalProductBytes read;
  while (read.trouble.empty()) {
    const std::size_t needed = std::min(NeededVitalProductData(read.bytes), kMostVitalProductData);
    if (needed <= read.bytes.size()) break;
    if (Clock::now() >= end) {
      read.trouble = "reading it took too long";
    } else {
      read.trouble = AppendPiece(file, read.bytes, needed);
    }
  }
  return read;
}

}  // namespace

VitalProductBytes VitalProductReader::Read(const Directory& device) {
  const int file = device.OpenFile("vpd");
  if (file < 0) return {"", ReasonOf(errno)};
  const std::lock_guard lock(mutex_);
  const Clock::time_point begin = Clock::now();
  VitalProductBytes read =
      ReadUntil(file, begin + std::min<Clock::duration>(left_, std::chrono::seconds(1)));
  left_ -= std::min(left_, Clock::now() - begin);
  close(file);
  return read;
}

}  // namespace topology
