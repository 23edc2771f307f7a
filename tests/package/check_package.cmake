# cmake -P script: cpack the build into WORK_DIR, check each package's name,
# dependencies and files, unpack all three with dpkg -x into WORK_DIR/root,
# run the unpacked tql, then hand the root to the install check's consumer.
file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR}/root)

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "failed (${result}): ${ARGN}\n${out}")
  endif()
  set(out "${out}" PARENT_SCOPE)
endfunction()

function(expect text pattern what)
  if(NOT text MATCHES "${pattern}")
    message(FATAL_ERROR "${what}: '${pattern}' not found in\n${text}")
  endif()
endfunction()

run(${CPACK} -G DEB -B ${WORK_DIR}/debs --config ${BUILD_DIR}/CPackConfig.cmake)
string(REGEX MATCH "^[0-9]+" major ${VERSION})

# package name -> a dependency it must declare -> a file it must hold
set(checks
  "libtql70-${major}|libqt6core6|/lib/[^ \n]*libtql70\\.so\\.${major} "
  "libtql70-${major}|libsodium23|/lib/[^ \n]*libtql70\\.so\\.${VERSION}"
  "libtql70-dev|libtql70-${major} \\(= ${VERSION}\\)|/include/tql70/tql70\\.h"
  "libtql70-dev|qt6-base-dev|/lib/[^ \n]*libtql70\\.so -> "
  "libtql70-dev|libsodium-dev|/lib/[^ \n]*libtql70\\.a"
  "libtql70-dev|qt6-base-dev|tql70\\.pc"
  "libtql70-dev|qt6-base-dev|tql70Config\\.cmake"
  "tql70-tools|libsodium23|/bin/tql\n"
  "tql70-tools|libqt6core6|/share/man/man1/tql\\.1"
  "tql70-tools|libqt6core6|/bash-completion/completions/tql\n")
foreach(check ${checks})
  string(REPLACE "|" ";" parts "${check}")
  list(GET parts 0 package)
  list(GET parts 1 dependency)
  list(GET parts 2 file)
  file(GLOB deb ${WORK_DIR}/debs/${package}_${VERSION}_*.deb)
  if(NOT deb)
    message(FATAL_ERROR "no ${package}_${VERSION} package in ${WORK_DIR}/debs")
  endif()
  run(dpkg-deb -f ${deb} Depends)
  expect("${out}" "${dependency}" "${package} Depends")
  run(dpkg-deb -c ${deb})
  expect("${out}\n" "${file}" "${package} files")
endforeach()

# The library package holds nothing a -dev package should.
file(GLOB runtime_deb ${WORK_DIR}/debs/libtql70-${major}_*.deb)
run(dpkg-deb -c ${runtime_deb})
if(out MATCHES "include/|\\.a\n|libtql70\\.so -> |\\.pc\n")
  message(FATAL_ERROR "libtql70-${major} holds development files:\n${out}")
endif()

file(GLOB debs ${WORK_DIR}/debs/*.deb)
foreach(deb ${debs})
  run(dpkg -x ${deb} ${WORK_DIR}/root)
endforeach()

# The unpacked tql runs on the unpacked library and tells its version.
file(GLOB_RECURSE so_file ${WORK_DIR}/root/usr/libtql70.so.${major})
get_filename_component(libdir ${so_file} DIRECTORY)
execute_process(COMMAND ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${libdir}
  ${WORK_DIR}/root/usr/bin/tql version
  RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "the unpacked tql version failed (${result}): ${out}")
endif()
expect("${out}" "^${VERSION} " "tql version")

execute_process(COMMAND ${CMAKE_COMMAND} -DPREFIX=${WORK_DIR}/root/usr
    -DCONSUMER_DIR=${CONSUMER_DIR} -DWORK_DIR=${WORK_DIR}/consumer
    -DC_COMPILER=${C_COMPILER} -P ${CHECK_INSTALL}
  RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "the consumer does not build or run against the unpacked packages")
endif()
message(STATUS "three packages unpack into a root that builds and runs consumers")
