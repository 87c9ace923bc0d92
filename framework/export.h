// SPDX-License-Identifier: Apache-2.0
#pragma once

// Exports a symbol from a library. Everything is compiled with hidden visibility, so a class that
// is used on both sides of the plug-in boundary needs this mark.
#define VTQ_EXPORT __attribute__((visibility("default")))
