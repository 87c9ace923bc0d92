// SPDX-License-Identifier: Apache-2.0
#include "fuzz/seed_archive.h"

#include <archive.h>
#include <archive_entry.h>

#include <memory>
#include <stdexcept>

namespace {

void Require(bool done, archive* writer) {
  if (!done) throw std::runtime_error(archive_error_string(writer));
}

void WriteEntry(archive* writer, const SeedEntry& seed) {
  const std::unique_ptr<archive_entry, void (*)(archive_entry*)> entry(archive_entry_new(),
                                                                       &archive_entry_free);
  archive_entry_set_pathname(entry.get(), seed.path.c_str());
  archive_entry_set_perm(entry.get(), 0644);
  archive_entry_set_filetype(entry.get(), seed.path.ends_with('/') ? AE_IFDIR : AE_IFREG);
  archive_entry_set_size(entry.get(), static_cast<la_int64_t>(seed.content.size()));
  if (!seed.target.empty()) {
    archive_entry_set_filetype(entry.get(), AE_IFLNK);
    archive_entry_set_symlink(entry.get(), seed.target.c_str());
  }
  if (seed.hole != 0) {
    archive_entry_set_size(entry.get(), seed.hole);
    archive_entry_sparse_add_entry(entry.get(), seed.hole, 0);
  }
  Require(archive_write_header(writer, entry.get()) >= ARCHIVE_WARN, writer);
  if (seed.content.empty()) return;
  Require(archive_write_data(writer, seed.content.data(), seed.content.size()) >= 0, writer);
}

}  // namespace

void WriteArchive(const std::filesystem::path& file, const std::vector<SeedEntry>& entries,
                  const std::string& format, const std::string& filter) {
  const std::unique_ptr<archive, int (*)(archive*)> writer(archive_write_new(),
                                                           &archive_write_free);
  Require(archive_write_set_format_by_name(writer.get(), format.c_str()) == ARCHIVE_OK,
          writer.get());
  if (filter != "none") {
    Require(archive_write_add_filter_by_name(writer.get(), filter.c_str()) >= ARCHIVE_WARN,
            writer.get());
  }
  archive_write_set_bytes_in_last_block(writer.get(), 1);
  Require(archive_write_open_filename(writer.get(), file.c_str()) == ARCHIVE_OK, writer.get());
  for (const SeedEntry& entry : entries) WriteEntry(writer.get(), entry);
  Require(archive_write_close(writer.get()) == ARCHIVE_OK, writer.get());
}
