// Dimensions of an aggregation table: what is asked for (AggregationVariable) and what came of it (TableDimension).
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/aggregation/statistics.h"
#include "host/aggregation/tableprogress.h"
#include "host/common/api.h"
#include "host/data/obs.h"

/// A dimension of a table as it stands during and after the pass. Owned by the table.
class HOST_API TableDimension {
 public:
  virtual ~TableDimension();
  /// Number of distinct values met in the cases added so far that have positive weight (of a set: values or members
  /// met; with a category list: listed values met). Meant to be asked for every case: mostly the answer is known.
  int GetNumberOfValues() const {
    return fProgress->pending.end <= fProgress->watch.nextNewRow ? fProgress->watch.count : CountValues();
  }
  /// The categories in their order, the total category last. Pointers stay valid while the table lives. REQUIRES: the
  /// table's GetCubeAggregators was called.
  virtual std::vector<AggregationCategory*> GetCategoryPointers() = 0;

 protected:
  /// `progress` is that of the table and must outlive the dimension.
  explicit TableDimension(const TableProgress& progress) : fProgress(&progress) {}
  /// The number of values, when it does not follow from the table's progress.
  virtual int CountValues() const = 0;

 private:
  const TableProgress* fProgress;
};

/// The dimension of a multiple category set.
class HOST_API TableMCSet : public TableDimension {
 public:
  ~TableMCSet() override;

 protected:
  using TableDimension::TableDimension;
};

/// The dimension of a multiple dichotomy set.
class HOST_API TableMDSet : public TableDimension {
 public:
  ~TableMDSet() override;

 protected:
  using TableDimension::TableDimension;
};

/// One explicit category. Keeps a pointer to the value, which must outlive the table (values of the dictionary do).
class HOST_API ParsedCategory {
 public:
  ParsedCategory(const OBS& value, int) : fValue(&value) {}
  const OBS* value() const { return fValue; }

 private:
  const OBS* fValue;
};

/// A categorical dimension over one variable.
class HOST_API AggregationVariable {
 public:
  enum class Kind { Variable, CategorySet, DichotomySet };

  /// `variable` is a dictionary index.
  AggregationVariable(int variable, const std::string& name);
  virtual ~AggregationVariable();
  AggregationVariable(const AggregationVariable&) = delete;
  AggregationVariable& operator=(const AggregationVariable&) = delete;

  /// The categories are these values, in this order. The dimension owns the list's entries from here on.
  virtual void SetCategoryList(const std::vector<ParsedCategory*>& categories);
  /// False: the dimension gets a total category, behind all others.
  void SetIsTotalNo(bool noTotal) { fNoTotal = noTotal; }
  /// Kept, without effect.
  virtual void SetSecondaryFlag(bool flag);
  /// Null until the cube's aggregator was created. Owned by the table.
  virtual TableDimension* GetTableDimension() const;

  Kind kind() const { return fKind; }
  const std::string& name() const { return fName; }
  /// The variable, or a set's members in set order.
  const std::vector<int>& variables() const { return fVariables; }
  const std::vector<std::unique_ptr<ParsedCategory>>& categories() const { return fCategories; }
  bool hasTotal() const { return !fNoTotal; }
  void setTableDimension(TableDimension* dimension) { fDimension = dimension; }

 protected:
  AggregationVariable(Kind kind, std::vector<int> variables, const std::string& name);

 private:
  Kind fKind;
  std::vector<int> fVariables;
  std::string fName;
  std::vector<std::unique_ptr<ParsedCategory>> fCategories;
  bool fNoTotal = true;
  bool fSecondaryFlag = true;
  TableDimension* fDimension = nullptr;
};

/// A dimension over a multiple category set.
class HOST_API AggregationMCSet : public AggregationVariable {
 public:
  AggregationMCSet(const std::vector<int>& members, const std::string& name);
  ~AggregationMCSet() override;
};

/// A dimension over a multiple dichotomy set that counts one value.
class HOST_API AggregationMDSet : public AggregationVariable {
 public:
  /// The counted value is read once, by the cube's CreateCubeAggregator, and may be gone afterwards. When the first
  /// member's print format is A, it is text of `width` units of 8 bytes, blank-padded; otherwise it is a double and
  /// `width` is 8. `countedValue` may be null only for a set without members.
  AggregationMDSet(const std::vector<int>& members, const std::string& name, const OBS* countedValue, int width, bool);
  ~AggregationMDSet() override;

  const OBS* countedValue() const { return fCountedValue; }
  int countedValueWidth() const { return fWidth; }

 private:
  const OBS* fCountedValue;  // not owned
  int fWidth;
};
