// The dataset as a procedure sees it: dictionary, sets, documents, attributes, cases.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/common/api.h"
#include "host/data/attributes.h"
#include "host/data/caseiterator.h"
#include "host/data/variable.h"
#include "host/data/variableset.h"

namespace runtime::data {
class Dataset;
}

/// A view of a dataset. References that it gives stay valid while it lives.
class HOST_API MAVO_DataSource {
 public:
  explicit MAVO_DataSource(std::shared_ptr<const runtime::data::Dataset> dataset);
  virtual ~MAVO_DataSource();
  MAVO_DataSource(const MAVO_DataSource&) = delete;
  MAVO_DataSource& operator=(const MAVO_DataSource&) = delete;

  /// Number of variables; dictionary indices run from 0 to this number minus one.
  unsigned int ColumnCount() const;
  /// REQUIRES: a dictionary index.
  const MAVO_Variable& GetVariable(int index) const;
  MAVO_Variable& GetVariable(int index);
  /// Dictionary index of the variable with that name, without regard to case; -1 when there is none. The second
  /// argument asks for no special search and is not used.
  int FindVarIndex(const char* name, int) const;
  /// The multiple response sets in dictionary order.
  std::vector<VariableSetImpl> GetMRSets() const;
  /// The full path of the data file, a backslash between directory and file name; null when there is no file.
  const char* GetFileSpec() const;
  const char* GetLabel() const;  // null when there is none
  const DatasourceAttributes& GetAttributes() const;
  /// Dictionary index of the weight variable, negative when the dataset is unweighted.
  int WeightIndex() const;

  /// A new walk over the cases, owned by the caller. The argument is 0.
  virtual MAVO_InputCaseIterator* NewCaseIterator(int);
  /// Number of cases, unweighted; negative when it is not known. More than 2^31-1 cases are never handed out.
  virtual int NumberOfCases();

 protected:
  const std::shared_ptr<const runtime::data::Dataset>& dataset() const { return fDataset; }
  std::unique_ptr<CaseCursor> NewCursor() const;

 private:
  friend HOST_API std::vector<VariableSet> VariableSets(const MAVO_DataSource& source, VarSetsType type);
  friend HOST_API std::vector<DSDocument> GetDocuments(const MAVO_DataSource& source);

  std::shared_ptr<const runtime::data::Dataset> fDataset;  // null only for a source without a dataset
  std::vector<MAVO_Variable> fVariables;
};

/// The multiple response sets with their details, in the order of GetMRSets.
HOST_API std::vector<VariableSet> VariableSets(const MAVO_DataSource& source, VarSetsType type);
/// The file's documents in order.
HOST_API std::vector<DSDocument> GetDocuments(const MAVO_DataSource& source);
