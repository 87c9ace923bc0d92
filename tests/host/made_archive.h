// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

/// An entry of an archive that a test makes.
struct MadeEntry {
  std::string path;
  std::string content = {};
  char type = 'f';  ///< f file, d directory, l link, h hard link, p pipe, c character device
  std::string target = {};  ///< of a link
};

/// Writes a tar archive; `filter` is "none", "gzip", "bzip2", "xz", "lzma", "zstd" or "lz4".
void MakeArchive(const std::string& file, const std::vector<MadeEntry>& entries,
                 const std::string& filter = "none");

/// Writes a small tar archive that contains a sparse file of `size` zero bytes.
void MakeSparseArchive(const std::string& file, const std::string& path, const std::string& size);
