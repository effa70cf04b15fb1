# Builds the fuzzer with clang as a project of its own and runs it for a minute as a test.
# Only the plain build does this: the fuzzer carries its own sanitizers.
if(OVRIN_SANITIZE)
    return()
endif()

# Copies of an image in the other sector layouts and in the fuzzer's compact form, for the seed
# corpus.
add_executable(ovrin-sector-image ${PROJECT_SOURCE_DIR}/fuzz/SectorImageTool.cpp
                                  ${PROJECT_SOURCE_DIR}/fuzz/SparseImage.cpp
                                  ${PROJECT_SOURCE_DIR}/tests/qmz/SectorImages.cpp)
target_include_directories(ovrin-sector-image PRIVATE ${PROJECT_SOURCE_DIR}/tests/qmz
                                                      ${PROJECT_SOURCE_DIR}/fuzz
                                                      ${PROJECT_SOURCE_DIR}/qmz)
target_link_libraries(ovrin-sector-image PRIVATE test_support)

include(ExternalProject)
set(OVRIN_FUZZ_BIN ${CMAKE_BINARY_DIR}/fuzz)
ExternalProject_Add(qmz_fuzzer_project
    SOURCE_DIR ${PROJECT_SOURCE_DIR}/fuzz
    BINARY_DIR ${OVRIN_FUZZ_BIN}
    CMAKE_ARGS -DCMAKE_CXX_COMPILER=clang++
               -DCMAKE_BUILD_TYPE=RelWithDebInfo
               -DCMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER}
    BUILD_ALWAYS ON
    INSTALL_COMMAND ""
    BUILD_BYPRODUCTS ${OVRIN_FUZZ_BIN}/qmz_fuzzer)

add_test(NAME qmz_fuzz_smoke
         COMMAND ${PROJECT_SOURCE_DIR}/fuzz/run-fuzz.sh ${OVRIN_FUZZ_BIN}/qmz_fuzzer 60
                 ${CMAKE_BINARY_DIR}/fuzz-work $<TARGET_FILE:ovrin-sector-image>)
set_tests_properties(qmz_fuzz_smoke PROPERTIES LABELS "engine;fuzz" TIMEOUT 600)
