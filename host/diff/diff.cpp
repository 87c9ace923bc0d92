#include "host/diff/diff.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <utility>

#include "host/console/text.h"
#include "host/diff/diff_items.h"
#include "host/diff/diff_words.h"
#include "host/formats/value_text.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;

constexpr const char* kCard = "Card";
constexpr const char* kSlot = "Slot";
constexpr const char* kFunctions = "Functions";
constexpr const char* kLinkWidth = "LinkWidth";
constexpr const char* kLinkSpeed = "LinkSpeed";

TCIMValue Texts(const std::vector<std::string>& texts) {
  TCIMValue::TArray elements;
  for (const std::string& text : texts) elements.emplace_back(text);
  const auto count = static_cast<std::uint32_t>(elements.size());
  return TCIMValue(TCIMValue::TCIMType(TCIMValue::TCIMType::kString), count, std::move(elements));
}

/// Returns the value of a property; null if the class does not declare it.
TCIMValue ValueOf(const DiffItem& item, const std::string& name) {
  const auto& properties = item.cimClass->GetSchema().properties;
  for (std::size_t i = 0; i < properties.size(); ++i) {
    if (properties[i].name == name) return item.instance->GetValue(i);
  }
  return {};
}

std::set<std::string> PropertiesOf(const DiffPair& pair) {
  std::set<std::string> names;
  for (const DiffItem* item : {pair.before, pair.after}) {
    for (const auto& property : item->cimClass->GetSchema().properties) names.insert(property.name);
  }
  return names;
}

/// Whether a property is a "DeviceID" that only repeats "Location".
bool RepeatsLocation(const DiffPair& pair, const std::string& name) {
  return name == "DeviceID" && ValueOf(*pair.before, name) == ValueOf(*pair.before, "Location") &&
         ValueOf(*pair.after, name) == ValueOf(*pair.after, "Location");
}

bool IsOfSystem(const std::string& name) {
  return name == "SystemName" || name == "SystemCreationClassName";
}

std::string IdsText(const DiffItem& item) {
  const auto number = [&](const char* name) -> std::string {
    const TCIMValue value = ValueOf(item, name);
    return value.IsNull() ? "" : fmt::format("{:04x}", static_cast<unsigned>(value));
  };
  const std::string ids = IdText(item.function);
  const std::string vendor = number("SubsystemVendorID");
  const std::string device = number("SubsystemID");
  return vendor.empty() && device.empty() ? ids : fmt::format("{} ({}:{})", ids, vendor, device);
}

class Comparison final {
 public:
  Comparison(const DiffInput& before, const DiffInput& after, const std::set<std::string>& ignored)
      : before_(before), after_(after), ignored_(ignored) {}

  DiffResult Run() {
    SortClasses();
    CompareSlots();
    CompareFunctions();
    CompareOthers("QZMSG_SystemBoard", "DeviceID", "board");
    CompareOthers("QZMSG_PCIRawData", "Command", "listing");
    CompareDangling("QZMSG_DeviceInSlot");
    CompareDangling("QZMSG_OnBoardDevice");
    return std::move(result_);
  }

 private:
  bool IsCompared(const std::string& name) const { return compared_.count(name) != 0; }

  static bool Covers(const DiffInput& input, const vtq::Class& cimClass) {
    return input.hasAllClasses || !cimClass.GetInstances().empty();
  }

  void SortClasses() {
    for (const auto& cimClass : before_.repository->GetClasses()) {
      const std::string& name = cimClass->GetSchema().name;
      const vtq::Class& other = *after_.repository->Find(name);
      const bool isInOld = Covers(before_, *cimClass);
      const bool isInNew = Covers(after_, other);
      if (isInOld && isInNew) compared_.insert(name);
      if (isInOld == isInNew) comparableClasses_.insert(name);
      if (isInOld && !isInNew && !cimClass->GetInstances().empty()) result_.onlyOld.push_back(name);
      if (!isInOld && isInNew && !other.GetInstances().empty()) result_.onlyNew.push_back(name);
    }
    result_.hasCompared = !compared_.empty();
  }

  void Add(Change change) {
    if (ignored_.count(change.property) == 0) result_.changes.push_back(std::move(change));
  }

  static Change ChangeOf(const DiffPair& pair, const std::string& subject) {
    Change change;
    change.subject = subject;
    for (const DiffItem* item : {pair.before, pair.after}) {
      if (item != nullptr) change.label = item->label;  // the new label if there are both
    }
    if (subject == "system") change.label = subject;
    if (pair.before != nullptr) change.from = pair.before->instance;
    if (pair.after != nullptr) change.to = pair.after->instance;
    return change;
  }

