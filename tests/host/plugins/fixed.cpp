// A plug-in that does everything right.
#include "tests/host/plugins/fake_plugin.h"

FAKE_PLUGIN(fake::FakePlugin)
