#include "tests/unit/aggregation/support/testdataset.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>

namespace {

class TestStringTable : public StringTable {
 public:
  std::string_view Text(std::uint32_t code) const override { return *fTexts[code]; }
  std::uint32_t Size() const override { return static_cast<std::uint32_t>(fTexts.size()); }

  std::uint32_t Enter(const std::string& text) {
    const auto [found, isNew] = fCodes.try_emplace(text, Size());
    if (isNew) fTexts.push_back(&found->first);
    return found->second;
  }

 private:
  std::map<std::string, std::uint32_t> fCodes;
  std::vector<const std::string*> fTexts;
};

class TestCursor : public CaseCursor {
 public:
  explicit TestCursor(const TestData& data)
      : fData(data), fColumns(data.columns.size()), fRandom(data.storageSeed), fTables(data.columns.size()) {}
  ~TestCursor() override { Farewell(); }

  ColumnView Column(int variable) const override {
    const Loaded& column = fColumns[static_cast<std::size_t>(variable)];
    return {column.storage, column.bytes.data(), column.strings};
  }
  const double* Weights() const override {
    if (fData.weights.empty()) return nullptr;
    if (fChunk - 1 < fData.unweightedChunks.size() && fData.unweightedChunks[fChunk - 1]) return nullptr;
    return fWeights.data();
  }

 protected:
  bool LoadNextChunk() override {
    if (fChunk == fData.chunkEnds.size()) return false;
    chunkBegin = chunkEnd;
    chunkEnd = fData.chunkEnds[fChunk++];
    for (std::size_t i = 0; i < fColumns.size(); ++i) Load(i);
    if (!fData.weights.empty()) fWeights.assign(fData.weights.begin() + chunkBegin, fData.weights.begin() + chunkEnd);
    return true;
  }

 private:
  struct Loaded {
    ColumnStorage storage = ColumnStorage::Float64;
    std::vector<std::byte> bytes;
    const StringTable* strings = nullptr;
  };

  template <class Cell>
  bool Fits(const double* cells) const {
    return std::all_of(cells, cells + (chunkEnd - chunkBegin), [](double cell) {
      return std::isnan(cell) || (cell > std::numeric_limits<Cell>::min() && cell <= std::numeric_limits<Cell>::max() &&
                                  cell == std::floor(cell));
    });
  }

  template <class Cell>
  void Fill(Loaded& column, const Cell* cells) {
    column.bytes.resize(static_cast<std::size_t>(chunkEnd - chunkBegin) * sizeof(Cell));
    if (!column.bytes.empty()) std::memcpy(column.bytes.data(), cells, column.bytes.size());
  }

  template <class Cell>
  void FillWhole(Loaded& column, const double* cells) {
    std::vector<Cell> whole;
    for (std::int64_t i = 0; i < chunkEnd - chunkBegin; ++i)
      whole.push_back(std::isnan(cells[i]) ? std::numeric_limits<Cell>::min() : static_cast<Cell>(cells[i]));
    Fill(column, whole.data());
  }

  void Load(std::size_t i) {
    const TestColumn& source = fData.columns[i];
    Loaded& column = fColumns[i];
    if (source.isText) {
      if (fTables[i].empty() || fData.tablePerChunk) fTables[i].push_back(std::make_unique<TestStringTable>());
      std::vector<std::uint32_t> codes;
      for (std::int64_t at = chunkBegin; at < chunkEnd; ++at)
        codes.push_back(fTables[i].back()->Enter(source.texts[static_cast<std::size_t>(at)]));
      column.storage = ColumnStorage::StringCode;
      column.strings = fTables[i].back().get();
      Fill(column, codes.data());
      return;
    }
    const double* cells = source.numbers.data() + chunkBegin;
    const unsigned any = fData.storageSeed == 0 ? 0 : static_cast<unsigned>(fRandom() % 4);
    if (any < 1 && Fits<std::int8_t>(cells)) {
      column.storage = ColumnStorage::Int8;
      FillWhole<std::int8_t>(column, cells);
    } else if (any < 2 && Fits<std::int16_t>(cells)) {
      column.storage = ColumnStorage::Int16;
      FillWhole<std::int16_t>(column, cells);
    } else if (any < 3 && Fits<std::int32_t>(cells)) {
      column.storage = ColumnStorage::Int32;
      FillWhole<std::int32_t>(column, cells);
    } else {
      column.storage = ColumnStorage::Float64;
      Fill(column, cells);
    }
  }

  const TestData& fData;
  std::vector<Loaded> fColumns;
  std::vector<double> fWeights;
  std::mt19937 fRandom;
  std::vector<std::vector<std::unique_ptr<TestStringTable>>> fTables;
  std::size_t fChunk = 0;
};

}  // namespace

std::unique_ptr<CaseCursor> TestDataset::NewCursor() const { return std::make_unique<TestCursor>(fData); }
