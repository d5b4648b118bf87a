# Warnings are errors, for our own code only.
function(codebook_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
                                           -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast -Werror)
  # GCC 12 at -O3 warns of an overlap within std::string's own operator+ (GCC bug 105651); the code is sound.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(${target} PRIVATE -Wno-restrict)
  endif()
endfunction()
