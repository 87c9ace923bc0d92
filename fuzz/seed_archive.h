// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

/// An entry of an archive: a link if it has a target, a file that is only a hole if it has a hole.
struct SeedEntry {
  std::string path;
  std::string content = {};
  std::string target = {};
  std::int64_t hole = 0;  ///< bytes
};

/// Writes a tar archive of a libarchive format ("pax", "gnutar", "v7tar") and filter ("none",
/// "gzip", "bzip2", "xz", "lzma", "zstd", "lz4"). Throws std::runtime_error.
void WriteArchive(const std::filesystem::path& file, const std::vector<SeedEntry>& entries,
                  const std::string& format, const std::string& filter);
