#include "runtime/data/dictionary/categoryresource.h"

#include <algorithm>
#include <cstddef>
#include <memory>

#include <fmt/format.h>

#include "runtime/data/csv/smalltable.h"
#include "runtime/data/dictionary/referredfile.h"
#include "runtime/data/dictionary/resourcedata.h"

namespace runtime::data {
namespace {

/// What `categories` of a field refers to when it names a resource.
struct Reference {
  std::string resource;
  std::string valueField;
};

/// Of a field of a schema; nothing when it lists its categories itself, or has none.
std::optional<Reference> ReferenceOf(const JsonPlace& schema, const std::string& fieldName) {
  const auto fields = schema.Find("fields");
  if (!fields || !fields->isList()) return std::nullopt;
  for (const JsonPlace& field : fields->Entries()) {
    if (!field.isObject()) continue;
    const auto name = field.Find("name");
    if (!name || !name->isText() || name->Text() != fieldName) continue;
    const auto categories = field.Find("categories");
    if (!categories || !categories->isObject()) return std::nullopt;
    return Reference{categories->Need("resource").Text(), categories->Need("valueField").Text()};
  }
  return std::nullopt;
}

std::optional<Reference> ReferenceOf(const JsonPlace& resource, const std::string& fieldName,
                                     const PackageContext& context) {
  const auto schema = resource.Find("schema");
  if (!schema) return std::nullopt;
  if (!schema->isText()) return ReferenceOf(*schema, fieldName);
  const ReferredFile file(*schema, context);
  return ReferenceOf(file.root(), fieldName);
}

/// Follows the categories of the values of categories, until they stand in place.
void CheckThatItEnds(const JsonPlace& reference, const JsonPlace& asking, const PackageContext& context) {
  std::vector<std::string> met = {asking.Where()};
  std::string path = FindText(asking, "name", context.deviations).value_or("(no name)");
  std::optional<Reference> next = Reference{reference.Need("resource").Text(), reference.Need("valueField").Text()};
  while (next) {
    const JsonPlace resource = FindResource(context, next->resource, reference);
    path += fmt::format(" -> {}", next->resource);
    if (std::find(met.begin(), met.end(), resource.Where()) != met.end())
      reference.Fail(fmt::format("the categories go round in a circle: {}; list them in one of these places", path));
    met.push_back(resource.Where());
    next = ReferenceOf(resource, next->valueField, context);
  }
}

std::size_t ColumnOf(const JsonPlace& field, const SmallTable& table, const std::string& resource) {
  const auto found = std::find(table.headers.begin(), table.headers.end(), field.Text());
  if (found == table.headers.end())
    field.Fail(fmt::format("the resource \"{}\" has no column \"{}\"; it has: {}", resource, field.Text(),
                           fmt::join(table.headers, ", ")));
  return static_cast<std::size_t>(found - table.headers.begin());
}

}  // namespace

std::vector<LabelledValue> ReadCategoryResource(const JsonPlace& reference, const JsonPlace& resource,
                                                const PackageContext& context) {
  CheckThatItEnds(reference, resource, context);
  const std::string name = reference.Need("resource").Text();
  const JsonPlace source = FindResource(context, name, reference);
  TextDialect dialect;
  const ResourceData data = ReadResourceData(source, context, true, dialect);
  const SmallTable table = data.inlineData ? ReadSmallText(source.Where(), data.inlineData->csv,
                                                           data.inlineData->dialect, kMostCategoriesOfResource)
                                           : ReadSmallFiles(data.paths, dialect, kMostCategoriesOfResource);
  const std::size_t valueColumn = ColumnOf(reference.Need("valueField"), table, name);
  std::optional<std::size_t> labelColumn;
  if (const auto field = reference.Find("labelField")) labelColumn = ColumnOf(*field, table, name);
  std::vector<LabelledValue> categories;
  for (const std::vector<std::string>& row : table.rows) {
    LabelledValue category{row[valueColumn], false, std::nullopt};
    if (category.value.empty()) continue;
    if (labelColumn && !row[*labelColumn].empty()) category.label = row[*labelColumn];
    categories.push_back(std::move(category));
  }
  return categories;
}

}  // namespace runtime::data
