#pragma once

#include <istream>
#include <string>

#include "framework/export.h"

namespace vtq {

/// The fully qualified name of `host` by the lines of a hosts file: the first name of a line that
/// lists `host`, where that is `host` with a domain behind it. Otherwise, and for a name that
/// has a domain already or stands for no name ("localhost"), `host` itself. No name server is ever
/// asked: an inventory does not wait for a network that may be down. Exceptions of the stream pass
/// through.
VTQ_EXPORT std::string QualifiedHostName(const std::string& host, std::istream& hostsFile);

}  // namespace vtq
