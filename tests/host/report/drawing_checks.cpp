// SPDX-License-Identifier: Apache-2.0
#include "tests/host/report/drawing_checks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <set>
#include <string>

namespace {

using pciinfo::LineKind;
using pciinfo::PlacedText;
using pciinfo::Rectangle;

constexpr double kRounding = 0.01;

bool Overlap(const Rectangle& one, const Rectangle& other) {
  return one.left < other.Right() - kRounding && other.left < one.Right() - kRounding &&
         one.top < other.Bottom() - kRounding && other.top < one.Bottom() - kRounding;
}

bool IsInside(const Rectangle& inner, const Rectangle& outer) {
  return inner.left >= outer.left - kRounding && inner.Right() <= outer.Right() + kRounding &&
         inner.top >= outer.top - kRounding && inner.Bottom() <= outer.Bottom() + kRounding;
}

Rectangle BandOf(const pciinfo::PlacedLine& line) {
  const double half = line.thickness / 2;
  if (line.left == line.right) {
    return {line.left - half, line.top, line.thickness, line.bottom - line.top};
  }
  return {line.left, line.top - half, line.right - line.left, line.thickness};
}

/// Everything in a panel.
struct Content {
  std::vector<PlacedText> texts;
  std::vector<Rectangle> boxes;
  std::vector<Rectangle> lines;
};

Content ContentOf(const pciinfo::Panel& panel) {
  Content content{panel.texts, {}, {}};
  for (const auto& line : panel.lines) content.lines.push_back(BandOf(line));
  for (const pciinfo::DrawnItem& item : panel.items) {
    content.texts.insert(content.texts.end(), item.texts.begin(), item.texts.end());
    for (const auto& shape : item.shapes) content.boxes.push_back(shape.box);
    for (const auto& line : item.lines) content.lines.push_back(BandOf(line));
  }
  return content;
}

void ExpectReadable(const PlacedText& text, const Content& content) {
  EXPECT_LE(pciinfo::TextWidth(text.text, FontOf(text.kind)), text.box.width + kRounding)
      << text.text;
  for (const Rectangle& box : content.boxes) {
    EXPECT_TRUE(IsInside(text.box, box) || !Overlap(text.box, box)) << text.text;
  }
  for (const Rectangle& line : content.lines) EXPECT_FALSE(Overlap(text.box, line)) << text.text;
}

}  // namespace

void ExpectLegible(const pciinfo::Panel& panel) {
  SCOPED_TRACE(panel.title);
  const Rectangle frame{0, 0, panel.width, panel.height};
  const Content content = ContentOf(panel);
  for (std::size_t i = 0; i < content.texts.size(); ++i) {
    const PlacedText& text = content.texts[i];
    EXPECT_TRUE(IsInside(text.box, frame)) << text.text;
    ExpectReadable(text, content);
    for (std::size_t j = 0; j < i; ++j) {
      EXPECT_FALSE(Overlap(text.box, content.texts[j].box))
          << text.text << " and " << content.texts[j].text;
    }
  }
  for (std::size_t i = 0; i < content.boxes.size(); ++i) {
    const Rectangle& box = content.boxes[i];
    EXPECT_TRUE(IsInside(box, frame));
    for (std::size_t j = 0; j < i; ++j) {
      EXPECT_TRUE(IsInside(box, content.boxes[j]) || !Overlap(box, content.boxes[j]));
    }
  }
}

void ExpectComplete(const std::vector<pciinfo::Panel>& panels,
                    const pciinfo::MachineModel& machine) {
  std::vector<std::size_t> functions;
  std::set<std::size_t> slots;
  for (const pciinfo::Panel& panel : panels) {
    for (const pciinfo::DrawnItem& item : panel.items) {
      functions.insert(functions.end(), item.functions.begin(), item.functions.end());
      slots.insert(item.slots.begin(), item.slots.end());
    }
  }
  std::sort(functions.begin(), functions.end());
  std::vector<std::size_t> expected(machine.functions.size());
  std::iota(expected.begin(), expected.end(), 0U);
  EXPECT_EQ(functions, expected);
  EXPECT_EQ(slots.size(), machine.slots.size());
}
