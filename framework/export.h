#pragma once

// Marks what a library shows to the other side of the plug-in boundary. Everything is compiled
// with hidden visibility, so a class that crosses the boundary must say so.
#define VTQ_EXPORT __attribute__((visibility("default")))
