#pragma once

#include <string>

namespace vtq {

/// The whole content of a file, for services that report the failure themselves. Throws
/// TVTQException that names the file and the reason.
std::string ReadFile(const std::string& path);

}  // namespace vtq
