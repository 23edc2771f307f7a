# libb64's encoder and decoder are part of the tql70 interface. The objects of
# Debian's static archive (position independent) are extracted at build time
# and compiled into both the shared and the static library, so a program that
# links only tql70 can call the seven base64_* functions.
find_library(TQL70_B64_ARCHIVE NAMES libb64.a REQUIRED)
set(TQL70_B64_DIR "${CMAKE_BINARY_DIR}/libb64-objects")
set(TQL70_B64_OBJECTS "${TQL70_B64_DIR}/cencode.o" "${TQL70_B64_DIR}/cdecode.o")
file(MAKE_DIRECTORY "${TQL70_B64_DIR}")
add_custom_command(
  OUTPUT ${TQL70_B64_OBJECTS}
  COMMAND ${CMAKE_AR} x "${TQL70_B64_ARCHIVE}" cencode.o cdecode.o
  WORKING_DIRECTORY "${TQL70_B64_DIR}"
  DEPENDS "${TQL70_B64_ARCHIVE}"
  COMMENT "Extracting libb64 objects"
  VERBATIM)
set_source_files_properties(${TQL70_B64_OBJECTS} PROPERTIES EXTERNAL_OBJECT TRUE GENERATED TRUE)
