// A dataset put together in memory, for tests and for sources that have no file.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/data/variable.h"
#include "host/data/variableset.h"

#include "runtime/data/dataset.h"
#include "runtime/data/store/columnardataset.h"

namespace runtime::data {

/// One variable and its cells. Every operation gives the variable back, so that calls can be chained.
class VariableBuilder {
 public:
  VariableBuilder(std::string name, std::vector<double> cells);
  VariableBuilder(std::string name, std::vector<std::string> cells);

  VariableBuilder& Label(std::string label);
  /// Labels of a value already labelled are passed over: the first one holds.
  VariableBuilder& ValueLabel(double value, std::string label);
  VariableBuilder& ValueLabel(std::string value, std::string label);
  VariableBuilder& Missing(double value);
  VariableBuilder& Missing(std::string value);
  VariableBuilder& MissingRange(double low, double high);
  VariableBuilder& Level(MAVO_Variable::MeasurementLevel level);
  VariableBuilder& Role(MAVO_Variable::Role role);
  /// Print and write format.
  VariableBuilder& Format(FormatType type, int width, int decimals = 0);
  VariableBuilder& WriteFormat(FormatType type, int width, int decimals = 0);
  /// The string width in bytes where it is more than the longest value.
  VariableBuilder& Width(int width);
  VariableBuilder& Attribute(std::string name, std::vector<std::string> values);

 private:
  friend class DatasetBuilder;

  std::size_t cellCount() const { return fIsString ? fTexts.size() : fNumbers.size(); }

  bool fIsString;
  std::vector<double> fNumbers;
  std::vector<std::string> fTexts;
  VariableRecord fRecord;
  bool fHasFormat = false;
  bool fHasWriteFormat = false;
  std::vector<std::pair<double, std::string>> fNumberLabels;
  std::vector<std::pair<std::string, std::string>> fTextLabels;
};

/// Use: Add... each variable and fact, then Build once.
///
/// Without more being said a numeric variable is F8.2 and scale, a string variable as wide as its longest value (at
/// least 1), of format A and nominal; the role is input. NaN is system-missing. Names are taken as they are, unchecked.
class DatasetBuilder {
 public:
  /// The reference stays valid while the builder lives.
  VariableBuilder& AddNumeric(std::string name, std::vector<double> cells = {});
  VariableBuilder& AddString(std::string name, std::vector<std::string> cells = {});

  DatasetBuilder& AddSet(VariableSet set);
  /// `countedValue` as text.
  DatasetBuilder& AddDichotomySet(std::string name, std::vector<std::string> variables, std::string countedValue,
                                  std::string label = {}, bool labelledByCountedValues = false);
  DatasetBuilder& AddCategorySet(std::string name, std::vector<std::string> variables, std::string label = {});
  DatasetBuilder& Weight(std::string variable);
  DatasetBuilder& FileSpec(std::string fileSpec);
  DatasetBuilder& Label(std::string label);
  DatasetBuilder& AddDocument(std::vector<std::string> lines);
  DatasetBuilder& Attribute(std::string name, std::vector<std::string> values);
  /// Rows of a group of the store. Small groups let a small test cross their borders.
  DatasetBuilder& BlockRows(std::int64_t rows);

  /// The dataset; a cursor hands out at most `chunkRows` rows at once, 0 for a whole block. Throws
  /// std::invalid_argument when the columns differ in length or the weight variable is unknown or a string.
  std::shared_ptr<const Dataset> Build(std::int64_t chunkRows = 0);

 private:
  std::vector<StoredColumn> StoreColumns(std::size_t rows) const;

  std::deque<VariableBuilder> fVariables;
  Dictionary fDictionary;
  std::string fWeight;
  std::int64_t fBlockRows = 0;
};

}  // namespace runtime::data
