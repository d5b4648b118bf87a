#include "runtime/data/dictionary/packagecontext.h"

#include <fmt/format.h>

namespace runtime::data {

std::vector<JsonPlace> PathsOf(const JsonPlace& resource) {
  auto path = resource.Find("path");
  if (!path) path = resource.Find("url");
  if (!path) return {};
  return path->isList() ? path->Entries() : std::vector<JsonPlace>{*path};
}

std::string ResourceNames(const PackageContext& context) {
  std::vector<std::string> names;
  for (const JsonPlace& resource : context.package.Need("resources").Entries()) {
    std::optional<std::string> name = FindText(resource, "name", context.deviations);
    const std::vector<JsonPlace> paths = PathsOf(resource);
    if (!name && !paths.empty() && paths.front().isText()) name = fmt::format("(no name) \"{}\"", paths.front().Text());
    names.push_back(name.value_or("(no name)"));
  }
  return fmt::format("{}", fmt::join(names, ", "));
}

JsonPlace FindResource(const PackageContext& context, const std::string& name, const JsonPlace& asker) {
  const std::vector<JsonPlace> resources = context.package.Need("resources").Entries();
  for (const JsonPlace& resource : resources)
    if (FindText(resource, "name", context.deviations) == name) return resource;
  for (const JsonPlace& resource : resources)
    for (const JsonPlace& path : PathsOf(resource))
      if (path.isText() && path.Text() == name) return resource;
  asker.Fail(fmt::format("there is no resource \"{}\"; the package holds: {}", name, ResourceNames(context)));
}

}  // namespace runtime::data
