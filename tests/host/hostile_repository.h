// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "runtime/repository.h"

/// Texts that are hard to write in one format or another, valid UTF-8 and not.
std::vector<std::string> HostileTexts();

/// A repository of invented classes: Hostile_Everything has a property of every type and shape;
/// Hostile_Link has a reference to it, and a boolean and a signed number as keys. The values are
/// hostile texts, extreme numbers, empty arrays and arrays with null elements; one instance has
/// only its key.
std::shared_ptr<vtq::Namespace> MakeHostileRepository();

/// The same classes without instances.
std::shared_ptr<vtq::Namespace> MakeEmptyHostileRepository();
