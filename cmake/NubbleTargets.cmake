# How every target of the project is compiled, and the one way to declare a library, a test and a benchmark.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_AUTOMOC ON)

find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

add_library(nubble_options INTERFACE)
target_include_directories(nubble_options INTERFACE ${CMAKE_SOURCE_DIR}/Nubble)
target_compile_definitions(nubble_options INTERFACE
    QT_USE_QSTRINGBUILDER QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH QT_NO_URL_CAST_FROM_STRING
    QT_DISABLE_DEPRECATED_BEFORE=0x060400 NUBBLE_VERSION="${PROJECT_VERSION}")
target_compile_options(nubble_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(NUBBLE_WERROR)
    target_compile_options(nubble_options INTERFACE -Werror)
endif()
if(NUBBLE_SANITIZE)
    target_compile_options(nubble_options INTERFACE -fsanitize=${NUBBLE_SANITIZE} -fno-omit-frame-pointer)
    target_link_options(nubble_options INTERFACE -fsanitize=${NUBBLE_SANITIZE})
endif()

# nubble_library(NAME SOURCES file… LINK lower-floor…)
function(nubble_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_link_libraries(${name} PUBLIC nubble_options ${ARG_LINK})
endfunction()

# nubble_display_test(NAME PROGRAM [WINDOW_MANAGER name] [NAME=VALUE…]): runs it on a display and a session bus of its own.
function(nubble_display_test name program)
    cmake_parse_arguments(ARG "" "WINDOW_MANAGER" "" ${ARGN})
    add_test(NAME ${name}
        COMMAND ${CMAKE_SOURCE_DIR}/scripts/on-private-desktop QT_QPA_PLATFORM=xcb ${ARG_UNPARSED_ARGUMENTS} $<TARGET_FILE:${program}>)
    set_tests_properties(${name} PROPERTIES LABELS display TIMEOUT 120
        ENVIRONMENT "NUBBLE_WINDOW_MANAGER=${ARG_WINDOW_MANAGER}")
endfunction()

# nubble_test(NAME [DISPLAY | ON_REQUEST] SOURCES file… LINK library… [VIA command…]): one Qt Test program. Without DISPLAY it
# never sees one. VIA is a command that runs it. ON_REQUEST: it is built, but is none of the tests that CTest runs.
function(nubble_test name)
    cmake_parse_arguments(ARG "DISPLAY;ON_REQUEST" "" "SOURCES;LINK;VIA" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
    target_link_libraries(${name} PRIVATE nubble_test_support ${ARG_LINK} Qt6::Test)
    if(ARG_DISPLAY)
        nubble_display_test(${name} ${name})
    elseif(NOT ARG_ON_REQUEST)
        add_test(NAME ${name} COMMAND ${ARG_VIA} $<TARGET_FILE:${name}>)
        set_tests_properties(${name} PROPERTIES TIMEOUT 120
            ENVIRONMENT "QT_QPA_PLATFORM=offscreen" ENVIRONMENT_MODIFICATION "DISPLAY=unset:")
    endif()
endfunction()
