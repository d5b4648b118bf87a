// Attributes of a file or a variable, and the documents of a file.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "host/common/api.h"

/// An ordered list of named attributes, each with an ordered list of values. Indices count from 0 and are not checked.
class HOST_API DatasourceAttributes {
 public:
  DatasourceAttributes();
  ~DatasourceAttributes();
  DatasourceAttributes(const DatasourceAttributes&);
  DatasourceAttributes(DatasourceAttributes&&) noexcept;
  DatasourceAttributes& operator=(const DatasourceAttributes&);
  DatasourceAttributes& operator=(DatasourceAttributes&&) noexcept;

  std::size_t Size() const { return fAttributes.size(); }
  std::string Name(std::size_t i) const { return fAttributes[i].first; }
  std::vector<std::string> Values(std::size_t i) const { return fAttributes[i].second; }

  /// Appends an attribute (names may repeat; nothing is merged).
  void Add(std::string name, std::vector<std::string> values);

 private:
  std::vector<std::pair<std::string, std::vector<std::string>>> fAttributes;
};

/// A document: an ordered list of text lines.
class HOST_API DSDocument {
 public:
  DSDocument();
  explicit DSDocument(std::vector<std::string> lines);
  ~DSDocument();
  DSDocument(const DSDocument&);
  DSDocument(DSDocument&&) noexcept;
  DSDocument& operator=(const DSDocument&);
  DSDocument& operator=(DSDocument&&) noexcept;

  std::size_t Size() const { return fLines.size(); }
  const std::string& operator[](int line) const { return fLines[static_cast<std::size_t>(line)]; }

 private:
  std::vector<std::string> fLines;
};
