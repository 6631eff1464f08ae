# The target docs: the API reference and the pages of docs/, in docs/html of the build folder. Any
# warning fails it.
find_program(DOXYGEN_PROGRAM doxygen)
if(DOXYGEN_PROGRAM AND PROJECT_IS_TOP_LEVEL)
    add_custom_target(docs
        COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/docs
        COMMAND ${CMAKE_COMMAND} -E env ZRVOMGUI_DOCS_FOLDER=${PROJECT_BINARY_DIR}/docs
                ZRVOMGUI_VERSION=${PROJECT_VERSION} ${DOXYGEN_PROGRAM} docs/Doxyfile
        WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
        COMMENT "Writing the API reference")
endif()
