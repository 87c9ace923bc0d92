// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <initializer_list>

namespace pciinfo {

/// Capabilities by their numbers (<linux/capability.h>).
using Capabilities = std::initializer_list<unsigned>;

/// Lets programs that are started from here on have the capabilities in `most` at most, whoever
/// starts them. This process keeps its own, of which it needs CAP_SETPCAP.
void LimitCapabilitiesOfPrograms(Capabilities most) noexcept;

/// Keeps those of this process's capabilities that are in `kept` and gives up all others for good.
void KeepCapabilities(Capabilities kept) noexcept;

/// Gives up one capability, for the programs that this process starts as well.
void GiveUpCapability(unsigned capability) noexcept;

/// Whether this process has no capability at all.
bool HasNoCapabilities() noexcept;

}  // namespace pciinfo
