# Settings of every target of the project: warnings as errors, hardening, the version resource.

add_library(project_settings INTERFACE)
target_include_directories(project_settings INTERFACE "${PROJECT_SOURCE_DIR}/suite/include" "${PROJECT_SOURCE_DIR}/include")
target_compile_definitions(project_settings INTERFACE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00
                           # The service calls the 1.1 interface; 3.x builds it too and must not warn about it.
                           OPENSSL_API_COMPAT=0x10100000L)
if(MSVC)
  # Standard-library types cross the borders of the suite's DLLs: one DLL frees what another allocated, and so all must share
  # one C runtime. The flags count too, and a static triplet of the package manager decides the runtime by itself.
  string(TOUPPER "${CMAKE_BUILD_TYPE}" build_type)
  if((CMAKE_MSVC_RUNTIME_LIBRARY AND NOT CMAKE_MSVC_RUNTIME_LIBRARY MATCHES "DLL$")
     OR "${CMAKE_C_FLAGS} ${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${build_type}} " MATCHES "[/-]MTd? "
     OR VCPKG_CRT_LINKAGE STREQUAL "static"
     OR (VCPKG_TARGET_TRIPLET MATCHES "-static" AND NOT VCPKG_TARGET_TRIPLET MATCHES "-static-md"))
    message(FATAL_ERROR "A static C runtime (/MT) gives each DLL a heap of its own, but strings and maps of the standard "
                        "library cross our DLL borders: build with /MD.")
  endif()
  # C4251: exported classes hold standard-library members; suite and host are built with one compiler and runtime.
  # /sdl makes the compiler generate __autoclassinit2.
  target_compile_options(project_settings INTERFACE /W4 /WX /wd4251 /sdl /utf-8 /guard:cf /permissive-
                         # Without it the compiler says that it speaks the C++ of 1998.
                         /Zc:__cplusplus)
  target_link_options(project_settings INTERFACE /DYNAMICBASE /NXCOMPAT /HIGHENTROPYVA /guard:cf)
else()
  target_compile_options(
    project_settings
    INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast
              -Wcast-qual -Wformat=2 -Wundef -Werror -fstack-protector-strong
              # GetProcAddress returns one function type for every function.
              -Wno-cast-function-type)
  target_link_options(project_settings INTERFACE -Wl,--no-insert-timestamp -Wl,--dynamicbase -Wl,--nxcompat
                      -Wl,--high-entropy-va -Wl,--exclude-all-symbols -fstack-protector-strong)
endif()
# For a build that is only tested: "./dev sanitize". There is no runtime for reports on this target, so a finding traps.
option(USERAUTH_TRAPS "Undefined behaviour and broken promises to the standard library end the program" OFF)
if(USERAUTH_TRAPS)
  target_compile_options(project_settings INTERFACE -fsanitize=undefined -fsanitize-undefined-trap-on-error)
  target_compile_definitions(project_settings INTERFACE _GLIBCXX_ASSERTIONS)
endif()
if(CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT MSVC)
  target_compile_definitions(project_settings INTERFACE _FORTIFY_SOURCE=2)
endif()

# userauth_version_resource(TARGET "description"): a VERSIONINFO resource for a library or program.
function(userauth_version_resource target description)
  set(USERAUTH_FILE_DESCRIPTION "${description}")
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "EXECUTABLE")
    set(USERAUTH_FILE_TYPE VFT_APP)
    set(USERAUTH_FILE_NAME "${target}.exe")
  else()
    set(USERAUTH_FILE_TYPE VFT_DLL)
    set(USERAUTH_FILE_NAME "${target}.dll")
  endif()
  string(REPLACE "." "," USERAUTH_VERSION_NUMBERS "${PROJECT_VERSION}")
  set(resource "${CMAKE_CURRENT_BINARY_DIR}/${target}.rc")
  configure_file("${PROJECT_SOURCE_DIR}/cmake/VersionInfo.rc.in" "${resource}" @ONLY)
  target_sources(${target} PRIVATE "${resource}")
endfunction()

# userauth_add_dll(NAME "description" SOURCES...): a shared library of the project, NAME.dll.
function(userauth_add_dll target description)
  add_library(${target} SHARED ${ARGN})
  set_target_properties(${target} PROPERTIES PREFIX "")
  target_link_libraries(${target} PRIVATE project_settings)
  userauth_version_resource(${target} "${description}")
endfunction()

# userauth_add_program(NAME "description" SOURCES...): a console program of the project, NAME.exe.
function(userauth_add_program target description)
  add_executable(${target} ${ARGN})
  target_link_libraries(${target} PRIVATE project_settings)
  userauth_version_resource(${target} "${description}")
endfunction()
