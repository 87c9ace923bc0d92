// SPDX-License-Identifier: Apache-2.0
#include "topology/system_names_reader.h"

#include <algorithm>

namespace topology {
namespace {

constexpr int kMostLevels = 16;
constexpr int kMostDirectories = 4096;

class NamesWalk {
 public:
  void Visit(const Directory& directory, const std::vector<std::string>& entries, int level) {
    for (const std::string& entry : entries) {
      const DirectoryMeaning meaning = MeaningOf(entry);
      if (meaning == DirectoryMeaning::kNothing || opened_ == kMostDirectories) continue;
      ++opened_;
      const Directory below(directory, entry.c_str(), Directory::Links::kRefuse);
      if (!below.IsOpen()) continue;
      if (meaning == DirectoryMeaning::kScsiHost) names_.scsiHosts.push_back(entry);
      if (meaning == DirectoryMeaning::kScsiHost || meaning == DirectoryMeaning::kDevice) {
        if (level < kMostLevels) Visit(below, below.Names(), level + 1);
      } else {
        Take(meaning, below);
      }
    }
  }

  SystemNames TakeNames() { return std::move(names_); }

 private:
  void Take(DirectoryMeaning meaning, const Directory& directory) {
    for (const std::string& name : directory.Names()) {
      if (meaning == DirectoryMeaning::kNetwork) {
        names_.networkInterfaces.push_back({name, directory.ReadLine((name + "/address").c_str())});
      } else if (meaning == DirectoryMeaning::kInfiniband) {
        names_.infinibandDevices.push_back({name, directory.ReadLine((name + "/fw_ver").c_str())});
      } else if (meaning == DirectoryMeaning::kDrm) {
        names_.drmDevices.push_back(name);
      } else if (meaning == DirectoryMeaning::kBlock) {
        names_.blockDevices.push_back(name);
      } else {
        TakeNvme(directory, name);
      }
    }
  }

  void TakeNvme(const Directory& directory, const std::string& name) {
    const Directory controller(directory, name.c_str(), Directory::Links::kRefuse);
    if (!controller.IsOpen()) return;
    names_.nvmeControllers.push_back({name, controller.ReadLine("model"),
                                      controller.ReadLine("serial"),
                                      controller.ReadLine("firmware_rev")});
    for (const std::string& entry : controller.Names()) {
      const std::string device = NvmeBlockDevice(entry);
      if (!device.empty()) names_.blockDevices.push_back(device);
    }
  }

  SystemNames names_;
  int opened_ = 0;
};

}  // namespace

SystemNames ReadSystemNames(const Directory& device, const std::vector<std::string>& entries) {
  NamesWalk walk;
  walk.Visit(device, entries, 0);
  return walk.TakeNames();
}

}  // namespace topology
