// A plug-in that cannot be initialised, and says so with an exception type of its own.
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
