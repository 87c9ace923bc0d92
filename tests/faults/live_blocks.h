#pragma once

/// Blocks of memory that were allocated and not freed yet. Where malloc belongs to a sanitizer,
/// only those of operator new are counted, and only they fail.
long LiveBlocks() noexcept;
