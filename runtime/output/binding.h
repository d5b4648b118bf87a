// What the output library is bound to on the calling thread. Set by the session for one run.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "runtime/output/model/report.h"

class CaseCursor;

namespace runtime::data {
class Dataset;
}

namespace runtime::output {

class Catalog;

struct OutputBinding {
  Report* report = nullptr;                               // receives procedures and tables
  std::shared_ptr<const runtime::data::Dataset> dataset;  // the active dataset; null: none
  const Catalog* catalog = nullptr;                       // of the language of fixed texts; null: English
  bool datasetUnusable = false;                           // what FatalError tells
  /// A procedure asked for the cases; null when there are none to be had.
  std::function<void(CaseCursor* cursor)> onCursorOpened;
  std::function<void(const std::string& title)> onTableOpened;  // a procedure opened a table
};

/// The calling thread's binding; null when there is none.
OutputBinding* CurrentOutput();
/// Sets the calling thread's binding (null: none) and gives the previous one.
OutputBinding* BindOutput(OutputBinding* binding);

}  // namespace runtime::output
