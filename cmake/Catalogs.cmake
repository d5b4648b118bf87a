# codebook_catalogs(TARGET): the catalogs of po/, compiled, as part of TARGET, and their list (see
# runtime/output/language/embeddedcatalogs.h). A new language needs its po/CODE.po and no line here.
find_program(MSGFMT_PROGRAM msgfmt)
if(NOT MSGFMT_PROGRAM)
  message(FATAL_ERROR "msgfmt is missing; it comes with gettext (scripts/setup build).")
endif()

function(codebook_catalogs target)
  file(GLOB catalogs CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/po/*.po)
  list(SORT catalogs)
  set(declarations "")
  set(entries "")
  foreach(catalog ${catalogs})
    cmake_path(GET catalog STEM language)
    set(compiled ${CMAKE_BINARY_DIR}/embedded/${language}.mo)
    # Neither hashes, which nobody reads, nor the machine's byte order: the same bytes on every machine.
    add_custom_command(
      OUTPUT ${compiled}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/embedded
      COMMAND ${MSGFMT_PROGRAM} --check --no-hash --endianness=little --output-file=${compiled} ${catalog}
      DEPENDS ${catalog}
      VERBATIM)
    codebook_embed(${target} Catalog_${language} ${compiled})
    string(APPEND declarations "std::string_view Catalog_${language}();\n")
    string(APPEND entries "      {\"${language}\", Catalog_${language}},\n")
  endforeach()
  set(list ${CMAKE_BINARY_DIR}/embedded/catalogs.cpp)
  file(CONFIGURE OUTPUT ${list} @ONLY CONTENT [[
#include "runtime/output/language/embeddedcatalogs.h"

namespace runtime::output {

@declarations@
const std::vector<EmbeddedCatalog>& EmbeddedCatalogs() {
  static const std::vector<EmbeddedCatalog> catalogs = {
@entries@  };
  return catalogs;
}

}  // namespace runtime::output
]])
  target_sources(${target} PRIVATE ${list})
endfunction()
