// SPDX-License-Identifier: Apache-2.0

// The manifest of an untrusted capture: a manifest that was read can be written and read again.
#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>

#include "fuzz/fuzz.h"
#include "host/capture/manifest.h"

namespace {

using fuzz::Require;
using pciinfo::BadCapture;
using pciinfo::Manifest;

std::optional<Manifest> Parsed(std::string_view json) {
  try {
    return pciinfo::ParseManifest(json);
  } catch (const BadCapture&) {
    return {};
  }
}

bool AreEqual(const pciinfo::UnreadPart& left, const pciinfo::UnreadPart& right) {
  return left.path == right.path && left.reason == right.reason;
}

void CheckVersion(std::string_view json) {
  const auto version = nlohmann::json::parse(json).at("formatVersion");
  Require(version.is_number_integer() && version == 1, "only format version 1 is read");
}

void CheckName(const std::string& name) {
  Require(name.size() <= 253, "a system's name has a maximum length");
  for (const char c : name) Require(c > ' ' && c < 0x7F, "a system's name is of plain characters");
}

}  // namespace

void fuzz::CheckInput(std::string_view input) {
  const auto manifest = Parsed(input);
  if (!manifest) return;
  CheckVersion(input);
  CheckName(manifest->systemName);
  const auto again = Parsed(pciinfo::ManifestJson(*manifest));
  Require(again.has_value(), "a written manifest can be read");
  Require(again->systemName == manifest->systemName, "the name stays");
  Require(again->kernelRelease == manifest->kernelRelease, "the kernel's release stays");
  Require(again->capturedAt == manifest->capturedAt, "the time stays");
  Require(again->tools == manifest->tools, "the tools stay");
  Require(again->redacted == manifest->redacted, "redacted stays redacted");
  Require(again->parts == manifest->parts, "the number of parts stays");
  Require(std::equal(again->unread.begin(), again->unread.end(), manifest->unread.begin(),
                     manifest->unread.end(), AreEqual),
          "the unread parts stay");
}
