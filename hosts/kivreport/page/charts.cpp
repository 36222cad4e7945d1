#include "hosts/kivreport/page/charts.h"

#include <algorithm>

#include "hosts/kivreport/page/drawing.h"

namespace kivreport {
namespace {

// In the units of the drawing: mission 1 stands at kStep, mission 25 at 25 * kStep.
constexpr int kStep = 24;
constexpr int kChartWidth = (kMissions + 1) * kStep;
constexpr int kChartHeight = 112;
constexpr int kChartGround = 80;   // where the columns stand
constexpr int kRangeLine = 89;     // the line of the range
constexpr int kTallest = 64;       // column
constexpr int kBlock = 12;         // of a student, unless the column became too tall
constexpr int kNumberHeight = 16;  // over a column
constexpr int kLeastBlock = 3;     // one that can still be told from the next

template <class Function>
void ForEachPeopled(const ClassFigures& figures, Function function) {
  for (int mission = 1; mission <= kMissions; ++mission) {
    const size_t count = figures.atMission[static_cast<size_t>(mission - 1)];
    if (count > 0) {
      function(mission, count);
    }
  }
}

std::string ChartInWords(const ClassFigures& figures, const std::string& name, const Words& words) {
  std::string text = words.Filled(Word::kChart, {name});
  const char* gap = "";
  ForEachPeopled(figures, [&](int mission, size_t count) {
    text += gap + words.Filled(Word::kChartAt, {std::to_string(mission), std::to_string(count)});
    gap = ", ";
  });
  return text;
}

// The height of a student in a column.
double BlockOf(size_t tallest) {
  return std::min<double>(kBlock, static_cast<double>(kTallest) / static_cast<double>(tallest));
}

std::string DrawColumns(const ClassFigures& figures, double block) {
  std::string path, numbers;
  ForEachPeopled(figures, [&](int mission, size_t count) {
    const double height = block * static_cast<double>(count);
    path += 'M' + std::to_string(mission * kStep) + ' ' + std::to_string(kChartGround) + "v-" +
            Drawn(height);
    numbers += DrawnText(mission * kStep, kChartGround - height - 4, std::to_string(count));
  });
  const std::string blocks =
      block < kLeastBlock ? "" : " stroke-dasharray=\"" + Drawn(block - 1) + " 1\"";
  return "<path class=\"bars\"" + blocks + " d=\"" + path + "\"/>" + numbers;
}

std::string DrawRange(const ClassFigures& figures) {
  const auto place = [](double mission) {
    return Drawn(kStep * std::clamp<double>(mission, 1, kMissions));
  };
  const std::string line = ' ' + std::to_string(kRangeLine);
  return "<path class=\"span\" d=\"M" + place(figures.least) + line + 'H' + place(figures.most) +
         "\"/><path class=\"middle\" d=\"M" + place(figures.median) + line +
         "m-6 0l6-6 6 6-6 6z\"/>";
}

// Of four shades, by the share of the class.
size_t StripShade(size_t count, size_t known) {
  const size_t percent = count * 100 / known;
  return percent > 50 ? 3 : percent > 25 ? 2 : percent > 10 ? 1 : 0;
}

}  // namespace

std::string AxisDefinition() {
  std::string axis =
      "<svg class=\"unseen\" aria-hidden=\"true\"><defs><g id=\"axis\" class=\"axis\">"
      "<path d=\"M0 " +
      std::to_string(kChartGround) + ".5H" + std::to_string(kChartWidth) + "\"/>";
  for (const int mission : {1, 5, 10, 15, 20, 25}) {
    axis += DrawnText(mission * kStep, kChartHeight - 3, std::to_string(mission));
  }
  return axis + "</g></defs></svg>\n";
}

std::string ColumnChart(const ClassFigures& figures, const std::string& name, const Words& words) {
  const size_t tallest = *std::max_element(figures.atMission.begin(), figures.atMission.end());
  const double block = BlockOf(tallest);
  const double top = kChartGround - block * static_cast<double>(tallest) - kNumberHeight;
  return "<svg class=\"chart\" role=\"img\" viewBox=\"0 " + Drawn(top) + ' ' +
         std::to_string(kChartWidth) + ' ' + Drawn(kChartHeight - top) + "\" aria-label=\"" +
         ChartInWords(figures, name, words) + "\"><use href=\"#axis\"/>" +
         DrawColumns(figures, block) + DrawRange(figures) + "</svg>\n";
}

std::string Strip(const ClassFigures& figures, const std::string& name, const Words& words) {
  std::array<std::string, 4> shades;
  ForEachPeopled(figures, [&](int mission, size_t count) {
    shades[StripShade(count, figures.known)] += 'M' + std::to_string(mission - 1) + " 0h1v1h-1z";
  });
  std::string drawing;
  for (size_t i = 0; i < shades.size(); ++i) {
    if (!shades[i].empty()) {
      drawing += std::string("<path class=\"") + "abcd"[i] + "\" d=\"" + shades[i] + "\"/>";
    }
  }
  const double middle = std::clamp<double>(figures.median, 1, kMissions) - 0.6;
  return "<svg class=\"strip\" role=\"img\" viewBox=\"0 0 25 1\" preserveAspectRatio=\"none\" "
         "aria-label=\"" +
         words.Filled(Word::kStrip, {name, std::to_string(figures.least),
                                     std::to_string(figures.most), words.Half(figures.median)}) +
         "\">" + drawing + "<path class=\"middle\" d=\"M" + Drawn(middle) +
         " 0h.2v1h-.2z\"/></svg>";
}

}  // namespace kivreport
