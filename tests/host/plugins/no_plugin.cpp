// SPDX-License-Identifier: Apache-2.0

// A library that can be loaded and registers nothing.
#include "framework/export.h"

extern "C" VTQ_EXPORT int AnswerOfNoPlugin() { return 42; }
