// Where the time of a run went.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace app {

/// The parts of a run. Commands are read and prepared in Pass.
enum class Stage : std::size_t { Read, Pass, Percentiles, Tables, Write };
inline constexpr std::size_t kStages = 5;

/// Seconds.
struct Seconds {
  double wall = 0.0;
  double cpu = 0.0;  // of all threads
};

/// The wall clock, from any beginning, and the processor time of the process since its start.
Seconds SecondsNow();
/// The most memory that the process held so far, in bytes; 0 where the system does not tell.
std::int64_t PeakMemory();

/// Stages follow one another; a stage that is begun again adds to its time.
class Timings {
 public:
  explicit Timings(std::function<Seconds()> clock = SecondsNow) : fClock(std::move(clock)), fStart(fClock()) {}

  /// Ends the present stage and begins this one.
  void Begin(Stage stage);
  /// Ends the present stage and the run.
  void End();

  /// One line of JSON: {"read": {"wall": s, "cpu": s}, ..., "total": {...}, "memory": bytes}. REQUIRES: End.
  std::string Json(std::int64_t peakMemory) const;
  /// The same as lines of an aligned table, for people. REQUIRES: End.
  std::string Table(std::int64_t peakMemory) const;

 private:
  void EndStage(const Seconds& now);

  std::function<Seconds()> fClock;
  Seconds fStart;
  Seconds fStageStart;
  std::optional<Stage> fStage;
  std::array<Seconds, kStages> fSpent{};
  Seconds fTotal;
};

}  // namespace app
