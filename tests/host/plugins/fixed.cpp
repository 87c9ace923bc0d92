// SPDX-License-Identifier: Apache-2.0

// A plug-in without errors.
#include "tests/host/plugins/fake_plugin.h"

FAKE_PLUGIN(fake::FakePlugin)
