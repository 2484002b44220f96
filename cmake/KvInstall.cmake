# Installs the headers of the platform libraries next to the library's own, so that an
# editor built elsewhere can find_package(EditorAppUtil) and compile against the
# public headers, which include platform headers.
foreach(pair core:KvPlatformCore ui:KvPlatformUi services:KvPlatformServices model:KvPlatformModel ipc:KvPlatformIpc)
    string(REPLACE ":" ";" pair "${pair}")
    list(GET pair 0 folder)
    list(GET pair 1 target)
    if(TARGET ${target})
        target_include_directories(${target} PUBLIC
            $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/klipvane/platform/${folder}>)
        install(DIRECTORY ${PROJECT_SOURCE_DIR}/platform/${folder}/
            DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/klipvane/platform/${folder}
            FILES_MATCHING PATTERN "*.h" PATTERN "*_p.h" EXCLUDE)
    endif()
endforeach()
