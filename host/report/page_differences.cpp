// SPDX-License-Identifier: Apache-2.0
#include "host/report/page_differences.h"

#include <sstream>

#include "host/report/page_frame.h"

namespace pciinfo {
namespace {

/// What the sign at the beginning of a line means; null for other lines.
const char* WordOf(const std::string& line) {
  if (line.size() < 2 || line[1] != ' ') return nullptr;
  switch (line.front()) {
    case '+':
      return "added";
    case '-':
      return "removed";
    case '~':
      return "changed";
    default:
      return nullptr;
  }
}

bool IsHeading(const std::string& line) {
  return line.empty() || line.starts_with("--- ") || line.starts_with("+++ ");
}

/// Writes lists in a list: a line with its sign, and the indented lines below it.
class DifferenceList final {
 public:
  explicit DifferenceList(Markup& markup) : markup_(markup) {
    markup_.Open("ul", {{"class", "changes"}});
  }
  DifferenceList(const DifferenceList&) = delete;
  DifferenceList& operator=(const DifferenceList&) = delete;
  ~DifferenceList() {
    EndEntry();
    markup_.CloseLine();
  }

  void Add(const std::string& line) {
    const char* const word = WordOf(line);
    if (word == nullptr && isOpen_) return markup_.Element("div", {}, line);
    EndEntry();
    markup_.Open("li", {{"class", word == nullptr ? "" : word}});
    if (word != nullptr) markup_.Element("strong", {}, word);
    markup_.Text(word == nullptr ? line : line.substr(1));
    isOpen_ = true;
  }

 private:
  void EndEntry() {
    if (isOpen_) markup_.CloseLine();
    isOpen_ = false;
  }

  Markup& markup_;
  bool isOpen_ = false;
};

}  // namespace

void WriteDifferences(Markup& markup, const std::string& lines) {
  BeginSection(markup, "differences", "What is different");
  markup.Element("p", {}, "What changed from the first machine to the second.");
  {
    DifferenceList list(markup);
    std::istringstream text(lines);
    for (std::string line; std::getline(text, line);) {
      if (!IsHeading(line)) list.Add(line);
    }
  }
  markup.CloseLine();
}

}  // namespace pciinfo
