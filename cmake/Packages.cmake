# Debian packages by `cpack`: the shared library, what a developer needs beside it, and the command line.

find_program(TALIBIS_GZIP gzip REQUIRED)
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_CONTACT "talibis maintainers <maintainers@talibis.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL library dev tool)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_COMPONENT_DEV_DEPENDS library)

set(soname_package "libtalibis${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME "${soname_package}")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "Reads, checks and queries IBIS model files - shared library
 Component files, package models, board descriptions and parameter files of
 algorithmic models are held against the rules of the version that they
 declare, kept in memory, and answer questions about their contents.")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
file(WRITE "${PROJECT_BINARY_DIR}/package/triggers" "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA "${PROJECT_BINARY_DIR}/package/triggers")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libtalibis-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_DESCRIPTION "Reads, checks and queries IBIS model files - development files
 Headers, the static library, and what CMake and pkg-config need to find them.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME talibis)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_TOOL_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOL_DESCRIPTION "Checks IBIS signal-integrity model files
 Tells what is wrong with the models of a chip, a package or a board, why a
 simulator cares, and how to mend it; shows and exports what is in a file.")

# Each package carries the licence and the list of changes.
file(READ LICENSE licence)
string(REGEX REPLACE "^MIT License\n+" "" licence "${licence}")
file(WRITE "${PROJECT_BINARY_DIR}/package/copyright" "License: MIT\n\n${licence}")
string(TIMESTAMP package_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
foreach(component IN ITEMS LIBRARY DEV TOOL)
    string(TOLOWER "${component}" component_name)
    set(name "${CPACK_DEBIAN_${component}_PACKAGE_NAME}")
    set(folder "${PROJECT_BINARY_DIR}/package/${component_name}")
    file(WRITE "${folder}/changelog"
        "${name} (${PROJECT_VERSION}) unstable; urgency=medium\n\n"
        "  * See CHANGELOG.md of the sources.\n\n"
        " -- ${CPACK_PACKAGE_CONTACT}  ${package_date}\n")
    execute_process(COMMAND "${TALIBIS_GZIP}" -9nf "${folder}/changelog")
    install(FILES "${folder}/changelog.gz" "${PROJECT_BINARY_DIR}/package/copyright"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${name}" COMPONENT ${component_name})
endforeach()

include(CPack)
