// SPDX-License-Identifier: Apache-2.0

// make_seeds OUTPUT DIRECTORY...: writes the seeds OUTPUT/TARGET/* from machines. DIRECTORY
// contains machines: directories with a machine.json (tests/recipes/machine_recipe.h), and captures
// as directories or tar archives.
#include <fmt/format.h>

#include <cstdlib>
#include <iostream>
#include <nlohmann/json.hpp>

#include "fuzz/seed_archive.h"
#include "fuzz/smbios_model.h"
#include "tests/recipes/machine_recipe.h"
#include "tests/recipes/recipe_files.h"
#include "tests/runtime/temporary_directory.h"

namespace {

namespace fs = std::filesystem;

using recipe::WriteFile;

constexpr std::size_t kLongestTable = 6000;
constexpr std::size_t kMostLines = 12;

std::string ReadText(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> FirstLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; lines.size() < kMostLines && std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

// The content of a line of the device list.
struct ListedFunction {
  unsigned bus = 0, device = 0, function = 0, ids = 0;

  std::string Address() const { return fmt::format("{:02x}:{:02x}.{:x}", bus, device, function); }
};

std::vector<ListedFunction> FunctionsOf(const std::vector<std::string>& lines) {
  std::vector<ListedFunction> functions;
  for (const std::string& line : lines) {
    unsigned place = 0;
    unsigned ids = 0;
    if (std::sscanf(line.c_str(), "%4x\t%8x", &place, &ids) != 2) continue;
    functions.push_back({place >> 8, (place & 0xFF) >> 3, place & 7, ids});
  }
  return functions;
}

// The seeds of one machine in a directory.
class MachineSeeds final {
 public:
  MachineSeeds(fs::path output, std::string name, fs::path root)
      : output_(std::move(output)), name_(std::move(name)), root_(std::move(root)) {}

  void WriteAll() const {
    const std::vector<std::string> list = FirstLines(Content("proc/bus/pci/devices"));
    WriteList(list);
    WriteListings(FunctionsOf(list));
    WriteTables(Content("sys/firmware/dmi/tables/smbios_entry_point"),
                Content("sys/firmware/dmi/tables/DMI"));
    WriteCaptures(list);
  }

 private:
  std::string Content(const std::string& path) const { return ReadText(root_ / path); }

  void Write(const std::string& target, const std::string& kind, const std::string& content) const {
    if (!content.empty()) WriteFile(output_ / target / (name_ + kind), content);
  }

  void WriteList(const std::vector<std::string>& lines) const {
    Write("device_line", "-list", fmt::format("{}\n", fmt::join(lines, "\n")));
    for (std::size_t i = 0; i < lines.size(); i += 4) {
      Write("device_line", fmt::format("-line-{}", i), lines[i]);
    }
  }

  void WriteListings(const std::vector<ListedFunction>& functions) const {
    std::string addresses;
    std::string listing;
    std::string dump;
    for (const ListedFunction& at : functions) {
      addresses += fmt::format("{}\nPCI Bus {:2}, device {:3}, function {:2}\n", at.Address(),
                               at.bus, at.device, at.function);
      addresses += fmt::format("/devices/pci0000:00/0000:{}\n{:08x}\n", at.Address(), at.ids);
      listing +=
          fmt::format("{} Device {:04x}:{:04x}\n", at.Address(), at.ids >> 16, at.ids & 0xFFFF);
      dump += fmt::format("{} Device\n00: {:02x} {:02x} {:02x}\n\n", at.Address(), at.ids >> 24,
                          (at.ids >> 16) & 0xFF, (at.ids >> 8) & 0xFF);
    }
    Write("address", "", addresses);
    Write("raw_lines", "", dump);
    const std::string commands = Content("commands/lspci");
    for (const ListedFunction& at : functions) {
      const std::string config =
          Content(fmt::format("proc/bus/pci/{:02x}/{:02x}.{:x}", at.bus, at.device, at.function));
      Write("config_space", "-" + at.Address(), config);
      Write("function_config", "-" + at.Address(), config);
      Write("listing", "-" + at.Address(), at.Address() + "\n" + listing);
      if (!commands.empty()) {
        Write("listing", "-real", at.Address() + "\n" + commands.substr(0, kLongestTable));
      }
    }
    Write("object_path", "", addresses + listing);
  }

  void WriteTables(const std::string& entryPoint, const std::string& table) const {
    if (entryPoint.empty()) return;
    const std::string start(1, static_cast<char>(entryPoint.size()));
    const std::string tables = start + entryPoint + table.substr(0, kLongestTable);
    Write("smbios", "-plain", std::string("\0\0\xFF", 3) + tables);
    Write("smbios", "-files", std::string("\x08\x09\x40", 3) + tables);
    Write("smbios", "-sums", std::string("\x0C\x0B\xFF", 3) + tables);
    std::string slots;
    std::string texts;
    for (const std::string& structure : fuzz::PlainStructures(table)) {
      if (structure[0] == 9) slots += structure;
      if (structure[0] == 11 || structure[0] == 9) texts += structure;
    }
    if (slots.empty()) slots = table.substr(0, kLongestTable);
    Write("slot_decoder", "", std::string(1, '\0') + slots);
    Write("slot_decoder", "-all", "\x01" + texts + table.substr(0, kLongestTable));
    Write("slot_location", "-slots", std::string("\x03\x02\x00", 3) + slots);
    Write("slot_location", "-texts", std::string("\x02\x05\x01", 3) + texts);
  }

  // A small capture with each kind of file, so that inputs stay small.
  std::vector<SeedEntry> Capture(const std::vector<std::string>& list) const {
    return {{"proc/bus/pci/devices", fmt::format("{}\n", fmt::join(list, "\n"))},
            {"proc/bus/pci/00/"},
            {"proc/bus/pci/00/00.0", Content("proc/bus/pci/00/00.0").substr(0, 64)},
            {"sys/bus/pci/devices/0000:00:00.0/driver", "", "../../../../bus/pci/drivers/" + name_},
            {"sys/firmware/dmi/tables/smbios_entry_point",
             Content("sys/firmware/dmi/tables/smbios_entry_point")},
            {"commands/lspci", "00:00.0 Host bridge: Device\n"},
            {"etc/machine-id", "0123456789abcdef0123456789abcdef\n"},
            {"manifest.json", R"({"formatVersion": 1, "systemName": ")" + name_ + "\"}"}};
  }

  void WriteCaptures(const std::vector<std::string>& list) const {
    const std::vector<SeedEntry> capture = Capture(list);
    const fs::path directory = output_ / "capture_archive";
    fs::create_directories(directory);
    for (const char* format : {"pax", "gnutar", "v7tar"}) {
      WriteArchive(directory / fmt::format("{}-{}.tar", name_, format), capture, format, "none");
    }
    for (const char* filter : {"gzip", "bzip2", "xz", "lzma", "zstd", "lz4"}) {
      WriteArchive(directory / fmt::format("{}.{}", name_, filter), capture, "pax", filter);
    }
    std::string lines;
    for (const SeedEntry& entry : capture) {
      const char kind = !entry.target.empty() ? 'l' : entry.path.ends_with('/') ? 'd' : 'f';
      lines += fmt::format("{}{}\t{}\n", kind, entry.path,
                           entry.target.empty() ? FirstLineOf(entry.content) : entry.target);
    }
    Write("capture_directory", "", lines);
    Write("manifest", "", Content("manifest.json"));
  }

  static std::string FirstLineOf(const std::string& text) {
    return text.substr(0, text.find('\n'));
  }

  fs::path output_;
  std::string name_;
  fs::path root_;
};

// Refused kinds of archives, and sparse files.
void WriteHostileArchives(const fs::path& directory) {
  fs::create_directories(directory);
  const SeedEntry hostile[] = {{"/sys/absolute", "x"},
                               {"sys/../../up", "x"},
                               {"sys/" + std::string(300, 'x'), "x"},
                               {"sys/out", "", "../../etc/passwd"},
                               {"sys/large", "", "", 100'000},
                               {"sys/hole", "", "", 5000},
                               {"elsewhere", "x"}};
  for (std::size_t i = 0; i < std::size(hostile); ++i) {
    WriteArchive(directory / fmt::format("hostile-{}.tar", i), {{"sys/x", "x"}, hostile[i]}, "pax",
                 "none");
  }
  WriteArchive(directory / "many.tar", std::vector<SeedEntry>(25, {"commands/x", ""}), "v7tar",
               "none");
}

// Inputs that do not occur on machines.
void WriteOwnSeeds(const fs::path& output) {
  const char* const commands[] = {"lspci", "lspci -xxxx",       "lspci -v",
                                  "link",  "/usr/bin/lspci -n", "lspci\t-vvv ../secret"};
  for (std::size_t i = 0; i < std::size(commands); ++i) {
    WriteFile(output / "command" / std::to_string(i), commands[i]);
  }
  WriteFile(output / "config_space/extended", std::string(600, '\0'));
  WriteFile(
      output / "config_space/listing",
      "00:00.0 Device\n\tCapabilities: [100 v1] Device Serial Number 01-02-03-04-05-06-07-08\n"
      "\t\t[SN] Serial number: A1\n100: 03 00 01 00 01 02 03 04\n");
  WriteFile(output / "function_config/extended", std::string(4096, '\0'));
  WriteFile(output / "vital_product_data/writable",
            std::string("\x82\x02\0NA\x91\x07\0YA\x04_TAG\x78", 16));
  WriteFile(output / "vital_product_data/checksum",
            std::string("\x82\x02\0NA\x90\x0D\0PN\x02\x31\x32SN\x01\x35RV\x01\xCD\x78", 22));
  WriteFile(output / "manifest/whole",
            R"({"formatVersion": 1, "systemName": "box.example.org", "kernelRelease": "6.1.0",
"capturedAt": "2026-01-31T23:59:59Z", "tools": {"lspci": "lspci version 3.9.0"},
"redacted": true, "unread": [{"path": "proc/bus/pci/00/00.0", "reason": "\u00e4"}]})");
  WriteFile(output / "machine_record/line",
            R"({"system":"box","systemUUID":"4c4c4544-0035-4d10-8052-b3c04f4c3132",
"machineID":"0123456789abcdef0123456789abcdef","collected":"2026-01-31T23:59:59Z","version":"1.0.0",
"machine":{"maker":"A","biosVersion":"1"},"slots":[{"name":"S1","state":"occupied","width":{"code":13,
"text":"x16"},"id":1,"ports":["0000:00:01.0"],"link":{"maxWidth":16},"functions":[{"address":
"0000:01:00.0","kind":"device","place":"slot","slot":"S1","certainty":"likely","vendorID":32902,
"class":{"base":2,"subclass":0,"text":"N"},"numaNode":-1,"systemDevices":[{"kind":"network",
"name":"eth0"}]}]}],"shared":[{"port":"0000:00:02.0","slots":["S1","S2"],"functions":[]}],
"onBoard":[],"unnamed":[],"unknown":[],"findings":[{"code":"a-b","severity":"note","what":"W",
"objects":[{"object":"S1"}]}],"troubles":["t"]})");
  WriteFile(output / "slot_location/text", std::string("\x02\x05\x01\x0B\x05\0\0\x01", 8) +
                                               "$T9 SID:0x0102 SegGrp:0x0000 B:0x3a D:0x00 F:0x00" +
                                               std::string(2, '\0'));
  // Choices of which machines are made; equal bytes make machines of one kind of function.
  for (unsigned step = 0; step < 32; ++step) {
    std::string choices(1024, '\0');
    for (std::size_t i = 0; i < choices.size(); ++i) {
      choices[i] = static_cast<char>(i * i * step / 7 + i * step);
    }
    WriteFile(output / "slot_resolver" / std::to_string(step), choices);
  }
  WriteHostileArchives(output / "capture_archive");
  WriteFile(output / "capture_directory/hostile",
            "dsys\nlsys/a/b\t../../etc\nhsys/hard\npsys/pipe\nfother\tx\nfsys/link/x\ty\n");
}

