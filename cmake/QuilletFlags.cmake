# Every flag of the project hangs on this one target.
add_library(quillet_flags INTERFACE)
add_library(quillet::flags ALIAS quillet_flags)

target_compile_features(quillet_flags INTERFACE cxx_std_20)
target_include_directories(quillet_flags INTERFACE "${CMAKE_SOURCE_DIR}")
target_compile_options(
    quillet_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
                            $<$<BOOL:${QUILLET_WERROR}>:-Werror>)

if(QUILLET_SANITIZE)
    target_compile_options(quillet_flags INTERFACE -fsanitize=address,undefined
                                                   -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(quillet_flags INTERFACE -fsanitize=address,undefined)
endif()

if(QUILLET_FUZZ)
    # Guided by coverage, and told which lines it has reached.
    target_compile_options(quillet_flags INTERFACE -fsanitize=fuzzer-no-link
                                                   -fprofile-instr-generate -fcoverage-mapping)
    target_link_options(quillet_flags INTERFACE -fprofile-instr-generate)
endif()

if(WIN32)
    # UTF-16 system calls, and a Windows 10 API surface.
    target_compile_definitions(quillet_flags INTERFACE UNICODE _UNICODE NOMINMAX
                                                       WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00)
endif()

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
