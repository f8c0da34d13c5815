# Runs the benchmark's statements for their instructions to be counted.
add_executable(counted ${PROJECT_SOURCE_DIR}/bench/counted.cpp ${PROJECT_SOURCE_DIR}/bench/library.cpp
                       ${PROJECT_SOURCE_DIR}/bench/statements.cpp)
target_link_libraries(counted PRIVATE qrylib qryplatform qrylib_build_flags)
target_include_directories(counted PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
