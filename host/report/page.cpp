// SPDX-License-Identifier: Apache-2.0
#include "host/report/page.h"

#include "host/report/machine_part.h"
#include "host/report/page_frame.h"

namespace pciinfo {

void WritePage(Output& output, const Overview& overview, const std::string& origin) {
  Markup markup(output);
  BeginPage(markup, TitleOf(overview, origin));
  WriteFactList(markup, overview);
  WriteSearch(markup);
  BeginMain(markup);
  WriteMachine(markup, overview, "");
  EndPage(markup, origin);
}

}  // namespace pciinfo
