# Three Debian packages by CPack: what programs need to run, what they need to be built, and the
# widgets in Qt Designer. Build them with: cmake --workflow --preset package

string(TOLOWER ${PROJECT_NAME}${ZRVOMGUI_SUFFIX} base_name)
if(ZRVOMGUI_QT_MAJOR EQUAL 6)
    set(library_package lib${base_name}-${PROJECT_VERSION_MAJOR})
    set(qt_dev_package qt6-base-dev)
    set(designer_package designer-qt6)
else()
    set(library_package lib${base_name}${PROJECT_VERSION_MAJOR})
    set(qt_dev_package qtbase5-dev)
    set(designer_package qttools5-dev-tools)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR ${PROJECT_NAME})
set(CPACK_PACKAGE_CONTACT "The developers of ${PROJECT_NAME} <packages@zrvomgui.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
# Each package below has a summary of its own, which this one would displace.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_COMPONENTS_ALL runtime dev)
if(TARGET zrvomgui_designer)
    list(APPEND CPACK_COMPONENTS_ALL designer)
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Which packages a binary depends on is read from the binary, and says itself to those who link it.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
# A later version with the same soname serves, too.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
foreach(library IN ITEMS zrUtil zrVOM zrGUI zrVOMGUI)
    get_target_property(folder ${library} BINARY_DIR)
    list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${folder})
endforeach()

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${library_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/triggers)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "${PROJECT_DESCRIPTION}: the libraries
A model is made of objects with named fields, some of which link to other
objects. The widgets watch it and show it: as a graph in layers, as trees,
as slots and as lists of paths.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME lib${base_name}-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
    "${library_package} (= ${PROJECT_VERSION}), ${qt_dev_package} (>= ${${Qt}_OLDEST})")
set(CPACK_DEBIAN_DEV_DESCRIPTION "${PROJECT_DESCRIPTION}: to build programs
Headers, and what CMake and pkg-config need to find the libraries.")

set(CPACK_DEBIAN_DESIGNER_PACKAGE_NAME ${base_name}-designer)
set(CPACK_DEBIAN_DESIGNER_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_DESIGNER_PACKAGE_DEPENDS "${library_package} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DESIGNER_PACKAGE_ENHANCES ${designer_package})
set(CPACK_DEBIAN_DESIGNER_DESCRIPTION "${PROJECT_DESCRIPTION}: the plugin for Qt Designer
Shows the widgets among those of Qt Designer, and makes them in forms that
are loaded at run time.")

# What Debian wants in each package, and nobody in another prefix.
set(changelog ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz)
execute_process(
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/changelog.sh
            ${PROJECT_SOURCE_DIR}/CHANGELOG.md ${base_name} ${PROJECT_VERSION} ${CPACK_PACKAGE_CONTACT}
    COMMAND gzip -9n
    OUTPUT_FILE ${changelog} COMMAND_ERROR_IS_FATAL ANY)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} id)
    set(folder ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${id}_PACKAGE_NAME})
    install(FILES ${PROJECT_SOURCE_DIR}/LICENSE RENAME copyright DESTINATION ${folder}
            COMPONENT ${component} EXCLUDE_FROM_ALL)
    install(FILES ${changelog} DESTINATION ${folder} COMPONENT ${component} EXCLUDE_FROM_ALL)
endforeach()

include(CPack)
