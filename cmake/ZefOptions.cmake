# Compiler and linker options common to all targets.
option(ZEF_SANITIZE "AddressSanitizer and UBSan, no recovery" OFF)
option(ZEF_FUZZ "build the fuzz targets with libFuzzer (Clang)" OFF)
option(ZEF_COVERAGE "instrument for coverage" OFF)

find_program(ZEF_CCACHE ccache)
if(ZEF_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_C_COMPILER_LAUNCHER ${ZEF_CCACHE})
    set(CMAKE_CXX_COMPILER_LAUNCHER ${ZEF_CCACHE})
endif()

# libFuzzer's link plugin and GCC's LTO want the default linker; otherwise the fastest that is there.
if(NOT CMAKE_INTERPROCEDURAL_OPTIMIZATION)
    find_program(ZEF_MOLD mold)
    find_program(ZEF_LLD ld.lld)
    if(ZEF_MOLD)
        add_link_options(-fuse-ld=mold)
    elseif(ZEF_LLD)
        add_link_options(-fuse-ld=lld)
    endif()
endif()

set(CMAKE_POSITION_INDEPENDENT_CODE ON)
include(CheckPIESupported)
check_pie_supported()

add_compile_options(-fno-strict-aliasing -fvisibility=hidden -pipe)
add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,--as-needed)

# Own code only; generated and third-party sources do not link this target.
add_library(zef_warnings INTERFACE)
target_compile_options(zef_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)

if(CMAKE_BUILD_TYPE STREQUAL "Debug")
    add_compile_options(-O0 -g1)
    add_compile_definitions(_GLIBCXX_ASSERTIONS)
else()
    # Line numbers are enough to read a stack by. What nothing calls is left out; what registers itself stays.
    add_compile_options(-g1 -ffunction-sections -fdata-sections -fstack-protector-strong)
    add_link_options(-Wl,--gc-sections)
    add_compile_definitions(_GLIBCXX_ASSERTIONS)
    if(NOT ZEF_SANITIZE)
        add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
    endif()
endif()

if(ZEF_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()
if(ZEF_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all)
    add_link_options(-fsanitize=address,undefined)
endif()
if(ZEF_COVERAGE)
    add_compile_options(--coverage)
    add_link_options(--coverage)
endif()
