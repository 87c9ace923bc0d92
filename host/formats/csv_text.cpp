// SPDX-License-Identifier: Apache-2.0
#include "host/formats/csv_text.h"

namespace pciinfo {

void WriteInQuotes(Output& output, std::string_view text) {
  for (std::size_t end = text.find('"'); end != std::string_view::npos; end = text.find('"')) {
    output.Write(text.substr(0, end));
    output.Write("\"\"");
    text.remove_prefix(end + 1);
  }
  output.Write(text);
}

void WriteCsvLine(Output& output, const std::vector<std::string>& texts) {
  const char* separator = "";
  for (const std::string& text : texts) {
    output.Write(separator);
    separator = ",";
    if (text.empty()) continue;
    output.Write("\"");
    WriteInQuotes(output, text);
    output.Write("\"");
  }
  output.Write(kCsvLineEnd);
}

}  // namespace pciinfo
