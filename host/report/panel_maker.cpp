// SPDX-License-Identifier: Apache-2.0
#include "host/report/panel_maker.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "host/report/item_title.h"

namespace pciinfo {
namespace {

constexpr double kPadding = 14;  // between the frame of a panel and what is in it
constexpr double kTitleHeight = 38;
constexpr double kGap = 8;  // between parts one below the other
constexpr double kLinkLength = 104;
constexpr double kLinkY = 24;
constexpr double kDeviceY = 16;
constexpr double kPortHeight = 62;  // two lines fit below the link
constexpr double kRowHeight = 28;   // of a part in one line
constexpr double kSlotHead = 24;    // the line with the name of a slot
constexpr double kInset = 6;        // between the frame of a slot and the cards in it
constexpr double kIndent = 12;      // of the ports of a switch
constexpr double kCardWidth = 236;  // at least, where it is not behind a switch
constexpr double kLeastCardWidth = 160;
constexpr double kTextInset = 10;  // between the frame of a card and its texts

constexpr double kBusThickness = 2;

double LineHeight(TextKind kind) { return FontOf(kind).size + 4; }

/// Where the line to a part meets it, below its top; an address fits above the line.
double BranchY(PartKind kind) {
  if (kind == PartKind::kPort) return kLinkY;
  return kind == PartKind::kCard ? kDeviceY : kRowHeight / 2;
}

/// More lanes make a thicker line, but not 16 times as thick.
double Thickness(const std::optional<unsigned>& lanes) {
  if (!lanes) return 1.5;
  constexpr std::pair<unsigned, double> kSteps[] = {{16, 12}, {12, 9}, {8, 7}, {4, 4.5}, {2, 3}};
  for (const auto& [least, thickness] : kSteps) {
    if (*lanes >= least) return thickness;
  }
  return 2;
}

/// The place of a part: from the left to the right, below a top.
struct Span {
  double left = 0;
  double right = 0;
  double top = 0;

  double Width() const { return right - left; }
  Span Below(double newTop) const { return {left, right, newTop}; }
  Span Inside() const { return {left + kInset, right - kInset, top}; }
};

void AddText(DrawnItem& item, TextKind kind, const Span& span, const std::string& text) {
  if (text.empty()) return;
  const std::string fitting = ShortenedTo(text, span.Width(), FontOf(kind));
  const double width = TextWidth(fitting, FontOf(kind));
  item.texts.push_back({kind, {span.left, span.top, width, LineHeight(kind)}, fitting});
}

/// Adds a text at the right; returns the room that is left of it.
Span AddTextAtRight(DrawnItem& item, TextKind kind, Span span, const std::string& text) {
  if (text.empty()) return span;
  const std::string fitting = ShortenedTo(text, span.Width() / 2, FontOf(kind));
  const double width = TextWidth(fitting, FontOf(kind));
  item.texts.push_back({kind, {span.right - width, span.top, width, LineHeight(kind)}, fitting});
  span.right -= width + kGap;
  return span;
}

/// Adds a text in at most two lines; returns their bottom.
double AddLines(DrawnItem& item, TextKind kind, Span span, const std::string& text) {
  for (const std::string& line : BrokenInto(2, text, span.Width(), FontOf(kind))) {
    AddText(item, kind, span, line);
    span.top += LineHeight(kind);
  }
  return span.top;
}

void AddShape(DrawnItem& item, ShapeKind kind, const Span& span, double bottom) {
  item.shapes.push_back({kind, {span.left, span.top, span.Width(), bottom - span.top}});
}

ShapeKind SlotShape(const Part& part) {
  if (part.isDoubtful || part.slots.size() > part.count) return ShapeKind::kDoubtfulSlot;
  const bool isUnknown = part.behind.empty() && !part.isEmpty;
  if (!part.isNamed || isUnknown) return ShapeKind::kUnknownSlot;
  return part.isEmpty ? ShapeKind::kEmptySlot : ShapeKind::kSlot;
}

/// The bottom of what is on a bus, and the line that connects it.
struct PlacedBus {
  double bottom = 0;
  PlacedLine line;
};

class PanelMaker final {
 public:
  /// Places parts on a bus, a vertical line from which they branch off.
  PlacedBus PlaceOnBus(const std::vector<Part>& parts, const Span& span) {
    double top = span.top;
    double branch = top;
    for (const Part& part : parts) {
      branch = top + BranchY(part.kind);
      top = PlaceBranch(part, span.Below(top), branch) + kGap;
    }
    const double start = span.top - kGap;
    return {std::max(top - kGap, start),
            {LineKind::kBus, span.left, start, span.left, branch, kBusThickness}};
  }

  /// The same for the bus of a panel.
  double PlaceOnRoot(const std::vector<Part>& parts, const Span& span) {
    const PlacedBus bus = PlaceOnBus(parts, span);
    panel_.lines.push_back(bus.line);
    return bus.bottom;
  }

