#include "app/progressdrawing.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <fmt/format.h>

namespace app {

namespace {

constexpr int kNarrowestBar = 8;
constexpr int kWidestBar = 32;
// A shorter time says nothing about the speed.
constexpr double kSpeedKnownAfter = 0.2;

/// 1234567 as "1,234,567".
std::string Grouped(std::int64_t count) {
  std::string digits = std::to_string(count);
  for (std::size_t i = digits.size(); i > 3; i -= 3) digits.insert(i - 3, 1, ',');
  return digits;
}

/// 1234567 as "1.2M".
std::string Short(double count) {
  if (count < 999.5) return fmt::format("{:.0f}", count);
  if (count < 999.95e3) return fmt::format("{:.1f}k", count / 1e3);
  return fmt::format("{:.1f}M", count / 1e6);
}

std::string Duration(double seconds) {
  const auto whole = static_cast<std::int64_t>(std::round(seconds));
  if (whole < 3600) return fmt::format("{}:{:02}", whole / 60, whole % 60);
  return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
}

}  // namespace

void ProgressDrawing::BeginStage(const std::string& name, double now) {
  if (!fRunBegan) fRunBegan = now;
  fStage = name;
  fStageBegan = now;
  fProgress = {};
}

std::string ProgressDrawing::Bar(int columns) const {
  const int inside = fUtf8 ? columns : columns - 2;
  const int filled = std::clamp(static_cast<int>(fProgress.share * inside), 0, inside);
  std::string bar;
  for (int i = 0; i < inside; ++i) bar += fUtf8 ? (i < filled ? "█" : "░") : (i < filled ? "#" : ".");
  return fUtf8 ? bar : "[" + bar + "]";
}

std::optional<std::string> ProgressDrawing::Line(double now, int columns) const {
  if (!fRunBegan || now - *fRunBegan < kShownAfter) return std::nullopt;
  const double spent = now - fStageBegan;
  const bool shareKnown = fProgress.share > 0.0;
  const bool speedKnown = spent >= kSpeedKnownAfter;

  // In the order in which they are given up for want of room, the last one first; shown in the order of `place`.
  struct Part {
    int place;
    std::string text;
  };
  std::vector<Part> parts;
  if (shareKnown) parts.push_back({1, fmt::format("{:3.0f} %", std::floor(100.0 * std::min(fProgress.share, 1.0)))});
  if (shareKnown && speedKnown)
    parts.push_back({4, Duration(spent * std::max(0.0, 1.0 - fProgress.share) / fProgress.share) + " left"});
  if (fProgress.cases > 0) parts.push_back({2, Grouped(fProgress.cases) + (fProgress.cases == 1 ? " case" : " cases")});
  if (fProgress.cases > 0 && speedKnown)
    parts.push_back({3, Short(static_cast<double>(fProgress.cases) / spent) + "/s"});

  constexpr const char* kBetween = "  ";
  constexpr int kBetweenColumns = 2;
  int room = columns - static_cast<int>(fStage.size());
  if (room < 0) return fStage.substr(0, static_cast<std::size_t>(std::max(columns, 0)));
  std::vector<Part> shown;
  for (Part& part : parts) {
    const int needed = kBetweenColumns + static_cast<int>(part.text.size());
    if (needed > room) break;
    room -= needed;
    shown.push_back(std::move(part));
  }
  std::sort(shown.begin(), shown.end(), [](const Part& a, const Part& b) { return a.place < b.place; });

  std::string line = fStage;
  const int barColumns = std::min(room - kBetweenColumns, kWidestBar);
  if (shareKnown && barColumns >= kNarrowestBar) line += kBetween + Bar(barColumns);
  for (const Part& part : shown) line += kBetween + part.text;
  return line;
}

}  // namespace app
