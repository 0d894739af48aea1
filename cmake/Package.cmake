# What an installation has: "cmake --install FOLDER --prefix PREFIX", and with licences and bill of materials ./dev package.

set(package_libraries UserAuthService ParamStore HttpLib Logger EventAdmin)
set(package_folder lib/cmake/UserAuthService)
# What clients load carries its symbols, which the installation takes out, and no path of this machine. Its casts of functions go
# through core/EntryPoint.h.
add_library(shipped_casts INTERFACE)
add_library(shipped_paths INTERFACE)
add_library(shipped_settings INTERFACE)
target_link_libraries(shipped_settings INTERFACE project_settings shipped_casts shipped_paths)
if(NOT MSVC)
  target_compile_options(shipped_casts INTERFACE -Wcast-function-type)  # after project_settings, which switches it off
  # The last that fits counts. A compiler cache may make paths relative to the build folder: they become the same.
  file(RELATIVE_PATH above "${PROJECT_SOURCE_DIR}" "${CMAKE_BINARY_DIR}/..")
  file(RELATIVE_PATH top "${CMAKE_BINARY_DIR}" "${PROJECT_SOURCE_DIR}/.")
  string(REGEX REPLACE "/$" "" above "./${above}")
  string(REGEX REPLACE "/$" "" top "${top}")
  target_compile_options(shipped_paths INTERFACE "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=."
                                                 "-ffile-prefix-map=..=${above}" "-ffile-prefix-map=${top}=.")
  target_compile_options(shipped_settings INTERFACE -g)
endif()
foreach(target IN ITEMS ${package_libraries} userauth_objects suite_platform)
  target_link_libraries(${target} PRIVATE shipped_settings)
endforeach()
# The programs hold paths too: OpenSSL's macros write the source's into them.
foreach(target IN ITEMS userauth sandbox-server ZVAccountSdk suite-conformance suite-conformance-points)
  target_link_libraries(${target} PRIVATE shipped_paths)
endforeach()

# ./dev package builds these and no tests.
add_custom_target(package_contents DEPENDS ${package_libraries} userauth sandbox-server ZVAccountSdk suite-conformance)

install(TARGETS ${package_libraries} RUNTIME DESTINATION bin ARCHIVE DESTINATION lib)
# The conformance program takes the libraries that it does not examine from beside itself.
install(PROGRAMS "$<TARGET_FILE:userauth>" "$<TARGET_FILE:suite-conformance>" "$<TARGET_FILE:suite-conformance-points>"
        DESTINATION bin)
# The libraries' and the compiler's DLLs; with a package manager the person who packs adds its own.
install(PROGRAMS ${runtime_dlls} DESTINATION bin)
# Beside what ships, not among it: its account SDK has the name of the platform's real one.
install(PROGRAMS "$<TARGET_FILE:sandbox-server>" "$<TARGET_FILE:ZVAccountSdk>" DESTINATION sandbox)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/" "${PROJECT_SOURCE_DIR}/suite/include/" DESTINATION include)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs" DESTINATION .)
install(FILES "${PROJECT_SOURCE_DIR}/CHANGELOG.md" "${PROJECT_SOURCE_DIR}/cmake/package/README.md" DESTINATION .)

include(CMakePackageConfigHelpers)
configure_package_config_file(cmake/package/UserAuthServiceConfig.cmake.in UserAuthServiceConfig.cmake
                              INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(UserAuthServiceConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/UserAuthServiceConfig.cmake"
              "${CMAKE_CURRENT_BINARY_DIR}/UserAuthServiceConfigVersion.cmake" DESTINATION ${package_folder})

if(MINGW)
  install(CODE "set(objcopy \"${CMAKE_OBJCOPY}\")")
  install(SCRIPT "${PROJECT_SOURCE_DIR}/cmake/package/SplitSymbols.cmake")
endif()
