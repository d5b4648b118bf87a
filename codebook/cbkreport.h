// The run: everything after parsing.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/output/procedure.h"
#include "host/output/proceduredatasource.h"
#include "host/parser/message.h"

#include "codebook/cbkcategory.h"
#include "codebook/cbkstatistics.h"
#include "codebook/parser/cbksettings.h"

namespace codebook {

class VariableTable;

/// Turns a parsed command into output. Owns nothing but the statistics and its own lists.
class CodebookReport {
 public:
  CodebookReport(CodebookSettings* settings, ProcedureDataSource* dataSource, BpProcedure* procedure,
                 ParserMessage* parserMessage);
  ~CodebookReport();
  CodebookReport(const CodebookReport&) = delete;
  CodebookReport& operator=(const CodebookReport&) = delete;

  /// Called once. Orders the items, passes the cases when statistics are wanted, writes the tables, and warns of items
  /// that showed nothing or less than asked.
  void run();

 private:
  // Each writes one table; the statistics flags are those of the run.
  void writeFileInformation(double weightedCaseCount);
  /// Returns the position of the last entry that the table used.
  std::uint32_t writeVariableTable(std::uint32_t variableIndex, std::uint32_t entryPosition, bool statisticsByDefault,
                                   std::uint32_t treatment);
  void writeSetTable(const ListedItem& item, const CategoryDescriptor& descriptor, std::uint32_t entryPosition,
                     bool statisticsByDefault);
  friend class VariableTable;
  friend class SetTable;

  struct Preparation;
  void prepareItems(const std::vector<ListedItem>& items, bool byDefault, Preparation& prepared);
  bool passCases(Preparation& prepared, bool byDefault, ProcDSIterator* iterator);
  void writeItemTables(const std::vector<ListedItem>& items, const Preparation& prepared, bool byDefault);
  void warnNoInformation();
  void warnNotDisplayed(const std::vector<ListedItem>& items, const Preparation& prepared);

  CodebookSettings* fSettings;
  ProcedureDataSource* fDataSource;
  BpProcedure* fProcedure;
  std::unique_ptr<VariableStatistics> fStatistics;  // null when no statistics are wanted
  ParserMessage* fParserMessage;
  std::string fNoInformationList;  // each name followed by " ,"
  std::vector<bool> fShownFlags;   // one a prepared entry
  std::vector<std::int32_t> fScaleStatCodes;
};

}  // namespace codebook
