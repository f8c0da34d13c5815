# Warnings and sanitizers, as one interface target that every target of the project links privately.
add_library(qrylib_build_flags INTERFACE)

target_compile_options(
  qrylib_build_flags
  INTERFACE -Wall
            -Wextra
            -Wpedantic
            -Wconversion
            -Wshadow
            -Wcast-align
            $<$<BOOL:${QRYLIB_WARNINGS_AS_ERRORS}>:-Werror>)

if(QRYLIB_SANITIZE)
  target_compile_options(qrylib_build_flags INTERFACE -fsanitize=${QRYLIB_SANITIZE} -fno-sanitize-recover=all
                                                      -fno-omit-frame-pointer)
  target_link_options(qrylib_build_flags INTERFACE -fsanitize=${QRYLIB_SANITIZE})
  # The fences of the store serve readers in other processes, whom the thread sanitizer does not watch anyway.
  if(QRYLIB_SANITIZE MATCHES "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(qrylib_build_flags INTERFACE -Wno-tsan)
  endif()
endif()
