# Headers compiled once for many sources: only those of the toolkit and of the standard library,
# because ours change. Each source includes all that it uses and compiles without them too; a build
# with VANTOR_PRECOMPILED=OFF shows it.
option(VANTOR_PRECOMPILED "Compile the headers of Qt and of the standard library once" ON)

# The headers that most sources include. Whole modules would take longer to load than they save.
set(standard_headers <algorithm> <array> <atomic> <chrono> <condition_variable> <functional> <memory>
    <mutex> <optional> <span> <stop_token> <string> <thread> <vector> <tl/expected.hpp>)
set(core_headers ${standard_headers} <QByteArray> <QDateTime> <QDir> <QFile> <QHash> <QJsonObject>
    <QList> <QObject> <QPointer> <QSet> <QString> <QStringList> <QTimer> <QVariant>)
set(widget_headers ${core_headers} <QAbstractButton> <QApplication> <QIcon> <QLabel> <QMouseEvent>
    <QPainter> <QPainterPath> <QPixmap> <QScrollArea> <QVBoxLayout> <QWidget>)

# Qt defines macros for each test: the test's folder, for a search for data that our tests never
# make, and whether the test may print values of the network, which ours never compare. Headers that
# are compiled for all tests need the same macros in all of them.
set(same_in_all -UQT_TESTCASE_BUILDDIR -UQT_TESTCASE_SOURCEDIR -UQT_NETWORK_LIB)

# Makes a set of headers for vantor_precompile(): a library that holds nothing else.
function(vantor_precompiled_headers set)
    cmake_parse_arguments(ARG "" "" "LINKS;HEADERS" ${ARGN})
    if(NOT VANTOR_PRECOMPILED)
        return()
    endif()
    set(empty ${PROJECT_BINARY_DIR}/precompiled/${set}.cpp)
    file(CONFIGURE OUTPUT ${empty} CONTENT "// The headers alone.\n")
    add_library(vantor_precompiled_${set} OBJECT ${empty})
    set_target_properties(vantor_precompiled_${set} PROPERTIES AUTOMOC OFF)
    target_compile_options(vantor_precompiled_${set} PRIVATE ${same_in_all})
    target_link_libraries(vantor_precompiled_${set} PRIVATE vantor_options ${ARG_LINKS})
    target_precompile_headers(vantor_precompiled_${set} PRIVATE ${ARG_HEADERS})
endfunction()

vantor_precompiled_headers(core LINKS Qt6::Core tl::expected HEADERS ${core_headers})
vantor_precompiled_headers(widgets LINKS Qt6::Widgets tl::expected HEADERS ${widget_headers})
vantor_precompiled_headers(core_tests LINKS Qt6::Core Qt6::Test tl::expected
    HEADERS <QSignalSpy> <QTest> ${core_headers})
vantor_precompiled_headers(widget_tests LINKS Qt6::Widgets Qt6::Test tl::expected
    HEADERS <QSignalSpy> <QTest> ${widget_headers})

# vantor_precompile(TARGET SET): the target's sources are compiled with this set of headers.
function(vantor_precompile target set)
    if(VANTOR_PRECOMPILED)
        target_compile_options(${target} PRIVATE ${same_in_all})
        target_precompile_headers(${target} REUSE_FROM vantor_precompiled_${set})
    endif()
endfunction()
