# Warnings are errors, for our own code only.
function(codebook_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
                                           -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast -Werror)
endfunction()
