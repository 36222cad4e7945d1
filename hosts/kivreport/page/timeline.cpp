#include "hosts/kivreport/page/timeline.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include "hosts/kivreport/page/drawing.h"
#include "hosts/kivreport/page/markup.h"

namespace kivreport {
namespace {

struct Frame {
  double left, right, top, bottom;
};
constexpr Frame kChart{24, 600, 20, 110};
constexpr double kValueHeight = 20;  // over a point
constexpr Frame kSmall{3, 97, 3, 17};

struct Point {
  size_t at;  // of the report's times
  double mission;
};

// Days since some day; times that are none fall on the first.
double DayNumber(const std::string& time) {
  int year = 1970;
  unsigned month = 1, day = 1;
  std::sscanf(time.c_str(), "%4d-%2u-%2u", &year, &month, &day);
  const std::chrono::sys_days days =
      std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day);
  return static_cast<double>(days.time_since_epoch().count());
}

class Line {
 public:
  Line(const Report& report, std::vector<Point> points, const Frame& frame)
      : report(report),
        points(std::move(points)),
        frame(frame),
        first(DayNumber(report.times.front())),
        days(std::max(DayNumber(report.times.back()) - first, 1.0)) {}

  double X(const Point& point) const {
    const double share = (DayNumber(report.times[point.at]) - first) / days;
    return frame.left + share * (frame.right - frame.left);
  }

  double Y(const Point& point) const {
    const double share = (std::clamp<double>(point.mission, 1, kMissions) - 1) / (kMissions - 1);
    return frame.bottom - share * (frame.bottom - frame.top);
  }

  std::string Path() const {
    std::string path;
    for (const Point& point : points) {
      path += (path.empty() ? "M" : "L") + Drawn(X(point)) + ' ' + Drawn(Y(point));
    }
    return "<path class=\"line\" d=\"" + path + "\"/>";
  }

  // Each a stroke of no length, which the line's round ends make a dot.
  std::string Dots() const {
    std::string path;
    for (const Point& point : points) {
      path += 'M' + Drawn(X(point)) + ' ' + Drawn(Y(point)) + "h0";
    }
    return "<path class=\"dots\" d=\"" + path + "\"/>";
  }

  double Top() const {
    double top = frame.bottom;
    for (const Point& point : points) {
      top = std::min(top, Y(point));
    }
    return top;
  }

  const std::vector<Point>& Points() const { return points; }

 private:
  const Report& report;
  const std::vector<Point> points;
  const Frame& frame;
  const double first, days;
};

std::string PointsInWords(const Report& report, const std::vector<Point>& points,
                          const Words& words) {
  std::string text;
  for (const Point& point : points) {
    text += (text.empty() ? "" : ", ") + words.Date(Escaped(report.times[point.at])) + ": " +
            words.Half(point.mission);
  }
  return text;
}

// Over each point, unless there are too many to be read.
std::string DrawValues(const Line& line, const Words& words) {
  constexpr size_t kReadable = 16;
  std::string values;
  if (line.Points().size() <= kReadable) {
    for (const Point& point : line.Points()) {
      values += DrawnText(line.X(point), line.Y(point) - 8, words.Half(point.mission));
    }
  }
  return values;
}

// The first and the last day, at the ends.
std::string DrawDays(const Report& report, const Words& words) {
  const auto day = [&](const std::string& time, const char* end, double x) {
    return std::string("<text class=\"") + end + "\" x=\"" + Drawn(x) + "\" y=\"126\">" +
           words.Date(Escaped(time)) + "</text>";
  };
  return day(report.times.front(), "first", 0) + day(report.times.back(), "last", 624);
}

}  // namespace

std::string MedianTimeline(const Report& report, const Class& group, const std::string& name,
                           const Words& words) {
  if (group.history.size() < 2) {
    return "";
  }
  std::vector<Point> points;
  for (const MedianPoint& point : group.history) {
    points.push_back({point.at, point.median});
  }
  const Line line(report, points, kChart);
  const double top = line.Top() - kValueHeight;
  return "<h4>" + std::string(words[Word::kTimeline]) +
         "</h4>\n<svg class=\"chart\" role=\"img\" viewBox=\"0 " + Drawn(top) + " 624 " +
         Drawn(130 - top) + "\" aria-label=\"" + words.Filled(Word::kTimelineOf, {name}) +
         PointsInWords(report, points, words) + "\"><path class=\"ground\" d=\"M0 110.5H624\"/>" +
         line.Path() + line.Dots() + DrawValues(line, words) + DrawDays(report, words) + "</svg>\n";
}

std::string MissionLine(const Report& report, const Student& student, const Words& words) {
  std::vector<Point> points;
  for (const MissionPoint& point : student.history) {
    points.push_back({point.at, static_cast<double>(point.mission)});
  }
  if (points.empty()) {
    return "";
  }
  const Line line(report, points, kSmall);
  return "<svg class=\"small\" role=\"img\" viewBox=\"0 0 100 20\" aria-label=\"" +
         PointsInWords(report, points, words) + "\">" + line.Path() + line.Dots() + "</svg>";
}

}  // namespace kivreport
