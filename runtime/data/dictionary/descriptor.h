// A dictionary file as it was read, before it meets the columns of a data file. Every reader of a dictionary standard
// gives this form; assemble.h turns it, with what is known of the columns, into the Dictionary.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/data/attributes.h"
#include "host/data/format.h"

namespace runtime::data {

/// How the cells of a field are read. All types that are neither numeric nor inferred are String.
enum class FieldType { Inferred, String, Integer, Number, Boolean, Year, Date, DateTime, Time, YearMonth, Duration };

/// A value with a label, as text; `number` tells whether the file had a JSON number.
struct LabelledValue {
  std::string value;
  bool isNumber = false;
  std::optional<std::string> label;
};

/// Something that a dictionary file says and the Dictionary has no word for, kept so that writing it back loses
/// nothing. `name` is a property of Table Schema or Data Package by its own name ("constraints", "rdfType", unknown
/// ones too), or "ddi:" and the path of a DDI element below its variable or study ("ddi:qstn/preQTxt"). What a reader
/// understood in full is never an extra.
struct ExtraProperty {
  std::string name;
  std::string json;  // a JSON value in UTF-8
};

struct MissingRangeDescriptor {
  std::optional<double> min;  // absent: open
  std::optional<double> max;
};

/// How the cells of a field are written: the properties of its type.
struct FieldDialect {
  FieldType type = FieldType::Inferred;
  std::string format = "default";  // dates and times: "default", "any" or a strptime pattern
  std::string decimalChar = ".";
  std::string groupChar;
  bool bareNumber = true;
  std::vector<std::string> trueValues = {"true", "True", "TRUE", "1"};
  std::vector<std::string> falseValues = {"false", "False", "FALSE", "0"};
};

struct FieldDescriptor {
  std::string name;
  std::optional<std::string> title;
  std::optional<std::string> description;
  FieldDialect dialect;
  std::vector<LabelledValue> missingValues;  // the field's own, else the schema's, else one empty text
  std::vector<MissingRangeDescriptor> missingRanges;
  std::vector<LabelledValue> categories;  // of `categories`, of the resource named there, or of `constraints.enum`
  bool hasCategories = false;
  bool categoriesOrdered = false;
  std::vector<LabelledValue> valueLabels;  // of the extension property
  std::optional<int> maxLength;            // bytes or more
  std::optional<MAVO_Format> format;
  std::optional<std::string> measure;  // as written; an unknown word is an error at assembly
  std::optional<std::string> role;
  DatasourceAttributes attributes;
  std::vector<ExtraProperty> extras;  // in the order of the file
};

struct SetDescriptor {
  std::string name;
  std::string label;
  bool isDichotomy = false;
  std::vector<std::string> variables;  // field names
  std::string countedValue;
  bool labelledByCountedValues = false;
};

/// Of the data file: how its text is cut into cells. Absent: found from the data.
struct TextDialect {
  std::optional<std::string> delimiter;
  std::optional<std::string> quoteChar;  // empty text: no quoting
  std::optional<bool> doubleQuote;
  std::optional<bool> header;
  std::optional<bool> skipInitialSpace;
  std::optional<std::string> encoding;
  std::optional<std::string> escapeChar;      // makes the character behind it one like others
  std::optional<std::string> nullSequence;    // a cell of this text, not quoted, is missing
  std::optional<std::string> lineTerminator;  // absent: LF, CR and CRLF, mixed too
  std::optional<std::string> commentChar;     // lines that begin with it are no records
  std::vector<std::int64_t> commentRows;      // records that are left out, from 1, ascending
  std::vector<std::int64_t> headerRows;       // records that are joined to the header, ascending; empty: the first one
  std::optional<std::string> headerJoin;
  std::optional<bool> caseSensitiveHeader;  // false: fields and columns meet without regard to case
  std::vector<ExtraProperty> extras;        // of the dialect
};

/// How the fields of a schema meet the columns of the data.
enum class FieldsMatch {
  ByName,    // nothing is said: as Equal
  Exact,     // the same, in the same order
  Equal,     // the same, in any order
  Subset,    // every field has a column; there may be more columns
  Superset,  // every column has a field; there may be more fields
  Partial    // at least one field has a column
};

/// Data that stand in the dictionary itself, or were JSON, as CSV.
struct InlineTable {
  std::string csv;                       // UTF-8
  TextDialect dialect;                   // how it is written
  std::vector<std::string> textColumns;  // headers of those whose cells are texts although they look like numbers
};

struct TableDescriptor {
  std::string origin;                     // the dictionary file, for messages
  std::vector<std::string> dataPaths;     // checked, absolute; empty when the descriptor names no data
  std::optional<InlineTable> inlineData;  // instead of the files
  TextDialect dialect;
  FieldsMatch fieldsMatch = FieldsMatch::ByName;
  bool hasSchema = false;  // false: every column is inferred
  std::vector<FieldDescriptor> fields;
  std::vector<LabelledValue> missingValues;  // of the schema, for columns without a field; else one empty text
  std::optional<std::string> weight;
  std::vector<SetDescriptor> sets;
  std::optional<std::string> label;
  std::vector<std::vector<std::string>> documents;
  DatasourceAttributes attributes;
  // In the order of their file. Of a standard without these three levels all stand in `extras`. Properties of a package
  // that became attributes (its licenses, ...) are among its extras too, in full: who writes them as properties leaves
  // these attributes out.
  std::vector<ExtraProperty> extras;  // of the schema, or of the study
  std::vector<ExtraProperty> resourceExtras;
  std::vector<ExtraProperty> packageExtras;
};

}  // namespace runtime::data
