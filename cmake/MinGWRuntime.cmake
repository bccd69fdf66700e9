# The C++ runtime DLLs travel with the binaries, as they would on a Windows machine.
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libstdc++-6.dll
                OUTPUT_VARIABLE _libstdcxx OUTPUT_STRIP_TRAILING_WHITESPACE)
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libgcc_s_seh-1.dll
                OUTPUT_VARIABLE _libgcc OUTPUT_STRIP_TRAILING_WHITESPACE)
find_file(_libwinpthread libwinpthread-1.dll PATHS /usr/${TOOLCHAIN_PREFIX}/lib NO_DEFAULT_PATH REQUIRED)
set(DSTY_RUNTIME_DLLS ${_libstdcxx} ${_libgcc} ${_libwinpthread})
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
foreach(dll ${DSTY_RUNTIME_DLLS})
  file(COPY ${dll} DESTINATION ${CMAKE_BINARY_DIR}/bin)
endforeach()
