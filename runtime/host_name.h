// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <istream>
#include <optional>
#include <string>

#include "framework/export.h"

namespace vtq {

/// Returns the fully qualified name of `host` from a hosts file: the first name of a line that
/// lists `host`, if it is `host` followed by a domain. Otherwise, and if `host` already has a
/// domain or is "localhost", returns `host` itself. Does not ask a name server, because an
/// inventory must not wait for a network that may be down. Exceptions of the stream pass through.
VTQ_EXPORT std::string QualifiedHostName(const std::string& host, std::istream& hostsFile);

/// Gives the system another name than this machine's. Call it before the framework's services are
/// asked for the name, because they remember it.
VTQ_EXPORT void SetSystemName(std::string name);

/// Returns the name that was set, if one was.
const std::optional<std::string>& GivenSystemName() noexcept;

}  // namespace vtq
