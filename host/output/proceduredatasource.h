// The active dataset as a procedure gets it, and the iterator over its cases.
#pragma once

#include <memory>

#include "host/common/api.h"
#include "host/data/caseiterator.h"
#include "host/data/datasource.h"

/// The procedure's iterator: adds the split-group test.
class HOST_API ProcDSIterator : public MAVO_InputCaseIterator {
 public:
  ProcDSIterator(const MAVO_DataSource& source, std::unique_ptr<CaseCursor> cursor);
  ~ProcDSIterator() override;

  /// True while the cursor stands at the end of a split group.
  bool SplitGroupEnd() const { return Cursor().atSplitGroupEnd; }
};

/// Binds to the active dataset of the calling thread's session for the duration of the command.
class HOST_API ProcedureDataSource : public MAVO_DataSource {
 public:
  ProcedureDataSource();
  ~ProcedureDataSource() override;

  /// True when the active dataset cannot be used (or there is none).
  bool FatalError() const;
  /// The dataset that this one is drawn from, null when there is none.
  const MAVO_DataSource* Parent() const;
  /// Dictionary index of the weight variable, negative when the dataset is unweighted.
  int GetWeightVarIndex() const;

  /// A ProcDSIterator, owned by the caller; null when there is no dataset.
  MAVO_InputCaseIterator* NewCaseIterator(int) override;
};