  /// Places parts one below the other.
  double PlaceStack(const std::vector<Part>& parts, const Span& span) {
    double top = span.top;
    for (const Part& part : parts) top = PlaceInside(part, span.Below(top)) + kGap;
    return parts.empty() ? top : top - kGap;
  }

  Panel Finish(const PartGroup& group, double width, double bottom) {
    panel_.title = group.title;
    panel_.width = width;
    panel_.height = bottom + kPadding;
    DrawnItem head;
    const Span span{kPadding, width - kPadding, kPadding - 2};
    AddText(head, TextKind::kTitle, AddTextAtRight(head, TextKind::kNote, span, group.note),
            group.title);
    panel_.texts = std::move(head.texts);
    return std::move(panel_);
  }

 private:
  std::size_t BeginItem(const Part& part) {
    DrawnItem& item = panel_.items.emplace_back();
    item.title = ItemTitle(part);
    item.functions = part.functions;
    item.slots = part.slots;
    return panel_.items.size() - 1;
  }

  double PlaceBranch(const Part& part, const Span& span, double y) {
    const Span beside{span.left + kLinkLength, span.right, span.top};
    const std::size_t place = panel_.items.size();
    const double bottom = part.kind == PartKind::kPort   ? PlacePort(part, beside)
                          : part.kind == PartKind::kCard ? PlaceDevice(part, beside)
                                                         : PlaceInside(part, beside);
    AddBranch(panel_.items[place], part, {span.left, beside.left, span.top}, y);
    return bottom;
  }

  /// Draws the line to a part, and says above and below it what it is.
  static void AddBranch(DrawnItem& item, const Part& part, const Span& span, double y) {
    if (!part.link) {
      item.lines.push_back({LineKind::kBus, span.left, y, span.right, y, kBusThickness});
    }
    const PartLink link = part.link.value_or(PartLink());
    const double most = std::max({kBusThickness, Thickness(link.width), Thickness(link.possible)});
    if (link.possible) {
      item.lines.push_back({LineKind::kPossible, span.left, y, span.right, y, most});
    }
    if (link.width) {
      item.lines.push_back({link.isNarrow ? LineKind::kNarrow : LineKind::kLink, span.left, y,
                            span.right, y, Thickness(link.width)});
    }
    const Span room{span.left + kGap, span.right - kGap / 2, span.top};
    const bool hasAddress = part.kind == PartKind::kPort || part.kind == PartKind::kCard;
    const double above = y - most / 2 - LineHeight(TextKind::kAddress);
    if (hasAddress) AddText(item, TextKind::kAddress, room.Below(above), BranchText(part));
    AddLinkTexts(item, link, room.Below(y + most / 2 + 1));
  }

  static std::string BranchText(const Part& part) {
    // Of "00:1b.0 and 3 more" the first; the name says how many there are.
    if (part.count == 1) return part.address.substr(0, part.address.find_first_of(", "));
    return part.kind == PartKind::kPort ? fmt::format("{} ports", part.count) : "";
  }

  static void AddLinkTexts(DrawnItem& item, const PartLink& link, const Span& room) {
    AddText(item, link.isNarrow ? TextKind::kNarrow : TextKind::kLink, room, link.widthText);
    const double next = link.widthText.empty() ? 0 : LineHeight(TextKind::kLink);
    AddText(item, TextKind::kLink, room.Below(room.top + next), link.speedText);
  }

  double PlacePort(const Part& part, const Span& span) {
    const std::size_t place = BeginItem(part);
    const double bottom =
        part.slot.empty() ? PlaceContent(place, part, span) : PlaceSlot(place, part, span);
    return std::max(bottom, span.top + kPortHeight);
  }

  double PlaceInside(const Part& part, const Span& span) {
    switch (part.kind) {
      case PartKind::kSwitch:
        return PlaceSwitch(part, span);
      case PartKind::kGroup:
        return PlaceRow(part, ShapeKind::kGroup, TextKind::kNote, span);
      case PartKind::kSlot:
        return PlaceSlot(BeginItem(part), part, span);
      default:
        return PlaceCard(BeginItem(part), part, span);
    }
  }

  /// A card alone belongs to the item of its port and slot; others are items of their own.
  double PlaceContent(std::size_t place, const Part& part, const Span& span) {
    const bool isAlone = part.behind.size() == 1 && part.behind.front().kind == PartKind::kCard;
    if (!isAlone) return PlaceStack(part.behind, span);
    const Part& card = part.behind.front();
    if (part.kind == PartKind::kPort) {
      std::vector<std::size_t>& functions = panel_.items[place].functions;
      functions.insert(functions.begin(), card.functions.begin(), card.functions.end());
    }
    return PlaceCard(place, card, span);
  }

