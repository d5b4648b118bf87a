// The compiled catalogs that are part of the program. The list is made by the build from po/ (cmake/Catalogs.cmake).
#pragma once

#include <string_view>
#include <vector>

namespace runtime::output {

struct EmbeddedCatalog {
  std::string_view language;       // "de"
  std::string_view (*compiled)();  // the content of a .mo file
};

/// One a language, ascending by language.
const std::vector<EmbeddedCatalog>& EmbeddedCatalogs();

}  // namespace runtime::output
