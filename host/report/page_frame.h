// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "host/report/markup.h"

namespace pciinfo {

/// Writes the beginning of a page: its head with styles and Content-Security-Policy, and a header
/// that is still open.
void BeginPage(Markup& markup, const std::string& title);

/// Writes the field of the search, which the script shows.
void WriteSearch(Markup& markup);

/// Ends the header and begins the main part.
void BeginMain(Markup& markup);

/// Begins a section with a title.
void BeginSection(Markup& markup, const std::string& id, const char* title);

/// Ends the main part and the page. `origin` says where the data is from.
void EndPage(Markup& markup, const std::string& origin);

}  // namespace pciinfo
