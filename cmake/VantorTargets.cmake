# vantor_room([CORE] LINKS ...): all sources of this folder become one static library of the house,
# called after the folder: platform/system is vantor_platform_system. It may include only what it
# links; tests/lint holds it to that. CORE: Qt Core at most, no widget.
# A source called X_linux.cpp belongs to it where the system is called so (CMAKE_SYSTEM_NAME in small
# letters); to bring it to another system means to add such files.
function(vantor_room)
    cmake_parse_arguments(ARG "CORE" "" "LINKS" ${ARGN})
    file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
    string(REPLACE "/" "_" name "vantor_${folder}")
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
    list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
    set(of_this_system ${sources})
    list(FILTER of_this_system INCLUDE REGEX "_${VANTOR_SYSTEM}\\.cpp$")
    list(FILTER sources EXCLUDE REGEX "_[a-z0-9]+\\.cpp$")
    add_library(${name} STATIC ${sources} ${of_this_system})
    target_link_libraries(${name} PUBLIC vantor_options ${ARG_LINKS})
endfunction()

# vantor_tests(LINKS ... [GUI] [ONLY tst_A tst_B ...]): every tst_*.cpp of this folder becomes one
# test of that name, but for those that an earlier call with ONLY has named.
# A test never sees the user's own bus, display or settings; tests/support makes it a home of its own.
function(vantor_tests)
    cmake_parse_arguments(ARG "GUI" "" "LINKS;ONLY" ${ARGN})
    file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR}/tests ${CMAKE_CURRENT_SOURCE_DIR})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/tst_*.cpp)
    foreach(source ${sources})
        get_filename_component(name ${source} NAME_WE)
        if(TARGET ${name} OR (ARG_ONLY AND NOT name IN_LIST ARG_ONLY))
            continue()
        endif()
        add_executable(${name} ${source})
        set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
        target_link_libraries(${name} PRIVATE vantor_options ${ARG_LINKS} Qt6::Test
            $<IF:$<BOOL:${ARG_GUI}>,vantor_test_support_gui,vantor_test_support>)
        add_test(NAME ${folder}/${name} COMMAND ${name})
        set_tests_properties(${folder}/${name} PROPERTIES TIMEOUT 240 ENVIRONMENT
            "QT_QPA_PLATFORM=offscreen;DBUS_SESSION_BUS_ADDRESS=disabled:;LANG=C.UTF-8;LC_ALL=C.UTF-8;QTWEBENGINE_DISABLE_SANDBOX=1;TSAN_OPTIONS=die_after_fork=0:suppressions='${PROJECT_SOURCE_DIR}/tests/support/tsan.supp';LSAN_OPTIONS=print_suppressions=0:suppressions='${PROJECT_SOURCE_DIR}/tests/support/lsan.supp'")
    endforeach()
endfunction()
