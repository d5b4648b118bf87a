// Descriptors put together at random, with texts that are hard to write.
#pragma once

#include <random>
#include <string>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"

namespace runtime::data {

/// The same for the same seed. Such as a reader of dictionaries can give: with a description comes the attribute of
/// that name, with a package's properties come theirs.
class RandomDescriptor {
 public:
  explicit RandomDescriptor(unsigned int seed) : fRandom(seed) {}

  /// `withPackage`: also what only a Data Package says.
  TableDescriptor Make(bool withPackage);

 private:
  std::size_t Below(std::size_t bound) { return fRandom() % bound; }
  bool Chance(std::size_t percent) { return Below(100) < percent; }
  std::string Text();
  std::string FilledText();
  std::string NumberWord();
  std::string JsonValue();
  std::vector<std::string> Texts(std::size_t most);
  void MakeDialect(FieldDescriptor& field);
  LabelledValue Value(bool isNumber);
  std::vector<LabelledValue> Values(FieldType type, std::size_t most, bool alwaysText);
  void AddAttributes(DatasourceAttributes& attributes);
  void AddFieldExtras(FieldDescriptor& field);
  FieldDescriptor Field(const TableDescriptor& table);
  SetDescriptor Set(const TableDescriptor& table);
  void AddPackage(TableDescriptor& table);

  std::minstd_rand fRandom;
};

}  // namespace runtime::data
