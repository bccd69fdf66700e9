# Installs the build into a fresh prefix, configures and builds tests/package against it with
# the same toolchain, and runs what it built under Wine: a file missing from the install, or a
# target the package does not export as it should, fails here as it would fail a user.
#   cmake -DBUILD=... -DSOURCE=... -DWORK=... -DTOOLCHAIN=... -DRUN=... -DCPACK=... -P ConsumePackage.cmake
function(step)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  message(STATUS "${out}${err}")
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGN}")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK})
set(prefix ${WORK}/prefix)
step(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})
foreach(needed bin/dsty.dll bin/DirectSndty.dll bin/SndDataty.dll bin/WaveFilety.dll bin/libmfcsubset.dll
               bin/libstdc++-6.dll lib/dsty.lib lib/DirectSndty.lib include/dsty.h include/DirectSndty/DirectSndty.h
               lib/cmake/DirectSndty/DirectSndtyConfig.cmake lib/cmake/DirectSndty/DirectSndtyConfigVersion.cmake)
  if(NOT EXISTS ${prefix}/${needed})
    message(FATAL_ERROR "the install lacks ${needed}")
  endif()
endforeach()
file(GLOB_RECURSE leaked RELATIVE ${prefix} ${prefix}/*test* ${prefix}/*gtest* ${prefix}/*tap*)
if(leaked)
  message(FATAL_ERROR "test code was installed: ${leaked}")
endif()

step(${CMAKE_COMMAND} -S ${SOURCE}/tests/package -B ${WORK}/build -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN}
     -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_BUILD_TYPE=Release)
step(${CMAKE_COMMAND} --build ${WORK}/build)
# The programs find the package's DLLs on Wine's path.
string(REPLACE "/" "\\" bin "Z:${prefix}/bin")
set(ENV{WINEPATH} "${bin}")
string(REPLACE "/" "\\" recording "Z:${WORK}/example.wav")
step(${RUN} ${WORK}/build/dsty_example.exe ${recording})
step(${RUN} ${WORK}/build/cpp_host.exe)
if(NOT EXISTS ${WORK}/example.wav)
  message(FATAL_ERROR "the C example left no recording")
endif()
step(${CPACK} -G ZIP -B ${WORK}/archive --config ${BUILD}/CPackConfig.cmake)
file(GLOB archive ${WORK}/archive/DirectSndty-*-win64.zip)
if(NOT archive)
  message(FATAL_ERROR "cpack made no DirectSndty-<version>-win64.zip")
endif()
message(STATUS "the installed package builds a C and a C++ host, both run, and packs as ${archive}")
