# codebook_page(TARGET): embeds the HTML page of runtime/output/render/html/page: skeleton, style and script. The script's
# files are modules to linters and tests; in the page they are one script, in this order, each after those it imports.
set(CODEBOOK_PAGE_SCRIPTS dom words fold grid data links pictures tables csv clipboard articles overview search list
                          controls theme keys main)

function(codebook_page target)
  set(folder ${CMAKE_SOURCE_DIR}/runtime/output/render/html/page)
  set(script ${CMAKE_BINARY_DIR}/embedded/page.js)
  list(TRANSFORM CODEBOOK_PAGE_SCRIPTS REPLACE "(.+)" "${folder}/\\1.js" OUTPUT_VARIABLE files)
  add_custom_command(
    OUTPUT ${script}
    COMMAND ${CMAKE_COMMAND} "-DFILES=${files}" -DSCRIPT=${script} -P ${CMAKE_SOURCE_DIR}/cmake/JoinScripts.cmake
    DEPENDS ${files} ${CMAKE_SOURCE_DIR}/cmake/JoinScripts.cmake
    VERBATIM)
  codebook_embed(${target} PageSkeleton ${folder}/page.html)
  codebook_embed(${target} PageStyle ${folder}/page.css)
  codebook_embed(${target} PageScript ${script})
endfunction()
