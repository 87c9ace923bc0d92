// SPDX-License-Identifier: Apache-2.0
#include "host/report/page.h"

#include "host/report/machine_part.h"
#include "host/report/page_frame.h"

namespace pciinfo {

void WritePage(Output& output, const ReportedMachine& machine, const std::string& origin) {
  Markup markup(output);
  BeginPage(markup, TitleOf(machine.overview, origin));
  WriteFactList(markup, machine.overview);
  WriteSearch(markup);
  BeginMain(markup);
  WriteMachine(markup, machine, "");
  EndPage(markup, origin);
}

}  // namespace pciinfo