  void AddWholeInstance(const DiffPair& pair, const std::string& subject,
                        const std::string& where = "") {
    Change change = ChangeOf(pair, subject);
    change.op = pair.before == nullptr ? Change::Op::kAdd : Change::Op::kRemove;
    change.text = (pair.before == nullptr ? "added" : "removed") + where;
    Add(std::move(change));
  }

  void AddValue(const DiffPair& pair, const std::string& subject, const std::string& property,
                TCIMValue before, TCIMValue after, const std::string& text) {
    Change change = ChangeOf(pair, subject);
    change.op = property == kSlot ? Change::Op::kMove : Change::Op::kReplace;
    change.property = property;
    change.oldValue = std::move(before);
    change.newValue = std::move(after);
    change.text = text;
    Add(std::move(change));
  }

  void CompareProperties(const DiffPair& pair, const std::string& subject) {
    for (const std::string& name : PropertiesOf(pair)) {
      const TCIMValue before = ValueOf(*pair.before, name);
      const TCIMValue after = ValueOf(*pair.after, name);
      if (before == after || RepeatsLocation(pair, name)) continue;
      const std::string text = ChangeText(name, before, after);
      if (!IsOfSystem(name)) {
        AddValue(pair, subject, name, before, after, text);
      } else if (reportedSystemChanges_.insert(text).second) {
        // Only once, because all instances of a system have the same name and class.
        AddValue(pair, "system", name, before, after, text);
      }
    }
  }

  void ComparePairs(const DiffItems& before, const DiffItems& after, const std::string& subject) {
    for (const DiffPair& pair : PairItems(before, after)) {
      if (pair.before == nullptr || pair.after == nullptr) {
        AddWholeInstance(pair, subject);
      } else {
        CompareProperties(pair, subject);
      }
    }
  }

  void CompareOthers(const char* className, const char* key, const char* subject) {
    if (!IsCompared(className)) return;
    ComparePairs(ItemsOf(*before_.repository, className, key),
                 ItemsOf(*after_.repository, className, key), subject);
  }

  void CompareDangling(const char* className) {
    if (!IsCompared(className)) return;
    ComparePairs(DanglingItems(*before_.repository, className, comparableClasses_),
                 DanglingItems(*after_.repository, className, comparableClasses_), "association");
  }

  void CompareSlots() {
    if (!IsCompared("QZMSG_SystemSlot")) return;
    oldSlots_ = SlotItems(*before_.repository);
    newSlots_ = SlotItems(*after_.repository);
    for (const DiffPair& pair : PairItems(oldSlots_, newSlots_)) {
      const std::string name = std::to_string(++slotCount_);
      if (pair.before != nullptr) Name(*pair.before, name, oldNames_, oldLabels_);
      if (pair.after != nullptr) Name(*pair.after, name, newNames_, newLabels_);
      if (pair.before == nullptr || pair.after == nullptr) {
        AddWholeInstance(pair, "slot");
      } else {
        CompareContents(pair);
        CompareProperties(pair, "slot");
      }
    }
  }

  using Names = std::map<std::string, std::string>;

  static void Name(const DiffItem& slot, const std::string& name, Names& names, Names& labels) {
    names[slot.instance->GetPath()] = name;
    labels[slot.instance->GetPath()] = slot.label;
  }

  static std::string Addresses(const vtq::Namespace& repository, const DiffItem& slot) {
    std::vector<std::string> addresses;
    for (const char* name : {"QZMSG_PCIDevice", "QZMSG_PCIBridge"}) {
      const auto cimClass = repository.Find(name);
      for (const std::string& path : slot.functions) {
        const auto instance = cimClass->Find(path);
        if (instance != nullptr)
          addresses.push_back(AddressText(ReadFunction(*cimClass, *instance)));
      }
    }
    std::sort(addresses.begin(), addresses.end());
    return addresses.empty() ? "unpublished functions"
                             : fmt::format("{}", fmt::join(addresses, ", "));
  }

  void CompareContents(const DiffPair& pair) {
    const bool wasEmpty = pair.before->functions.empty();
    if (!IsCompared("QZMSG_DeviceInSlot") || wasEmpty == pair.after->functions.empty()) return;
    AddValue(pair, "slot", kFunctions, Texts(pair.before->functions), Texts(pair.after->functions),
             wasEmpty
                 ? "now holds " + Addresses(*after_.repository, *pair.after)
                 : fmt::format("now empty (was {})", Addresses(*before_.repository, *pair.before)));
  }

