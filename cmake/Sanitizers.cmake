# CODEBOOK_SANITIZE: a list for -fsanitize, such as "address,undefined" or "thread".
set(CODEBOOK_SANITIZE "" CACHE STRING "Sanitizers to build with")
if(CODEBOOK_SANITIZE)
  add_compile_options(-fsanitize=${CODEBOOK_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${CODEBOOK_SANITIZE})
endif()

option(CODEBOOK_COVERAGE "Build for coverage figures" OFF)
if(CODEBOOK_COVERAGE)
  add_compile_options(--coverage -O0)
  add_link_options(--coverage)
endif()
