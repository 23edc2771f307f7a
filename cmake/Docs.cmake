# The API reference: the docs target runs Doxygen over include/tql70/ into
# <build>/docs/html, one page per header, failing on any warning. Present
# only when Doxygen is found.
find_package(Doxygen QUIET)
find_program(TQL70_PERL perl)
if(DOXYGEN_FOUND AND TQL70_PERL)
  set(TQL70_DOCS_OUTPUT ${PROJECT_BINARY_DIR}/docs)
  configure_file(docs/Doxyfile.in ${TQL70_DOCS_OUTPUT}/Doxyfile @ONLY)
  add_custom_target(docs
    COMMAND ${DOXYGEN_EXECUTABLE} ${TQL70_DOCS_OUTPUT}/Doxyfile
    WORKING_DIRECTORY ${TQL70_DOCS_OUTPUT}
    COMMENT "API reference in ${TQL70_DOCS_OUTPUT}/html"
    VERBATIM)
endif()
