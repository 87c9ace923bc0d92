// SPDX-License-Identifier: Apache-2.0
#include "tests/system/guest.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tests/system/monitor.h"
#include "tests/system/slot_structure.h"
#include "tests/system/timed_run.h"
#include "tests/system/user_numbers.h"

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::seconds kBootTime{100};
constexpr std::chrono::seconds kUnpackTime{10};
constexpr std::uint16_t kFirstHandle = 0x900;

std::string TextOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw std::runtime_error("cannot read " + file.string());
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

fs::path EmptyDirectoryOf(const SystemMachine& machine) {
  const fs::path directory = fs::path(GUEST_DIRECTORY) / machine.name;
  fs::remove_all(directory);
  fs::create_directories(directory / "answers");
  return directory;
}

void Write(const fs::path& file, const std::string& bytes) {
  std::ofstream stream(file, std::ios::binary);
  stream << bytes;
  if (!stream.flush()) throw std::runtime_error("cannot write " + file.string());
}

// Writes each slot record to a file and returns the options that pass them to the firmware.
std::vector<std::string> SlotOptions(const SystemMachine& machine, const fs::path& directory) {
  std::vector<std::string> options;
  std::uint16_t handle = kFirstHandle;
  for (const nlohmann::json& record : machine.records) {
    const fs::path file = directory / ("slot" + std::to_string(options.size() / 2 + 1) + ".bin");
    const std::vector<unsigned char> bytes = MakeSlotStructure(record, handle++);
    Write(file, std::string(bytes.begin(), bytes.end()));
    options.insert(options.end(), {"-smbios", "file=" + file.string()});
  }
  return options;
}

std::vector<std::string> TableOptions(const SystemMachine& machine, const fs::path& directory) {
  if (machine.userNumbers.is_null()) return {};
  const fs::path file = directory / "ssdt.bin";
  Write(file, MakeUserNumberTable(machine.userNumbers));
  return {"-acpitable", "sig=SSDT,data=" + file.string()};
}

// Returns the emulator's command line, without the serial lines. Network cards have no boot ROM,
// because nothing boots from them and the firmware would spend time on it.
std::vector<std::string> CommandLine(const SystemMachine& machine, const fs::path& directory,
                                     const std::string& kernelOptions) {
  const fs::path guest = GUEST_DIRECTORY;
  std::vector<std::string> words{"qemu-system-x86_64"};
  const auto add = [&words](std::vector<std::string> more) {
    words.insert(words.end(), more.begin(), more.end());
  };
  add({"-accel", "tcg", "-cpu", "max", "-m", "512"});
  add({"-machine", "q35,smbios-entry-point-type=" + machine.smbiosEntryPoint});
  add({"-no-user-config", "-nodefaults", "-display", "none", "-no-reboot"});
  add({"-kernel", guest / "vmlinuz", "-initrd", guest / "initramfs.cpio"});
  add({"-append",
       "console=ttyS0 quiet panic=-1 mitigations=off " + machine.kernelOptions + kernelOptions});
  add({"-global", "e1000e.romfile=", "-global", "e1000.romfile="});
  for (const std::string& device : machine.devices) add({"-device", device});
  add(machine.options);
  add(SlotOptions(machine, directory));
  add(TableOptions(machine, directory));
  return words;
}

// A truncated archive counts as no output.
bool Unpack(const fs::path& directory) {
  const std::vector<std::string> tar{
      "tar", "-x", "-z", "-f", directory / "answers.tar.gz", "-C", directory / "answers"};
  return RunWithin(kUnpackTime, tar, directory / "tar.log") == 0;
}

std::map<std::string, Answer> ReadAnswers(const fs::path& directory) {
  std::map<std::string, Answer> answers;
  for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
    const fs::path& file = entry.path();
    Answer& answer = answers[file.stem()];
    if (file.extension() == ".out") answer.out = TextOf(file);
    if (file.extension() == ".err") answer.err = TextOf(file);
    if (file.extension() == ".status") answer.status = std::stoi(TextOf(file));
  }
  return answers;
}

std::string LastPartOf(const fs::path& file) {
  constexpr std::size_t kEnough = 2000;
  const std::string text = fs::exists(file) ? TextOf(file) : "";
  return text.size() > kEnough ? text.substr(text.size() - kEnough) : text;
}

}  // namespace

std::map<std::string, Answer> Boot(const SystemMachine& machine) {
  const fs::path directory = EmptyDirectoryOf(machine);
  std::vector<std::string> words = CommandLine(machine, directory, "");
  for (const char* line : {"console.log", "answers.tar.gz"}) {
    words.insert(words.end(), {"-serial", "file:" + (directory / line).string()});
  }
  Monitor monitor(directory);
  const std::vector<std::string> monitorOptions = monitor.Options();
  words.insert(words.end(), monitorOptions.begin(), monitorOptions.end());
  const auto change = [&] { monitor.SendWhenReady(directory / "console.log", machine.changes); };
  std::string failure;
  try {
    const int status = RunWithin(kBootTime, words, directory / "qemu.log", change);
    if (status == 0 && Unpack(directory)) return ReadAnswers(directory / "answers");
    failure = "the emulator ended with status " + std::to_string(status);
  } catch (const std::runtime_error& error) {
    failure = error.what();
  }
  throw std::runtime_error("The machine " + machine.name + " did not answer: " + failure +
                           ".\nThe emulator said:\n" + LastPartOf(directory / "qemu.log") +
                           "\nIts monitor said:\n" + monitor.ReadAnswers() +
                           "\nIts console said:\n" + LastPartOf(directory / "console.log"));
}

void GiveShell(const SystemMachine& machine) {
  std::vector<std::string> words = CommandLine(machine, EmptyDirectoryOf(machine), " shell");
  words.insert(words.end(), {"-serial", "mon:stdio"});
  Become(words);
}
