// The case iterator that a procedure owns.
#pragma once

#include <memory>

#include "host/common/api.h"
#include "host/data/casecursor.h"

class MAVO_DataSource;

class HOST_API MAVO_InputCaseIterator {
 public:
  /// `source` is not owned and must outlive the iterator.
  MAVO_InputCaseIterator(const MAVO_DataSource& source, std::unique_ptr<CaseCursor> cursor);
  virtual ~MAVO_InputCaseIterator();
  MAVO_InputCaseIterator(const MAVO_InputCaseIterator&) = delete;
  MAVO_InputCaseIterator& operator=(const MAVO_InputCaseIterator&) = delete;

  /// Non-zero when it advanced to a further case, 0 when the cases are exhausted.
  int NextCase() { return fCursor->Next() ? 1 : 0; }

  /// The walk behind the iterator; owned by it.
  CaseCursor& Cursor() { return *fCursor; }
  const CaseCursor& Cursor() const { return *fCursor; }
  const MAVO_DataSource& Source() const { return fSource; }

 private:
  const MAVO_DataSource& fSource;
  std::unique_ptr<CaseCursor> fCursor;
};
