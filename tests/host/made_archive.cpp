// SPDX-License-Identifier: Apache-2.0
#include "tests/host/made_archive.h"

#include <archive.h>
#include <archive_entry.h>

#include <map>
#include <memory>
#include <stdexcept>

#include "tests/host/run_program.h"
#include "tests/runtime/temporary_directory.h"

namespace {

using Writer = std::unique_ptr<archive, int (*)(archive*)>;
using Entry = std::unique_ptr<archive_entry, void (*)(archive_entry*)>;

void Require(bool done, archive* writer) {
  if (!done) throw std::runtime_error(archive_error_string(writer));
}

unsigned FileTypeOf(char type) {
  const std::map<char, unsigned> types = {{'f', AE_IFREG}, {'d', AE_IFDIR}, {'l', AE_IFLNK},
                                          {'h', AE_IFREG}, {'p', AE_IFIFO}, {'c', AE_IFCHR}};
  return types.at(type);
}

Entry MakeEntry(const MadeEntry& made) {
  Entry entry(archive_entry_new(), &archive_entry_free);
  archive_entry_set_pathname(entry.get(), made.path.c_str());
  archive_entry_set_filetype(entry.get(), FileTypeOf(made.type));
  archive_entry_set_perm(entry.get(), 0644);
  if (made.type == 'l') archive_entry_set_symlink(entry.get(), made.target.c_str());
  if (made.type == 'h') archive_entry_set_hardlink(entry.get(), made.target.c_str());
  archive_entry_set_size(entry.get(), static_cast<la_int64_t>(made.content.size()));
  return entry;
}

}  // namespace

void MakeArchive(const std::string& file, const std::vector<MadeEntry>& entries,
                 const std::string& filter) {
  const Writer writer(archive_write_new(), &archive_write_free);
  archive_write_set_format_pax(writer.get());
  if (filter != "none") {
    Require(archive_write_add_filter_by_name(writer.get(), filter.c_str()) >= ARCHIVE_WARN,
            writer.get());
  }
  Require(archive_write_open_filename(writer.get(), file.c_str()) == ARCHIVE_OK, writer.get());
  for (const MadeEntry& made : entries) {
    Require(archive_write_header(writer.get(), MakeEntry(made).get()) >= ARCHIVE_WARN,
            writer.get());
    if (made.content.empty()) continue;
    Require(archive_write_data(writer.get(), made.content.data(), made.content.size()) >= 0,
            writer.get());
  }
  Require(archive_write_close(writer.get()) == ARCHIVE_OK, writer.get());
}

void MakeSparseArchive(const std::string& file, const std::string& path, const std::string& size) {
  const vtq::TemporaryDirectory directory;
  const RunResult result =
      RunShell("cd " + directory.GetPath() + " && mkdir -p $(dirname " + path +
               ") && truncate -s " + size + " " + path + " && tar -cSf " + file + " " + path);
  if (result.status != 0) throw std::runtime_error(result.err);
}