  double PlaceSlot(std::size_t place, const Part& part, const Span& span) {
    const Span head{span.left + kTextInset, span.right - kTextInset, span.top + 5};
    DrawnItem& item = panel_.items[place];
    item.shapes.push_back({SlotShape(part), {}});
    AddText(item, TextKind::kSlot, AddTextAtRight(item, TextKind::kRemark, head, part.remark),
            part.slot);
    double bottom = span.top + kSlotHead;
    if (part.behind.empty()) {
      AddText(item, TextKind::kState, head.Below(bottom), part.state);
      bottom += LineHeight(TextKind::kState);
    } else {
      bottom = PlaceContent(place, part, span.Inside().Below(bottom));
    }
    bottom += kInset;
    panel_.items[place].shapes.front().box = {span.left, span.top, span.Width(), bottom - span.top};
    return bottom;
  }

  double PlaceCard(std::size_t place, const Part& part, const Span& span) {
    DrawnItem& item = panel_.items[place];
    const std::size_t shape = item.shapes.size();
    item.shapes.push_back({ShapeKind::kCard, {}});
    Span line{span.left + kTextInset, span.right - kTextInset, span.top + kInset};
    line.top = AddLines(item, TextKind::kName, line, CountedName(part));
    AddText(item, TextKind::kAddress, line, part.address);
    const double bottom = line.top + LineHeight(TextKind::kAddress) + kInset;
    item.shapes[shape].box = {span.left, span.top, span.Width(), bottom - span.top};
    return bottom;
  }

  double PlaceDevice(const Part& part, const Span& span) {
    DrawnItem& item = panel_.items[BeginItem(part)];
    Span line{span.left + kTextInset, span.right - kTextInset, span.top + kInset};
    const double bottom = AddLines(item, TextKind::kDevice, line, CountedName(part)) + kInset;
    AddShape(item, ShapeKind::kDevice, span, bottom);
    return bottom;
  }

  double PlaceRow(const Part& part, ShapeKind shape, TextKind text, const Span& span) {
    DrawnItem& item = panel_.items[BeginItem(part)];
    AddShape(item, shape, span, span.top + kRowHeight);
    const double top = span.top + (kRowHeight - LineHeight(text)) / 2;
    AddText(item, text, {span.left + kTextInset, span.right - kTextInset, top}, CountedName(part));
    return span.top + kRowHeight;
  }

  double PlaceSwitch(const Part& part, const Span& span) {
    DrawnItem& item = panel_.items[BeginItem(part)];
    AddShape(item, ShapeKind::kSwitch, span, span.top + kRowHeight);
    Span line{span.left + kTextInset, span.right - kTextInset, span.top};
    line.top += (kRowHeight - LineHeight(TextKind::kDevice)) / 2;
    const std::string address = part.count == 1 ? part.address : "";
    line = AddTextAtRight(item, TextKind::kAddress, line, address);
    AddText(item, TextKind::kDevice, line, CountedName(part));
    const std::size_t place = panel_.items.size() - 1;
    const PlacedBus bus =
        PlaceOnBus(part.behind, {span.left + kIndent, span.right, span.top + kRowHeight + kGap});
    if (!part.behind.empty()) panel_.items[place].lines.push_back(bus.line);
    return bus.bottom;
  }

  Panel panel_;
};

double WidthOf(const Part& part, double cardWidth);

double WidestOf(const std::vector<Part>& parts, double cardWidth) {
  double width = cardWidth;
  for (const Part& part : parts) width = std::max(width, WidthOf(part, cardWidth));
  return width;
}

/// Cards behind switches may be narrower, so that panels do not become too wide.
double WidthOf(const Part& part, double cardWidth) {
  constexpr double kLess = 50;
  const bool isSwitch = part.kind == PartKind::kSwitch;
  if (isSwitch) cardWidth = std::max(cardWidth - kLess, kLeastCardWidth);
  double inside = WidestOf(part.behind, cardWidth);
  if (isSwitch) inside += kIndent + kLinkLength;
  return part.slot.empty() ? inside : inside + 2 * kInset;
}

bool IsWithoutBus(const std::vector<Part>& parts) {
  return std::all_of(parts.begin(), parts.end(), [](const Part& part) {
    return part.kind == PartKind::kGroup ||
           (part.kind == PartKind::kSlot && part.functions.empty());
  });
}

}  // namespace

double PanelWidth(const std::vector<Part>& parts) {
  return 2 * kPadding + kLinkLength + WidestOf(parts, kCardWidth);
}

double PartHeight(const Part& part, double panelWidth) {
  return PanelMaker().PlaceOnRoot({part}, {kPadding, panelWidth - kPadding, 0}) + kGap;
}

Panel MakePanel(const PartGroup& group, double width) {
  PanelMaker maker;
  const Span span{kPadding, width - kPadding, kTitleHeight};
  const double bottom = IsWithoutBus(group.parts) ? maker.PlaceStack(group.parts, span)
                                                  : maker.PlaceOnRoot(group.parts, span);
  return maker.Finish(group, width, bottom);
}

}  // namespace pciinfo
