#pragma once

#include <memory>
#include <string>
#include <vector>

#include "runtime/repository.h"

/// Texts that are hard to write in one format or another, valid UTF-8 and not.
std::vector<std::string> HostileTexts();

/// A repository of made-up classes: Hostile_Everything has a property of every type and shape,
/// Hostile_Link a reference to it, and a boolean and a signed number as further keys. The values
/// are hostile texts, extreme numbers, empty arrays and arrays with gaps; one instance has its key
/// only.
std::shared_ptr<vtq::Namespace> MakeHostileRepository();

/// The same classes without instances.
std::shared_ptr<vtq::Namespace> MakeEmptyHostileRepository();
