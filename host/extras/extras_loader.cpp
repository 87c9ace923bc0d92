// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>
#include <sys/mman.h>

#include <new>
#include <stdexcept>
#include <utility>

#include "host/extras/extras.h"
#include "host/process/library_location.h"

namespace pciinfo {
namespace {

/// The loader does not say whether memory was what it lacked.
bool HasRoomForExtras() noexcept {
  constexpr std::size_t kRoom = 64U << 20U;
  void* const room = mmap(nullptr, kRoom, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  return room != MAP_FAILED && munmap(room, kRoom) == 0;
}

// Never unloaded, because the objects that it makes need its code.
void* LoadExtras() {
  const std::string file = FirstExisting(LibraryPlaces(ProgramDirectory(), kExtrasFile),
                                         "a part of this program is missing: install it again");
  void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_NODELETE);
  if (library != nullptr) return library;
  if (!HasRoomForExtras()) throw std::bad_alloc();
  throw std::runtime_error(std::string("cannot load a part of this program (") + dlerror() +
                           "): install it again");
}

template <class Function>
Function* Find(const char* name) {
  static void* const extras = LoadExtras();
  if (void* function = dlsym(extras, name)) return reinterpret_cast<Function*>(function);
  throw std::runtime_error(std::string(kExtrasFile) +
                           " belongs to another version of this program: install it again");
}

}  // namespace

std::unique_ptr<CaptureReader> OpenArchive(vtq::FileDescriptor file) {
  const auto open = Find<decltype(PciinfoOpenArchive)>("PciinfoOpenArchive");
  return std::unique_ptr<CaptureReader>(open(std::move(file)));
}

std::unique_ptr<CaptureWriter> MakeArchiveWriter(int descriptor, Compression compression) {
  const auto make = Find<decltype(PciinfoMakeArchiveWriter)>("PciinfoMakeArchiveWriter");
  return std::unique_ptr<CaptureWriter>(make(descriptor, compression));
}

std::unique_ptr<InstanceWriter> MakeCimXmlWriter(Output& output) {
  const auto make = Find<decltype(PciinfoMakeCimXmlWriter)>("PciinfoMakeCimXmlWriter");
  return std::unique_ptr<InstanceWriter>(make(output));
}

std::unique_ptr<InstanceWriter> MakeYamlWriter(Output& output) {
  const auto make = Find<decltype(PciinfoMakeYamlWriter)>("PciinfoMakeYamlWriter");
  return std::unique_ptr<InstanceWriter>(make(output));
}

void WriteYaml(Output& output, const nlohmann::ordered_json& document) {
  Find<decltype(PciinfoWriteYaml)>("PciinfoWriteYaml")(output, document);
}

}  // namespace pciinfo
