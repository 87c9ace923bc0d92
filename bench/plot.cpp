// SPDX-License-Identifier: Apache-2.0
#include "bench/plot.h"

#include <fmt/format.h>

#include <cmath>
#include <iterator>

namespace bench {
namespace {

struct Line {
  const char* label;
  const char* measure;
  const char* colour;
};

constexpr Line kLines[] = {
    {"hwinfo --pci", "hwinfo --pci wall", "#7f7f7f"},
    {"lshw -json", "lshw -json wall", "#8c564b"},
    {"pciinfo, all seven classes", "all wall", "#d62728"},
    {"lspci, -xxxx and -vvv together", "three listings wall", "#ff7f0e"},
    {"pciinfo, devices and bridges", "list wall", "#1f77b4"},
    {"lspci", "lspci wall", "#2ca02c"},
    {"pciinfo's own CPU time, devices and bridges", "own cpu", "#9467bd"},
};

constexpr double kLeft = 80, kRight = 560, kTop = 30, kBottom = 430;
constexpr double kFewest = 48, kMost = 24000;
constexpr double kMarks[] = {0.001, 0.01, 0.1, 1, 10, 100};  // seconds
constexpr double kShortest = kMarks[0], kLongest = std::end(kMarks)[-1];

double Share(double value, double low, double high) {
  return std::log(value / low) / std::log(high / low);
}
double X(double functions) { return kLeft + (kRight - kLeft) * Share(functions, kFewest, kMost); }
double Y(double seconds) {
  return kBottom - (kBottom - kTop) * Share(seconds, kShortest, kLongest);
}

std::string Text(double x, double y, const char* anchor, const std::string& text) {
  return fmt::format("<text x=\"{:.1f}\" y=\"{:.1f}\" text-anchor=\"{}\">{}</text>\n", x, y, anchor,
                     text);
}

std::string Stroke(double x1, double y1, double x2, double y2, const char* colour) {
  return fmt::format(
      "<line x1=\"{:.1f}\" y1=\"{:.1f}\" x2=\"{:.1f}\" y2=\"{:.1f}\" stroke=\"{}\"/>\n", x1, y1, x2,
      y2, colour);
}

std::string Axes(const Results& results) {
  std::string svg;
  for (const double seconds : kMarks) {
    svg += Stroke(kLeft, Y(seconds), kRight, Y(seconds), "#dddddd");
    svg += Text(
        kLeft - 8, Y(seconds) + 4, "end",
        seconds < 1 ? fmt::format("{:.0f} ms", seconds * 1000) : fmt::format("{:.0f} s", seconds));
  }
  for (const auto& [functions, measures] : results) {
    svg += Stroke(X(functions), kTop, X(functions), kBottom, "#dddddd");
    svg += Text(X(functions), kBottom + 18, "middle", std::to_string(functions));
  }
  svg += Stroke(kLeft, kBottom, kRight, kBottom, "black");
  svg += Stroke(kLeft, kTop, kLeft, kBottom, "black");
  return svg + Text((kLeft + kRight) / 2, kBottom + 40, "middle", "PCI functions") +
         Text(kLeft, kTop - 12, "middle", "time");
}

// The line with its points, and its entry in the key.
std::string Draw(const Results& results, const Line& line, double keyY) {
  std::string points;
  std::string dots;
  for (const auto& [functions, measures] : results) {
    const auto found = measures.find(line.measure);
    if (found == measures.end()) continue;
    const double x = X(functions);
    const double y = Y(Least(found->second));
    points += fmt::format("{:.1f},{:.1f} ", x, y);
    dots += fmt::format("<circle cx=\"{:.1f}\" cy=\"{:.1f}\" r=\"3\" fill=\"{}\"/>\n", x, y,
                        line.colour);
  }
  if (points.empty()) return "";
  return fmt::format("<polyline points=\"{}\" fill=\"none\" stroke=\"{}\" stroke-width=\"2\"/>\n",
                     points, line.colour) +
         dots + Stroke(kRight + 20, keyY - 4, kRight + 40, keyY - 4, line.colour) +
         Text(kRight + 46, keyY, "start", line.label);
}

}  // namespace

std::string MakePlot(const Results& results) {
  std::string svg =
      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"900\" height=\"490\" "
      "font-family=\"sans-serif\" font-size=\"12\">\n"
      "<rect width=\"900\" height=\"490\" fill=\"white\"/>\n";
  svg += Axes(results);
  double keyY = kTop + 10;
  for (const Line& line : kLines) {
    const std::string drawn = Draw(results, line, keyY);
    if (!drawn.empty()) keyY += 22;
    svg += drawn;
  }
  return svg + "</svg>\n";
}

}  // namespace bench
