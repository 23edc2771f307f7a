# cmake -P script: install BUILD_DIR into WORK_DIR/prefix (or take the
# tree PREFIX already holds), then build and run the consumer with
# find_package and with pkg-config.
file(REMOVE_RECURSE ${WORK_DIR})

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "failed (${result}): ${ARGN}\n${out}")
  endif()
endfunction()

if(DEFINED PREFIX)
  set(prefix ${PREFIX})
else()
  set(prefix ${WORK_DIR}/prefix)
  run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
endif()

foreach(linkage shared static)
  run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/cmake-${linkage}
      -DCMAKE_PREFIX_PATH=${prefix} -DTQL70_LINKAGE=${linkage})
  run(${CMAKE_COMMAND} --build ${WORK_DIR}/cmake-${linkage})
  run(${WORK_DIR}/cmake-${linkage}/consumer)
endforeach()

file(GLOB_RECURSE pc_file ${prefix}/tql70.pc)
get_filename_component(pc_dir ${pc_file} DIRECTORY)
set(ENV{PKG_CONFIG_PATH} ${pc_dir})
execute_process(COMMAND pkg-config --cflags --libs tql70
  OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "pkg-config does not find tql70 in ${pc_dir}")
endif()
separate_arguments(flags UNIX_COMMAND "${flags}")
execute_process(COMMAND pkg-config --variable=libdir tql70
  OUTPUT_VARIABLE libdir OUTPUT_STRIP_TRAILING_WHITESPACE)
run(${C_COMPILER} -std=c99 ${CONSUMER_DIR}/main.c ${flags} -Wl,-rpath,${libdir} -o ${WORK_DIR}/pc-consumer)
run(${WORK_DIR}/pc-consumer)
message(STATUS "installed tree builds and runs consumers (CMake shared, CMake static, pkg-config)")