void Unpack(const fs::path& archive, const fs::path& directory) {
  const std::string command =
      fmt::format("tar --no-same-owner -xf '{}' -C '{}'", archive.string(), directory.string());
  if (std::system(command.c_str()) != 0) {
    throw std::runtime_error("cannot unpack " + archive.string());
  }
}

void WriteSeeds(const fs::path& machine, const fs::path& output) {
  const std::string name = machine.filename().string();
  const vtq::TemporaryDirectory root;
  if (fs::exists(machine / "machine.json")) {
    BuildMachine(ReadRecipe(machine / "machine.json"), root.GetPath());
    MachineSeeds(output, name, root.GetPath()).WriteAll();
  } else if (fs::exists(machine / "proc") || fs::exists(machine / "sys")) {
    MachineSeeds(output, name, machine).WriteAll();
  } else if (name.find(".tar") != std::string::npos) {
    Unpack(machine, root.GetPath());
    MachineSeeds(output, name.substr(0, name.find(".tar")), root.GetPath()).WriteAll();
  }
}

}  // namespace

int main(int count, char** arguments) {
  try {
    if (count < 3) throw std::runtime_error("usage: make_seeds OUTPUT DIRECTORY...");
    WriteOwnSeeds(arguments[1]);
    for (int i = 2; i < count; ++i) {
      for (const fs::directory_entry& entry : fs::directory_iterator(arguments[i])) {
        WriteSeeds(entry.path(), arguments[1]);
      }
    }
    return 0;
  } catch (const std::exception& failure) {
    std::cerr << "make_seeds: " << failure.what() << '\n';
    return 1;
  }
}