  void CompareFunctions() {
    std::set<std::string> classes;
    for (const char* name : {"QZMSG_PCIDevice", "QZMSG_PCIBridge"}) {
      if (IsCompared(name)) classes.insert(name);
    }
    const DiffItems before = FunctionItems(*before_.repository, classes, oldNames_);
    const DiffItems after = FunctionItems(*after_.repository, classes, newNames_);
    for (const DiffPair& pair : PairItems(before, after)) {
      if (pair.before == nullptr) {
        AddWholeInstance(pair, "function", WhereText(*pair.after, newLabels_));
      } else if (pair.after == nullptr) {
        AddWholeInstance(pair, "function", WhereText(*pair.before, oldLabels_));
      } else {
        CompareCard(pair);
        ComparePlace(pair);
        CompareLink(pair);
        CompareProperties(pair, "function");
      }
    }
  }

  void CompareCard(const DiffPair& pair) {
    const std::string before = IdsText(*pair.before);
    const std::string after = IdsText(*pair.after);
    if (before == after) return;
    AddValue(pair, "function", kCard, TCIMValue(before), TCIMValue(after),
             fmt::format("replaced by another card: {} -> {}", before, after));
  }

  static std::vector<std::string> SlotLabels(const DiffItem& function, const Names& labels) {
    std::vector<std::string> texts;
    for (const std::string& slot : function.slots) {
      const auto label = labels.find(slot);
      texts.push_back("slot " + (label == labels.end() ? Printable(slot) : label->second));
    }
    return texts;
  }

  /// The slots or board that hold a function, in words; empty if unknown.
  static std::string PlaceText(const DiffItem& function, const Names& labels) {
    std::vector<std::string> texts = SlotLabels(function, labels);
    if (function.isOnBoard) texts.emplace_back("the board");
    return fmt::format("{}", fmt::join(texts, " and "));
  }

  static std::string WhereText(const DiffItem& function, const Names& labels) {
    const std::string place = function.slots.empty() ? "" : PlaceText(function, labels);
    return place.empty() ? "" : " (" + place + ")";
  }

  std::set<std::string> Places(const DiffItem& function, const Names& names) const {
    std::set<std::string> places;
    if (IsCompared("QZMSG_OnBoardDevice") && function.isOnBoard) places.insert("board");
    if (!IsCompared("QZMSG_DeviceInSlot")) return places;
    for (const std::string& slot : function.slots) {
      const auto name = names.find(slot);
      places.insert(name == names.end() ? slot : name->second);
    }
    return places;
  }

  void ComparePlace(const DiffPair& pair) {
    if (Places(*pair.before, oldNames_) == Places(*pair.after, newNames_)) return;
    const std::string before = PlaceText(*pair.before, oldLabels_);
    const std::string after = PlaceText(*pair.after, newLabels_);
    const auto shown = [](const std::string& place) {
      return place.empty() ? "an unknown place" : place;
    };
    AddValue(pair, "function", kSlot, Texts(SlotLabels(*pair.before, oldLabels_)),
             Texts(SlotLabels(*pair.after, newLabels_)),
             fmt::format("card moved from {} to {}", shown(before), shown(after)));
  }

  void CompareLink(const DiffPair& pair) {
    if (!IsCompared("QZMSG_PCIRawData") || !pair.before->link || !pair.after->link) return;
    const LinkStatus& before = *pair.before->link;
    const LinkStatus& after = *pair.after->link;
    if (before.width != after.width) {
      const bool isNarrower = after.width < before.width;
      AddValue(pair, "function", kLinkWidth, TCIMValue(before.width), TCIMValue(after.width),
               fmt::format("link {}: x{} -> x{}", isNarrower ? "narrower" : "wider", before.width,
                           after.width));
    }
    if (before.speed == after.speed) return;
    const bool isSlower = SpeedNumber(after.speed) < SpeedNumber(before.speed);
    AddValue(pair, "function", kLinkSpeed, TCIMValue(before.speed), TCIMValue(after.speed),
             fmt::format("link {}: {} -> {}", isSlower ? "slower" : "faster",
                         Printable(before.speed), Printable(after.speed)));
  }

  const DiffInput& before_;
  const DiffInput& after_;
  const std::set<std::string>& ignored_;
  DiffResult result_;
  std::set<std::string> compared_;
  std::set<std::string> comparableClasses_;
  std::set<std::string> reportedSystemChanges_;
  DiffItems oldSlots_;
  DiffItems newSlots_;
  // Names and labels of slots, by path.
  Names oldNames_;
  Names newNames_;
  Names oldLabels_;
  Names newLabels_;
  int slotCount_ = 0;
};

}  // namespace

const std::vector<std::string>& DerivedProperties() {
  static const std::vector<std::string> names = {kCard, kSlot, kFunctions, kLinkWidth, kLinkSpeed};
  return names;
}

DiffResult Compare(const DiffInput& before, const DiffInput& after,
                   const std::set<std::string>& ignored) {
  return Comparison(before, after, ignored).Run();
}

}  // namespace pciinfo
