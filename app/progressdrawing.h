// What the progress line says.
#pragma once

#include <optional>
#include <string>

#include "runtime/machine/progress.h"

namespace app {

/// Draws how far the stages of a run have come. Knows no clock and no terminal: times are seconds on any clock that
/// does not go back, lines have no control characters. One thread.
class ProgressDrawing {
 public:
  /// Work that is done sooner than this is not worth a line. Seconds.
  static constexpr double kShownAfter = 0.5;

  /// `utf8`: whether the bar may be drawn with characters beyond ASCII.
  explicit ProgressDrawing(bool utf8) : fUtf8(utf8) {}

  /// A piece of work begins, of which nothing is done. The first one begins the run.
  void BeginStage(const std::string& name, double now);
  void Advance(const runtime::machine::Progress& progress) { fProgress = progress; }

  /// The line, at most `columns` wide: the stage; of how much is done as much as there is room for (the share, the time
  /// left, the cases, the cases a second, a bar, in this order). What is not known is left out, the share among it
  /// while it is 0. Nothing before kShownAfter, and nothing before the first stage.
  std::optional<std::string> Line(double now, int columns) const;

 private:
  std::string Bar(int columns) const;

  bool fUtf8;
  std::optional<double> fRunBegan;
  double fStageBegan = 0.0;
  std::string fStage;
  runtime::machine::Progress fProgress;
};

}  // namespace app
