# Writes the module-definition file of Tarnwick.dll from the declarations of
# include/tarnwick.h, the one list of exported functions.
#   cmake -DHEADER=tarnwick.h -DOUTPUT=Tarnwick.def -DSTDCALL=ON|OFF -P windows_def.cmake
# On 32-bit Windows every function is __stdcall and its object-file name
# carries the bytes of its arguments (HI_add@12); the file lists those names,
# the linker (--kill-at) exports them under the plain name (HI_add) and
# dlltool -k makes the import library that binds the one to the other.  A
# wrong byte count fails the link, so the header and the objects must agree.
file(STRINGS ${HEADER} declarations REGEX "^TW_API .*TW_CALL ")
set(exports "")
set(count 0)
foreach(line IN LISTS declarations)
  if(NOT line MATCHES "TW_CALL ((HI|HX|RC|TW)_[A-Za-z0-9_]+)\\(([^)]*)\\);")
    message(FATAL_ERROR "unexpected declaration in ${HEADER}: ${line}")
  endif()
  set(name ${CMAKE_MATCH_1})
  set(parameters ${CMAKE_MATCH_3})
  if(STDCALL)
    # Arguments are pushed in 4-byte slots: 64-bit integers take two, every
    # other argument (pointers, 32-bit and smaller integers) one.
    set(bytes 0)
    if(NOT parameters STREQUAL "void")
      string(REPLACE "," ";" parameters "${parameters}")
      foreach(parameter IN LISTS parameters)
        if(parameter MATCHES "int64_t" AND NOT parameter MATCHES "\\*")
          math(EXPR bytes "${bytes} + 8")
        else()
          math(EXPR bytes "${bytes} + 4")
        endif()
      endforeach()
    endif()
    string(APPEND exports "  ${name}@${bytes}\n")
  else()
    string(APPEND exports "  ${name}\n")
  endif()
  math(EXPR count "${count} + 1")
endforeach()
if(count EQUAL 0)
  message(FATAL_ERROR "no exported functions found in ${HEADER}")
endif()
set(text "LIBRARY Tarnwick.dll\nEXPORTS\n${exports}")
# Rewritten only when it changes, so that an edit of a comment relinks nothing.
if(EXISTS ${OUTPUT})
  file(READ ${OUTPUT} old)
endif()
if(NOT old STREQUAL text)
  file(WRITE ${OUTPUT} "${text}")
endif()
