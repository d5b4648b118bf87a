// A procedure's output.
#pragma once

#include <memory>
#include <string>

#include "host/common/api.h"
#include "host/data/datasource.h"
#include "host/output/celltext.h"
#include "host/output/pivottable.h"

namespace runtime::output {
struct Procedure;
}

/// A heading of the output, under which tables stand.
class HOST_API BpHeading {
 public:
  virtual ~BpHeading();
  BpHeading(const BpHeading&) = delete;
  BpHeading& operator=(const BpHeading&) = delete;

  /// A new table, appended to the output in call order. The flag is kept in the report.
  BpPivotTable PivotTable(const BpString& title, const BpString& subtype, bool flag);

 protected:
  explicit BpHeading(std::shared_ptr<runtime::output::Procedure> procedure);

 private:
  std::shared_ptr<runtime::output::Procedure> fProcedure;
};

/// The output of one call of a procedure: bound, from construction on, to the report of the calling thread's session
/// (to nothing when there is none).
class HOST_API BpProcedure : public BpHeading {
 public:
  /// The integer is kept, not interpreted.
  BpProcedure(std::string title, int);
  ~BpProcedure() override;

  static BpFormatSpec Count();        // whole numbers
  static BpFormatSpec Percent();      // 1 decimal and a percent sign
  static BpFormatSpec Coefficient();  // 3 decimals
  /// Format of a mean or percentile of the variable (dictionary index): its decimals + 2, as wide as the number needs,
  /// of type F or of the variable's own type where that is COMMA, DOT, DOLLAR, PCT or a custom currency; dates and
  /// times in the variable's own format.
  BpFormatSpec Mean(int variable) const;
  /// Format of a standard deviation: the same with decimals + 3; of dates and times a duration.
  BpFormatSpec StdDev(int variable) const;

 private:
  std::unique_ptr<const MAVO_DataSource> fSource;  // the dictionary of the active dataset; null when there is none
};
