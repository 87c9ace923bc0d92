// A library that can be loaded and registers nothing.
#include "framework/export.h"

extern "C" VTQ_EXPORT int AnswerOfNoPlugin() { return 42; }
