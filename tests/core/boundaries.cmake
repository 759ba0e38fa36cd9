# Architecture checks over the sources, run as a test: cmake -DROOT=<source dir> -P boundaries.cmake
#  1. core/ includes nothing outside core/: no Qt, no other layer (standard and POSIX headers only).
#  2. No band's frequency, bin count or channel centre is written outside the band plan: every
#     front-end, the engine and the tools take them from core/bandplan.
cmake_minimum_required(VERSION 3.25)
set(failures "")

file(GLOB core_files ${ROOT}/core/*.h ${ROOT}/core/*.cpp)
foreach(file IN LISTS core_files)
    file(STRINGS ${file} includes REGEX "^[ \t]*#[ \t]*include")
    foreach(line IN LISTS includes)
        if(line MATCHES "#[ \t]*include[ \t]*\"([^\"]+)\"")
            if(NOT EXISTS ${ROOT}/core/${CMAKE_MATCH_1})
                list(APPEND failures "${file}: includes \"${CMAKE_MATCH_1}\" from outside core/")
            endif()
        elseif(line MATCHES "#[ \t]*include[ \t]*<(Q[A-Za-z]*|q[a-z]+\\.h|Qt[A-Za-z]*/)")
            list(APPEND failures "${file}: includes Qt (${CMAKE_MATCH_1})")
        endif()
    endforeach()
endforeach()

if(CHECK_BAND_NUMBERS)
    # MHz figures of the bands' edges, grids and first/last channels, and their Hz forms.
    set(numbers "2399|2400|2407|2412|2472|2484|2490|2491|5150|5159|5160|5170|5180|5835|5836|5885|5895|5924|5925|5955|7115|7125")
    set(pattern "(^|[^0-9.])(${numbers})(e6|000000|\\.0)?([^0-9]|$)")
    file(GLOB_RECURSE code LIST_DIRECTORIES false
        ${ROOT}/core/*.cpp ${ROOT}/core/*.h ${ROOT}/analyzer/*.cpp ${ROOT}/analyzer/*.h
        ${ROOT}/apps/*.cpp ${ROOT}/engine/*.cpp ${ROOT}/engine/*.h ${ROOT}/desktop/*.cpp
        ${ROOT}/desktop/*.h ${ROOT}/tools/*.cpp ${ROOT}/tools/*.h ${ROOT}/bench/*.cpp
        ${ROOT}/fuzz/*.cpp ${ROOT}/tests/support/*.cpp ${ROOT}/tests/support/*.h)
    list(FILTER code EXCLUDE REGEX "/core/bandplan\\.cpp$")
    foreach(file IN LISTS code)
        file(STRINGS ${file} lines REGEX "${pattern}")
        foreach(line IN LISTS lines)
            # Comments may explain what the plan holds.
            string(REGEX REPLACE "//.*$" "" stripped "${line}")
            if(stripped MATCHES "${pattern}")
                list(APPEND failures "${file}: band number outside the band plan: ${line}")
            endif()
        endforeach()
    endforeach()
endif()

if(failures)
    list(JOIN failures "\n" text)
    message(FATAL_ERROR "${text}")
endif()
message(STATUS "boundaries hold")
