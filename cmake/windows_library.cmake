# Tarnwick.dll: exports by plain name from a module-definition file made from
# tarnwick.h at build time, no dependence on the compiler's runtime DLLs.
set(TARNWICK_DEF ${PROJECT_BINARY_DIR}/Tarnwick.def)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(TARNWICK_STDCALL ON)
else()
  set(TARNWICK_STDCALL OFF)
endif()
add_custom_command(OUTPUT ${TARNWICK_DEF}
  COMMAND ${CMAKE_COMMAND} -DHEADER=${PROJECT_SOURCE_DIR}/include/tarnwick.h
          -DOUTPUT=${TARNWICK_DEF} -DSTDCALL=${TARNWICK_STDCALL}
          -P ${PROJECT_SOURCE_DIR}/cmake/windows_def.cmake
  DEPENDS ${PROJECT_SOURCE_DIR}/include/tarnwick.h ${PROJECT_SOURCE_DIR}/cmake/windows_def.cmake
  COMMENT "Export list of Tarnwick.dll from tarnwick.h" VERBATIM)
target_sources(tarnwick PRIVATE ${TARNWICK_DEF})
set_target_properties(tarnwick PROPERTIES OUTPUT_NAME Tarnwick PREFIX "")
# libstdc++, libgcc and winpthreads linked in; nothing but the .def exported
# (no export of every global, which mingw's linker does without a list).
target_link_options(tarnwick PRIVATE -static -Wl,--exclude-all-symbols)
if(TARNWICK_STDCALL)
  # The linker writes its own import library, which binds the plain names a
  # caller cannot ask for; dlltool's binds HI_add@12 to the export HI_add.
  target_link_options(tarnwick PRIVATE -Wl,--kill-at)
  add_custom_command(TARGET tarnwick POST_BUILD
    COMMAND ${CMAKE_DLLTOOL} --kill-at --input-def ${TARNWICK_DEF} --dllname Tarnwick.dll
            --output-lib $<TARGET_LINKER_FILE:tarnwick>
    COMMENT "Import library of Tarnwick.dll for __stdcall callers" VERBATIM)
endif()
# 64-bit Windows aligns the stack to 16 bytes only and GCC cannot realign it
# there for a 256- or 512-bit spill; 32-bit Windows callers may pass a stack
# aligned to 4 bytes (GCC realigns there, as mingw assumes).  Every aligned
# vector move is assembled as its unaligned twin (the same speed on aligned
# data), so no spill can fault whatever the compiler assumed.
target_compile_options(tarnwick_objects PRIVATE -Wa,-muse-unaligned-vector-move)
