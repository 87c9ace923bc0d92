// SPDX-License-Identifier: Apache-2.0

// A plug-in whose Init throws an exception of its own type.
#include <exception>

#include "tests/host/plugins/fake_plugin.h"

namespace {

class NoFuel final : public std::exception {
  const char* what() const noexcept override { return "no fuel"; }
};

class Uninitialisable final : public fake::FakePlugin {
  void Init() override { throw NoFuel(); }
};

}  // namespace

FAKE_PLUGIN(Uninitialisable)
