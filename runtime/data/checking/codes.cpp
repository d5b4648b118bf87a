#include <cstddef>

#include "runtime/data/checking/finding.h"

namespace runtime::data {

const std::vector<CodeFacts>& CheckCodes() {
  using enum CheckCode;
  using enum Severity;
  static const std::vector<CodeFacts> codes = {
      {Reading, "C001", "reading", Warning, "something else that reading the data or the dictionary came upon",
       "mend the place that is named"},

      {FieldWithoutColumn, "C101", "field-without-column", Warning, "a field has no column in the data",
       "take the field out of the dictionary, or spell its name as the header does"},
      {ColumnWithoutField, "C102", "column-without-field", Warning, "a column has no field in the dictionary",
       "describe it in the dictionary; codebook draft writes a field to start from"},
      {RepeatedName, "C103", "repeated-name", Warning, "two columns or two fields have the same name, or a column none",
       "give each its own name"},
      {NamesDifferInCase, "C104", "names-differ-in-case", Warning, "two names differ in nothing but capitals",
       "rename one; names are told apart without regard to case"},

      {UnreadableCell, "C201", "unreadable-cell", Error, "cells do not read as the type of their field",
       "mend the cells, declare the text as a missing value, or give the field another type"},
      {WrongLength, "C202", "wrong-length", Error, "a text is longer than maxLength or shorter than minLength",
       "mend the cells or the constraint"},
      {RequiredMissing, "C203", "required-missing", Error, "a required field, or the primary key, has missing values",
       "fill the cells, or take the constraint back"},
      {NotUnique, "C204", "not-unique", Error, "a value of a unique field, or of the primary key, stands twice",
       "look for repeated cases"},
      {OutOfRange, "C205", "out-of-range", Error, "a value is below the minimum or above the maximum",
       "mend the cells, declare the value as missing, or widen the range"},
      {NotInEnum, "C206", "not-in-enum", Error, "a value is none of the constraint enum",
       "mend the cells, declare the value as missing, or add it to the list"},
      {PatternMismatch, "C207", "pattern-mismatch", Error, "a text does not match the pattern",
       "mend the cells or the pattern"},

      {OutsideCategories, "C301", "outside-categories", Error, "a value is none of the categories",
       "mend the cells, declare the value as missing, or add a category"},
      {ValueWithoutLabel, "C302", "value-without-label", Warning,
       "a value has no label, though other values of the variable have one", "give the value a label"},
      {LabelWithoutValue, "C303", "label-without-value", Info, "a labelled value or a category never occurs",
       "nothing, if nobody chose it; otherwise compare the codes with the questionnaire"},
      {UndeclaredMissing, "C304", "undeclared-missing", Warning, "a value looks like a code for a missing answer",
       "add it to missingValues, or give it a label"},
      {RepeatedLabel, "C305", "repeated-label", Warning, "two values of a variable have the same label",
       "tell the labels apart, or join the codes"},

      {Constant, "C401", "constant", Warning, "every case has the same value", "nothing, if it is meant so"},
      {AllMissing, "C402", "all-missing", Warning, "no case has a valid value",
       "look whether the column was filled, or whether a missing code is declared too widely"},

      {WeightNegative, "C501", "weight-negative", Error, "a weight is negative; such a case counts as weight 0",
       "mend the weight"},
      {WeightMissing, "C502", "weight-missing", Warning, "a weight is missing; such a case counts as weight 0",
       "mend the weight, or leave the case out"},
      {WeightZero, "C503", "weight-zero", Warning, "a weight is 0; such a case is in no weighted count",
       "nothing, if the case is to be left out"},
      {UnknownSetMember, "C504", "unknown-set-member", Error, "a member of a multiple response set is not in the data",
       "name the members by their fields"},
      {CountedValueNeverOccurs, "C505", "counted-value-never-occurs", Warning,
       "the counted value of a set occurs in none of its members, or not in one of them",
       "compare countedValue with the values of the members"},
  };
  return codes;
}

const CodeFacts& FactsOf(CheckCode code) { return CheckCodes()[static_cast<std::size_t>(code)]; }

const char* SeverityWord(Severity severity) {
  switch (severity) {
    case Severity::Error:
      return "error";
    case Severity::Warning:
      return "warning";
    case Severity::Info:
      return "info";
  }
  return "";
}

}  // namespace runtime::data
