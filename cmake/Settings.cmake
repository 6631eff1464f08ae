# What every target of this project is built with.

option(ZRVOMGUI_TESTS "Build the tests" ${PROJECT_IS_TOP_LEVEL})
option(ZRVOMGUI_BENCH "Build the benchmarks" ${PROJECT_IS_TOP_LEVEL})
option(ZRVOMGUI_EXAMPLES "Build the examples" ${PROJECT_IS_TOP_LEVEL})
option(ZRVOMGUI_FUZZ "Build the fuzz targets; takes clang" OFF)
option(ZRVOMGUI_INSTALL "Install the libraries with the project" ${PROJECT_IS_TOP_LEVEL})
# For those who change the code, as the presets do that test it. Whoever only builds it may have a newer
# compiler, with warnings that nobody has seen yet.
option(ZRVOMGUI_WERROR "Treat warnings in our code as errors" OFF)

# Qt 5 is what this library is made for and described with; Qt 6 gives the same widgets. Qt's targets
# are named by ${Qt}, as in ${Qt}::Widgets.
set(ZRVOMGUI_QT_MAJOR 5 CACHE STRING "The major version of Qt: 5 or 6")
set_property(CACHE ZRVOMGUI_QT_MAJOR PROPERTY STRINGS 5 6)
set(Qt Qt${ZRVOMGUI_QT_MAJOR})
set(Qt5_OLDEST 5.15)
set(Qt6_OLDEST 6.4)

# What is installed for Qt 6 has names of its own, and stands beside what is for Qt 5.
set(ZRVOMGUI_SUFFIX "")
if(ZRVOMGUI_QT_MAJOR EQUAL 6)
    set(ZRVOMGUI_SUFFIX -qt6)
endif()

# As part of another project the choice is that project's.
if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "" FORCE)
endif()

include(GNUInstallDirs)
set(ZRVOMGUI_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR})
if(ZRVOMGUI_SUFFIX)
    string(APPEND ZRVOMGUI_INCLUDE_DIR /zrVOMGUI${ZRVOMGUI_SUFFIX})
endif()

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
# No class for moc depends on a macro of the compiler, and asking for them takes as long as moc itself.
set(CMAKE_AUTOMOC_COMPILER_PREDEFINES OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

# The warnings of our own code; Qt's headers are system headers and stay silent.
add_library(zrvomgui_warnings INTERFACE)
target_compile_options(zrvomgui_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
    $<$<BOOL:${ZRVOMGUI_WERROR}>:-Werror>)
