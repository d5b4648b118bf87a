// A dataset whose chunks, storages and weights a test chooses itself.
#pragma once

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "host/data/casecursor.h"
#include "host/data/datasource.h"

#include "runtime/data/dataset.h"

/// The cells of one variable: numbers (NaN: system-missing) or texts without trailing blanks.
struct TestColumn {
  bool isText = false;
  std::vector<double> numbers;
  std::vector<std::string> texts;
};

struct TestData {
  std::vector<TestColumn> columns;
  std::vector<double> weights;          // one a row; empty: every chunk is unweighted
  std::vector<std::int64_t> chunkEnds;  // rising, the last is the number of rows
  std::vector<bool> unweightedChunks;   // chunks that give no weights (theirs must be 1); may be shorter
  bool tablePerChunk = false;           // of strings
  unsigned storageSeed = 0;             // 0: the smallest storage; else any that holds the chunk's cells

  std::int64_t rows() const { return chunkEnds.empty() ? 0 : chunkEnds.back(); }
};

class TestDataset : public runtime::data::Dataset {
 public:
  TestDataset(const runtime::data::Dictionary& dictionary, TestData data)
      : Dataset(dictionary), fData(std::move(data)) {}

  std::unique_ptr<CaseCursor> NewCursor() const override;
  std::int64_t caseCount() const override { return fData.rows(); }
  const TestData& data() const { return fData; }

 private:
  TestData fData;
};
