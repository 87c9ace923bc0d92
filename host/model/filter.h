#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/model/slots_model.h"

namespace pciinfo {

/// Which functions and slots to show.
class Filter final {
 public:
  /// Keeps everything.
  Filter() = default;

  /// Reads "KEY=VALUE,KEY=VALUE" texts: all terms of one hold together, several texts are
  /// alternatives. Throws UsageError, which lists the keys, for what it does not understand.
  explicit Filter(const std::vector<std::string>& texts);

  bool IsEmpty() const noexcept { return alternatives_.empty(); }
  /// Whether a term is about slots: they have to be known.
  bool NeedsSlots() const;

  /// Whether a function is kept; `slot` is the slot that it sits in, null where there is none.
  bool Keeps(const PciFunction& function, const Slot* slot) const;
  /// Whether a slot is kept whatever sits in it: it is named by terms about nothing but slots.
  bool Keeps(const Slot& slot) const;

 private:
  struct Term {
    bool isAboutSlot = false;
    std::function<bool(const PciFunction& function, const Slot* slot)> holds;
  };
  using Terms = std::vector<Term>;

  static Terms ReadTerms(const std::string& text);
  static Term ReadTerm(const std::string& text);

  std::vector<Terms> alternatives_;
};

/// The keys with what they mean, for the help text; one a line.
std::string FilterHelp();

/// A repository of what the filter keeps: the functions that it keeps, their associations, and the
/// slots that it keeps or that hold one of those functions. Of other classes, nothing. Instances
/// are shared; `repository` must outlive the result.
std::shared_ptr<vtq::Namespace> KeptOf(const vtq::Namespace& repository, const Filter& filter);

}  // namespace pciinfo
