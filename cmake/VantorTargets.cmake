# vantor_room([CORE] LINKS ... [NO_WIDGETS]): makes one static library of all sources of this
# folder, named after the folder: platform/system is vantor_platform_system. It may include only
# what it links; tests/lint checks this. CORE: Qt Core at most, no widget. NO_WIDGETS: no engine,
# but it links no widgets either. A source named X_linux.cpp belongs to the library only on the
# system of that name (CMAKE_SYSTEM_NAME in small letters); to port the room to another system means
# to add such files.
function(vantor_room)
    cmake_parse_arguments(ARG "CORE;NO_WIDGETS" "" "LINKS" ${ARGN})
    file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
    string(REPLACE "/" "_" name "vantor_${folder}")
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
    list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
    set(of_this_system ${sources})
    list(FILTER of_this_system INCLUDE REGEX "_${VANTOR_SYSTEM}\\.cpp$")
    list(FILTER sources EXCLUDE REGEX "_[a-z0-9]+\\.cpp$")
    add_library(${name} STATIC ${sources} ${of_this_system})
    target_link_libraries(${name} PUBLIC vantor_options ${ARG_LINKS})
    set_target_properties(${name} PROPERTIES VANTOR_CORE ${ARG_CORE})
    if(ARG_CORE OR ARG_NO_WIDGETS)
        vantor_precompile(${name} core)
    else()
        vantor_precompile(${name} widgets)
    endif()
endfunction()

# Seconds until a test is given up. The sanitizers make it several times as slow.
set(VANTOR_TEST_TIMEOUT 240)
if(VANTOR_SANITIZE)
    set(VANTOR_TEST_TIMEOUT 960)
endif()

# Targets for a run of only some tests: each builds the tests with the ctest label of its name.
add_custom_target(fast-tests)
add_custom_target(engine-tests)

# vantor_test_labels(VARIABLE folder [SLOW] [GUI]): sets "fast" unless the tests are SLOW, and
# "engine" for tests of a CORE room without widgets, which run under the sanitizers.
function(vantor_test_labels variable folder)
    cmake_parse_arguments(ARG "GUI;SLOW" "" "" ${ARGN})
    string(REPLACE "/" "_" room "vantor_${folder}")
    set(labels)
    if(NOT ARG_SLOW)
        list(APPEND labels fast)
    endif()
    if(TARGET ${room} AND NOT ARG_GUI)
        get_target_property(is_core ${room} VANTOR_CORE)
        if(is_core)
            list(APPEND labels engine)
        endif()
    endif()
    set(${variable} "${labels}" PARENT_SCOPE)
endfunction()

# Runs moc for the one file of a test, which includes the result. CMake's own way scans each target
# and compiles a second file for each, which is empty for tests: a third of the whole build.
function(vantor_moc_of_test name source)
    set_target_properties(${name} PROPERTIES AUTOMOC OFF)
    file(STRINGS ${source} included REGEX "^#include \"${name}\\.moc\"")
    if(included)
        set(result ${CMAKE_CURRENT_BINARY_DIR}/${name}.moc)
        qt_generate_moc(${source} ${result} TARGET ${name})
        target_sources(${name} PRIVATE ${result})
        target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_BINARY_DIR})
    endif()
endfunction()

# vantor_tests(LINKS ... [GUI] [SLOW] [ONLY tst_A tst_B ...]): makes one test of each tst_*.cpp of
# this folder, named after the file, except those that an earlier call with ONLY has named. SLOW
# tests drive the whole program or the web engine; ./test --fast leaves them out. A test never sees
# the user's own bus, display or settings; tests/support makes a separate home for it.
function(vantor_tests)
    cmake_parse_arguments(ARG "GUI;SLOW" "" "LINKS;ONLY" ${ARGN})
    file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR}/tests ${CMAKE_CURRENT_SOURCE_DIR})
    vantor_test_labels(labels ${folder} ${ARGN})
    set(support vantor_test_support)
    set(headers core_tests)
    if(ARG_GUI)
        set(support vantor_test_support_gui)
        set(headers widget_tests)
    endif()
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/tst_*.cpp)
    foreach(source ${sources})
        get_filename_component(name ${source} NAME_WE)
        if(TARGET ${name} OR (ARG_ONLY AND NOT name IN_LIST ARG_ONLY))
            continue()
        endif()
        add_executable(${name} ${source})
        vantor_moc_of_test(${name} ${source})
        set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
        target_link_libraries(${name} PRIVATE vantor_options ${ARG_LINKS} Qt6::Test ${support})
        vantor_precompile(${name} ${headers})
        add_test(NAME ${folder}/${name} COMMAND ${name})
        set_tests_properties(${folder}/${name} PROPERTIES LABELS "${labels}" TIMEOUT ${VANTOR_TEST_TIMEOUT} ENVIRONMENT
            "QT_QPA_PLATFORM=offscreen;DBUS_SESSION_BUS_ADDRESS=disabled:;LANG=C.UTF-8;LC_ALL=C.UTF-8;QTWEBENGINE_DISABLE_SANDBOX=1;TSAN_OPTIONS=die_after_fork=0:suppressions='${PROJECT_SOURCE_DIR}/tests/support/tsan.supp';LSAN_OPTIONS=print_suppressions=0:suppressions='${PROJECT_SOURCE_DIR}/tests/support/lsan.supp'")
        foreach(label ${labels})
            add_dependencies(${label}-tests ${name})
        endforeach()
    endforeach()
endfunction()
