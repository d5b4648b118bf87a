// The report: messages and pivot tables, exactly as a procedure built them. Renderers only read it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/data/format.h"
#include "host/output/celltext.h"

#include "runtime/output/model/facts.h"

namespace runtime::output {

/// The variable that a content is of.
struct ContentOrigin {
  std::string variable;     // its name
  bool isString = false;    // of a value: the variable is a string
  std::string stringValue;  // of a value of a string variable: the value without trailing blanks
  int show = 0;             // of the variable itself: 0 name, 1 label
};

/// What stands in a label or a cell. There are dozens of them for every variable of a report, so they are kept small.
struct CellContent {
  enum class Kind : std::uint8_t { Text, Number, DataValue, Variable };

  Kind kind = Kind::Text;
  bool fixed = false;   // Text: one of the procedure's own words
  BpFormatSpec format;  // Number; DataValue: the variable's print format
  double number = 0.0;  // Number; DataValue of a numeric variable. NaN: system-missing
  std::string text;     // as shown, UTF-8 (data may hold control characters; renderers escape them)
  std::unique_ptr<const ContentOrigin> origin;  // DataValue, Variable; null otherwise
};

/// True of a number and of a value of a numeric variable.
inline bool IsNumeric(const CellContent& content) {
  return content.kind == CellContent::Kind::Number ||
         (content.kind == CellContent::Kind::DataValue && !content.origin->isString);
}

using SharedContent = std::shared_ptr<const CellContent>;

struct Cell {
  const struct Item* column = nullptr;  // a column category of the same table; null: set on the row itself
  SharedContent content;
};

/// A group or a category of a dimension. Owned by its parent.
struct Item {
  bool isGroup = false;
  bool flag = false;  // of a group, as it was given
  SharedContent label;
  std::vector<std::unique_ptr<Item>> items;  // of a group
  std::vector<Cell> cells;                   // of a row category, in the order in which they were set
};

struct Dimension {
  SharedContent label;
  bool inColumns = false;
  int position = 0;  // the three of Position, as they were given
  bool positionFlags[2] = {false, false};
  Item root;  // an invisible group
};

struct Table {
  SharedContent title;
  SharedContent subtype;
  bool flag = false;
  std::optional<int> minDataColumnWidth;
  std::vector<std::unique_ptr<Dimension>> dimensions;
  Item* lastRow = nullptr;  // the row category created last
};

struct Procedure {
  std::string title;
  int number = 0;                              // as it was given
  std::vector<std::shared_ptr<Table>> tables;  // in output order
  std::vector<Sketch> sketches;                // of the items counted, in the order of their names
};

enum class Severity { Warning, Error };
enum class Source { Command, Data, Host };

struct Message {
  Severity severity = Severity::Warning;
  Source source = Source::Command;
  std::string text;
};

struct Report {
  std::vector<Message> messages;  // in the order in which they arose
  std::vector<std::shared_ptr<Procedure>> procedures;
  std::optional<ReportFacts> facts;  // none: tables without a dataset
  std::string language = "en";       // of fixed texts
};

}  // namespace runtime::output
