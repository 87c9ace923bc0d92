// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>

#include <algorithm>
#include <charconv>
#include <functional>
#include <utility>

#include "framework/exception.h"
#include "framework/interface_version.h"
#include "framework/plugin_basic_query_callbacks.h"
#include "framework/plugin_callbacks.h"
#include "runtime/plugin_manager.h"
#include "runtime/query_audit.h"

namespace vtq {

using NQZMVTQ20::IPluginBasicQueryCallbacks;
using NQZMVTQ20::IPluginCallbacks;
using NQZMVTQ20::TVTQException;
using NQZMVTQ20::TVTQStatusCode;

namespace {

// dlopen searches a name without a slash in the system's directories.
std::string LoaderPath(const std::string& file) {
  return file.find('/') == std::string::npos ? "./" + file : file;
}

struct InterfaceVersion {
  int major = -1;
  int minor = -1;
};

// For a malformed text, the version is -1.-1, which is compatible with no host.
InterfaceVersion ParseInterfaceVersion(const std::string& text) {
  InterfaceVersion version;
  const char* const end = text.data() + text.size();
  const auto major = std::from_chars(text.data(), end, version.major);
  if (major.ptr == end || *major.ptr != '.') return {};
  const auto minor = std::from_chars(major.ptr + 1, end, version.minor);
  return minor.ptr == end ? version : InterfaceVersion{};
}

bool Fits(const InterfaceVersion& version) {
  return version.major == NQZMVTQ20::kInterfaceMajorVersion && version.minor >= 0 &&
         version.minor <= NQZMVTQ20::kInterfaceMinorVersion;
}

// Returns why `step` failed; empty if it did not.
std::string FailureOf(const std::function<void()>& step) {
  try {
    step();
    return {};
  } catch (const std::exception& failure) {
    return failure.what();
  } catch (...) {
    return "an unknown exception";
  }
}

}  // namespace

Plugin::Plugin(PluginManager& manager, std::string file)
    : manager_(manager), provider_(std::move(file)) {}

Plugin::~Plugin() {
  EndObject();
  if (library_ != nullptr) ::dlclose(library_);
}

void Plugin::Open() {
  std::vector<IPluginCallbacks*> registered;
  manager_.loading_ = &registered;
  library_ = ::dlopen(LoaderPath(GetFile()).c_str(), RTLD_NOW | RTLD_LOCAL);
  manager_.loading_ = nullptr;
  if (library_ == nullptr) {
    throw TVTQException("the plug-in " + GetFile() + " cannot be loaded (" + ::dlerror() +
                            "): check that the file and the libraries it needs are there",
                        TVTQStatusCode::kNotFound);
  }
  const auto isSame = [this](const std::unique_ptr<Plugin>& other) {
    return other->library_ == library_;
  };
  if (std::any_of(manager_.plugins_.begin(), manager_.plugins_.end(), isSame)) {
    throw TVTQException("the plug-in " + GetFile() + " is already loaded: name it only once");
  }
  Adopt(registered);
}

void Plugin::Adopt(const std::vector<IPluginCallbacks*>& registered) {
  if (registered.empty()) {
    throw TVTQException("the library " + GetFile() +
                        " registers no plug-in: give the path of a plug-in (*.pi.so)");
  }
  callbacks_ = registered.front();
  for (std::size_t index = 1; index < registered.size(); ++index) {
    registered[index]->PrepareForUnload();
  }
  if (registered.size() > 1) {
    throw TVTQException("the library " + GetFile() + " registers " +
                        std::to_string(registered.size()) +
                        " plug-ins: build one library for each of them");
  }
  Connect();
}

// The object may still be under construction, so it is connected when it is first used.
void Plugin::JoinByHand(IPluginCallbacks* callbacks) {
  callbacks_ = callbacks;
  library_ = ::dlopen(GetFile().c_str(), RTLD_NOW | RTLD_NOLOAD);
}

void Plugin::CheckInterface() const {
  const std::string version = GetInterfaceVersion();
  if (Fits(ParseInterfaceVersion(version))) return;
  throw TVTQException("the plug-in " + GetFile() + " was built for version " + version +
                      " of the plug-in interface, which is not compatible with version " +
                      std::to_string(NQZMVTQ20::kInterfaceMajorVersion) + "." +
                      std::to_string(NQZMVTQ20::kInterfaceMinorVersion) +
                      " of this program: build the plug-in for that version");
}

void Plugin::Connect() {
  CheckInterface();
  queries_ = dynamic_cast<IPluginBasicQueryCallbacks*>(callbacks_);
  if (queries_ != nullptr) queries_->SetProvider(&provider_);
}

int Plugin::GetType() const { return callbacks_->GetType(); }

std::string Plugin::GetName() const { return callbacks_->GetName(); }

std::string Plugin::GetVersion() const { return callbacks_->GetVersion(); }

std::string Plugin::GetInterfaceVersion() const { return callbacks_->GetInterfaceVersion(); }

void Plugin::Init() {
  if (state_ != State::kLoaded) NoteViolation("Init was called a second time");
  Connect();
  callbacks_->Init();
  state_ = State::kInitialized;
}

void Plugin::GetData(const std::shared_ptr<NQZMVTQ20::ICIMNamespace>& nameSpace,
                     std::vector<std::shared_ptr<NQZMVTQ20::ICIMClass>>& classes) {
  if (state_ == State::kLoaded) NoteViolation("a query came before Init");
  if (state_ == State::kDeInitialized) NoteViolation("a query came after DeInit");
  Connect();
  if (queries_ == nullptr) return;
  const QueryAudit audit(nameSpace);
  const auto noteFindings = [this, &audit] {
    for (const std::string& finding : audit.GetFindings()) NoteViolation(finding);
  };
  try {
    queries_->GetData(nameSpace, classes);
  } catch (...) {
    noteFindings();
    throw;
  }
  noteFindings();
}

void Plugin::DeInit() {
  if (state_ != State::kInitialized) NoteViolation("DeInit was called without Init");
  state_ = State::kDeInitialized;
  callbacks_->DeInit();
}

void Plugin::EndObject() {
  if (callbacks_ == nullptr) return;
  if (state_ == State::kInitialized) {
    NoteViolation("the plug-in was unloaded without DeInit");
    const std::string failure = FailureOf([this] { DeInit(); });
    if (!failure.empty()) NoteViolation("DeInit failed while unloading: " + failure);
  }
  const std::string failure =
      FailureOf([this] { std::exchange(callbacks_, nullptr)->PrepareForUnload(); });
  if (!failure.empty()) NoteViolation("PrepareForUnload failed: " + failure);
}

void Plugin::NoteViolation(const std::string& what) {
  manager_.violations_.push_back(GetFile() + ": " + what);
}

}  // namespace vtq
