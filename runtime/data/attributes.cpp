#include "host/data/attributes.h"

DatasourceAttributes::DatasourceAttributes() = default;
DatasourceAttributes::~DatasourceAttributes() = default;
DatasourceAttributes::DatasourceAttributes(const DatasourceAttributes&) = default;
DatasourceAttributes::DatasourceAttributes(DatasourceAttributes&&) noexcept = default;
DatasourceAttributes& DatasourceAttributes::operator=(const DatasourceAttributes&) = default;
DatasourceAttributes& DatasourceAttributes::operator=(DatasourceAttributes&&) noexcept = default;

void DatasourceAttributes::Add(std::string name, std::vector<std::string> values) {
  fAttributes.emplace_back(std::move(name), std::move(values));
}

DSDocument::DSDocument() = default;
DSDocument::DSDocument(std::vector<std::string> lines) : fLines(std::move(lines)) {}
DSDocument::~DSDocument() = default;
DSDocument::DSDocument(const DSDocument&) = default;
DSDocument::DSDocument(DSDocument&&) noexcept = default;
DSDocument& DSDocument::operator=(const DSDocument&) = default;
DSDocument& DSDocument::operator=(DSDocument&&) noexcept = default;
