# cmake -DFILES=a.js;b.js -DSCRIPT=… -P JoinScripts.cmake: joins modules to one script (see Page.cmake). Imports are one
# line each and name only files of the list; what is exported is known to all that follow.
set(joined "")
foreach(file IN LISTS FILES)
  file(READ "${file}" text)
  string(REGEX REPLACE "(^|\n)import {[^\n]*} from '[^\n]*';" "\\1" text "${text}")
  string(REGEX REPLACE "(^|\n)export " "\\1" text "${text}")
  if(text MATCHES "(^|\n)(import|export)")
    message(FATAL_ERROR "${file}: an import or export that JoinScripts.cmake does not read")
  endif()
  string(APPEND joined "${text}\n")
endforeach()
file(WRITE "${SCRIPT}" "\n'use strict';\n(() => {\n${joined}})();\n")
