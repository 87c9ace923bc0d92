// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/model/slots_model.h"

namespace pciinfo {

/// Selects the functions and slots to show.
class Filter final {
 public:
  /// Keeps everything.
  Filter() = default;

  /// Parses "KEY=VALUE,KEY=VALUE" texts. A function matches a text if it matches all its terms, and
  /// the filter if it matches any text. Throws UsageError, which lists the keys, for invalid texts.
  explicit Filter(const std::vector<std::string>& texts);

  bool IsEmpty() const noexcept { return alternatives_.empty(); }
  /// Returns the texts, joined by " or ".
  const std::string& GetText() const noexcept { return text_; }

  /// Whether a function matches; `slot` is the slot that holds it, null if there is none.
  bool Keeps(const PciFunction& function, const Slot* slot) const;
  /// Whether a slot matches regardless of its functions: a text with only slot terms names it.
  bool Keeps(const Slot& slot) const;

 private:
  struct Term {
    bool isAboutSlot = false;
    std::function<bool(const PciFunction& function, const Slot* slot)> holds;
  };
  using Terms = std::vector<Term>;

  static Terms ReadTerms(const std::string& text);
  static Term ReadTerm(const std::string& text);

  std::string text_;
  std::vector<Terms> alternatives_;
};

/// The keys.
std::vector<std::string> FilterKeys();

/// Returns the keys and their meaning for the help text, one per line.
std::string FilterHelp();

/// Makes a repository of the functions that match the filter, their associations, and the slots
/// that match or that hold one of those functions. Other classes are empty in it. Instances are
/// shared; `repository` must outlive the result.
std::shared_ptr<vtq::Namespace> KeptOf(const vtq::Namespace& repository, const Filter& filter);

}  // namespace pciinfo
