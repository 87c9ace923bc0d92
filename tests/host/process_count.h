// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

/// Runs a program, with all that it starts, and answers what each process became that was started:
/// the command that it executed last ("lspci -xxxx"), or an empty text for one that executed none.
/// The first process is left out. Standard input is empty; the output is dropped, or goes to a
/// terminal of its own when a pager is named.
std::vector<std::string> ProgramsStartedBy(const std::vector<std::string>& words,
                                           const std::string& pager = "");
