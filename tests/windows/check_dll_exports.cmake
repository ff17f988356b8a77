# The export table of Tarnwick.dll against tarnwick.h, with the cross
# toolchain's objdump and nm (no Windows needed):
# - every function declared in the header is exported under its plain name,
#   and nothing else is;
# - on 32-bit builds the import library binds each __stdcall name with its
#   argument bytes (_HI_add@12) to that plain export;
# - the DLL needs no runtime DLL of the compiler (libstdc++, libgcc,
#   winpthreads), only the system's;
# - no 256- or 512-bit aligned move touches memory, so no stack alignment
#   can make one fault.
#   cmake -DDLL= -DIMPLIB= -DHEADER= -DOBJDUMP= -DNM= -DSTDCALL=ON|OFF -P check_dll_exports.cmake
file(STRINGS ${HEADER} declarations REGEX "^TW_API .*TW_CALL ")
set(declared "")
foreach(line IN LISTS declarations)
  string(REGEX MATCH "TW_CALL ([A-Za-z0-9_]+)\\(" _ "${line}")
  list(APPEND declared ${CMAKE_MATCH_1})
endforeach()
list(SORT declared)

execute_process(COMMAND ${OBJDUMP} -p ${DLL} OUTPUT_VARIABLE table RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "objdump -p failed on ${DLL}")
endif()
# The [Ordinal/Name Pointer] Table lists one "[ n] name" line per export
# (brackets replaced first: they would group the elements of CMake's lists).
string(REPLACE "[" "<" table "${table}")
string(REPLACE "]" ">" table "${table}")
string(REGEX MATCH "<Ordinal/Name Pointer> Table\n([^\n]+\n)+" names "${table}")
string(REGEX MATCHALL "> [^\n]+" entries "${names}")
list(REMOVE_AT entries 0)  # "> Table" of the heading
set(exported "")
foreach(entry IN LISTS entries)
  string(SUBSTRING "${entry}" 2 -1 name)
  list(APPEND exported ${name})
endforeach()
list(SORT exported)
if(NOT exported STREQUAL declared)
  set(missing ${declared})
  list(REMOVE_ITEM missing ${exported})
  set(extra ${exported})
  list(REMOVE_ITEM extra ${declared})
  message(FATAL_ERROR "export table differs from tarnwick.h\n missing: ${missing}\n not declared: ${extra}")
endif()
list(LENGTH exported count)

string(REGEX MATCHALL "DLL Name: [^\n]+" imports "${table}")
foreach(import IN LISTS imports)
  if(import MATCHES "(libstdc|libgcc|libwinpthread|pthread)")
    message(FATAL_ERROR "Tarnwick.dll needs a compiler runtime DLL: ${import}")
  endif()
endforeach()

if(STDCALL)
  execute_process(COMMAND ${NM} ${IMPLIB} OUTPUT_VARIABLE symbols RESULT_VARIABLE rc)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "nm failed on ${IMPLIB}")
  endif()
  foreach(name IN LISTS declared)
    if(NOT symbols MATCHES " I __imp__${name}@[0-9]+\n")
      message(FATAL_ERROR "the import library does not bind a __stdcall ${name}@N to ${name}")
    endif()
  endforeach()
endif()

execute_process(COMMAND ${OBJDUMP} -d --no-show-raw-insn ${DLL} OUTPUT_VARIABLE code RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "objdump -d failed on ${DLL}")
endif()
string(REGEX MATCH "vmov(dqa|dqa32|dqa64|aps|apd)[ \t]+[^\n]*%[yz]mm[^\n]*\\(|vmov(dqa|dqa32|dqa64|aps|apd)[ \t]+[^\n]*\\([^\n]*%[yz]mm" aligned "${code}")
if(aligned)
  message(FATAL_ERROR "an aligned 256/512-bit move to or from memory: ${aligned}")
endif()

string(REPLACE "DLL Name: " "" imports "${imports}")
list(JOIN imports ", " importList)
message(STATUS "${count} exports, exactly the functions of tarnwick.h; imports: ${importList}")
