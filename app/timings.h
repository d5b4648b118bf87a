// Where the time of a run went.
#pragma once

#include <map>
#include <string>

namespace app {

/// Stages follow one another; a stage that is begun again adds to its time.
class Timings {
 public:
  Timings();

  /// Ends the present stage and begins this one.
  void Begin(const std::string& stage);
  /// One line of JSON: seconds of wall clock and of processor time a stage, and in total.
  std::string Line();

 private:
  struct Clock {
    double wall = 0.0;
    double cpu = 0.0;  // of all threads
  };
  static Clock Now();
  void EndStage();

  Clock fStart;
  Clock fStageStart;
  std::string fStage;
  std::map<std::string, Clock> fSpent;
};

}  // namespace app
