// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/report/text_width.h"

namespace pciinfo {

// A drawing of a machine: boxes, lines and texts at their places. All lengths are in pixels; the
// origin is the upper left corner of the panel.

struct Rectangle {
  double left = 0;
  double top = 0;
  double width = 0;
  double height = 0;

  double Right() const { return left + width; }
  double Bottom() const { return top + height; }
};

/// What a text is; it decides the font and the colour.
enum class TextKind {
  kTitle,
  kNote,
  kName,
  kDevice,
  kSlot,
  kRemark,
  kState,
  kAddress,
  kLink,
  kNarrow
};

struct PlacedText {
  TextKind kind = TextKind::kName;
  Rectangle box;  ///< as wide as the text is at most
  std::string text;
};

enum class ShapeKind {
  kCard,
  kDevice,
  kSwitch,
  kGroup,
  kSlot,
  kUnknownSlot,
  kEmptySlot,
  kDoubtfulSlot
};

struct PlacedShape {
  ShapeKind kind = ShapeKind::kCard;
  Rectangle box;
};

enum class LineKind {
  kBus,       ///< connects what is on one bus
  kPossible,  ///< a link with all lanes that both ends allow
  kLink,      ///< a link with the lanes that it uses
  kNarrow     ///< the same of a link that uses fewer lanes than both ends allow
};

/// A vertical or horizontal line.
struct PlacedLine {
  LineKind kind = LineKind::kBus;
  double left = 0;
  double top = 0;
  double right = 0;
  double bottom = 0;
  double thickness = 1;
};

/// Something that a reader can select: a card, a slot, a port.
struct DrawnItem {
  std::string title;                   ///< everything about it in one line
  std::vector<std::size_t> functions;  ///< their places in the machine
  std::vector<std::size_t> slots;      ///< likewise
  std::vector<PlacedLine> lines;
  std::vector<PlacedShape> shapes;  ///< outer ones before those inside them
  std::vector<PlacedText> texts;
};

/// A part of the drawing in a frame of its own, as a root bus.
struct Panel {
  std::string title;
  double width = 0;
  double height = 0;
  std::vector<PlacedLine> lines;
  std::vector<PlacedText> texts;
  std::vector<DrawnItem> items;  ///< outer ones before those inside them
};

/// Returns the font of a text.
Font FontOf(TextKind kind);

}  // namespace pciinfo
