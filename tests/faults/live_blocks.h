// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Number of blocks of memory that are allocated. With sanitizers, which replace malloc, only
/// blocks of operator new are counted, and only these allocations fail.
long LiveBlocks() noexcept;
