#pragma once

namespace pciinfo {

/// Has the memory that this process and those forked from it allocate next come in large pages,
/// where the system has them to give: the inventory of a large machine takes thousands of small
/// ones, and getting them one by one is a sixth of the program's own time. Memory that is never
/// used is never taken from the system. Nothing happens where it cannot be done.
void UseLargePages() noexcept;

}  // namespace pciinfo
