// A session binds a dataset, the command text and the report for one run.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "host/common/notification.h"

#include "runtime/data/dataset.h"
#include "runtime/machine/progress.h"
#include "runtime/machine/threadpool.h"
#include "runtime/output/model/report.h"

namespace runtime::output {
class Catalog;
}

namespace runtime::common {

/// Procedures by command name, in upper case.
using ProcedureTable = std::map<std::string, ProcedureEntry>;

struct SessionOptions {
  std::shared_ptr<machine::ThreadPool> pool;  // threads that count; null: the calling one alone
  /// Bytes of memory that the values kept for percentiles may take; what is beyond goes to a temporary file. 0: no
  /// limit.
  std::int64_t percentileMemory = 0;
  /// Of the language of the report's fixed texts; null: English. Messages are always English.
  std::shared_ptr<const output::Catalog> catalog;
  /// Whether what is counted of the items is wanted beside the tables.
  bool sketches = false;
  machine::ProgressListener onProgress;  // of a pass over the cases
  /// Called when a procedure asks for the cases, when the results behind the pass begin to be computed, and when the
  /// first table behind either is opened; for timings. May be empty.
  std::function<void()> onPassBegins;
  std::function<void()> onResultsBegin;
  std::function<void()> onTablesBegin;
};

/// Runs commands over one dataset and gathers what they report. A session may be made on any thread and is used by one
/// thread at a time; several sessions in several threads do not touch each other.
class Session {
 public:
  /// `dataset` may be null: every procedure then finds its active dataset unusable.
  Session(std::shared_ptr<const data::Dataset> dataset, ProcedureTable procedures, SessionOptions options = {});
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// Runs the commands of a text, one behind the other. False when a command stopped with an error; the ones behind it
  /// still ran. An InternalCheckFailure, and any other exception of a procedure, passes on, and no further command
  /// runs.
  bool Run(const std::string& text);

  /// Everything that the commands so far reported, messages and tables, and the facts of the dataset, none when there
  /// is no dataset.
  output::Report& report() { return fReport; }

 private:
  class Messages;
  class Binding;

  /// The facts of the report that depend on what the commands have shown.
  void CompleteFacts();

  std::shared_ptr<const data::Dataset> fDataset;
  ProcedureTable fProcedures;
  SessionOptions fOptions;
  output::Report fReport;
};

}  // namespace runtime::common
