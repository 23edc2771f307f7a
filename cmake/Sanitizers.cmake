# Applies the sanitizers named in TQL70_SANITIZE to every target of the build.
if(TQL70_SANITIZE)
  if(TQL70_SANITIZE MATCHES "thread" AND TQL70_SANITIZE MATCHES "address")
    message(FATAL_ERROR "ThreadSanitizer cannot be combined with AddressSanitizer")
  endif()
  set(_tql70_san_flags -fsanitize=${TQL70_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_compile_options(${_tql70_san_flags})
  # GCC's flow analysis sees the instrumented code and reports uninitialised
  # reads that cannot happen (std::function inside std::regex); the plain
  # build keeps the warning for our own code.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-Wno-maybe-uninitialized)
  endif()
  add_link_options(${_tql70_san_flags})
endif()
