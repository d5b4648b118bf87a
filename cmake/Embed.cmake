# codebook_embed(TARGET NAME FILE): the bytes of FILE as the function `std::string_view NAME()` of namespace
# runtime::output, declared wherever it is wanted, in a source generated for TARGET when FILE changes.
function(codebook_embed target name file)
  set(source ${CMAKE_BINARY_DIR}/embedded/${name}.cpp)
  add_custom_command(
    OUTPUT ${source}
    COMMAND ${CMAKE_COMMAND} -DNAME=${name} -DFILE=${file} -DSOURCE=${source}
            -P ${CMAKE_SOURCE_DIR}/cmake/EmbedFile.cmake
    DEPENDS ${file} ${CMAKE_SOURCE_DIR}/cmake/EmbedFile.cmake
    VERBATIM)
  target_sources(${target} PRIVATE ${source})
endfunction()
