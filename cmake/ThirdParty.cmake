# The third-party libraries as imported targets. USERAUTH_THIRD_PARTY is the folder of links that cmake/deps/build.sh
# made, one a library; without it (MSVC) a package manager supplies them.

if(USERAUTH_THIRD_PARTY)
  foreach(library IN ITEMS openssl jsoncpp curl zlib brotli httplib spdlog fmt cli11 googletest)
    if(NOT EXISTS "${USERAUTH_THIRD_PARTY}/${library}")
      message(FATAL_ERROR "${library} is missing under ${USERAUTH_THIRD_PARTY}: run ./dev setup first")
    endif()
    list(APPEND CMAKE_FIND_ROOT_PATH "${USERAUTH_THIRD_PARTY}/${library}")
    list(APPEND CMAKE_PREFIX_PATH "${USERAUTH_THIRD_PARTY}/${library}")
  endforeach()
  set(OPENSSL_ROOT_DIR "${USERAUTH_THIRD_PARTY}/openssl")
endif()

find_package(OpenSSL REQUIRED)
find_package(jsoncpp CONFIG REQUIRED)
find_package(CURL CONFIG REQUIRED)
find_package(ZLIB REQUIRED)
find_package(GTest CONFIG REQUIRED)

# The linker orders a DLL's imports by the paths of the import libraries. Through a link in the build folder these paths are
# relative to it, and so the same wherever the checkout lies.
if(USERAUTH_THIRD_PARTY AND CMAKE_HOST_UNIX)
  file(CREATE_LINK "${USERAUTH_THIRD_PARTY}" "${CMAKE_BINARY_DIR}/third-party" SYMBOLIC)
  foreach(target IN ITEMS OpenSSL::SSL OpenSSL::Crypto jsoncpp_lib CURL::libcurl)
    foreach(property IN ITEMS IMPORTED_LOCATION IMPORTED_IMPLIB IMPORTED_IMPLIB_RELEASE)
      get_target_property(library ${target} ${property})
      if(library)
        string(REPLACE "${USERAUTH_THIRD_PARTY}/" "${CMAKE_BINARY_DIR}/third-party/" library "${library}")
        set_target_properties(${target} PROPERTIES ${property} "${library}")
      endif()
    endforeach()
  endforeach()
endif()

# Header-only libraries.
function(userauth_header_only target header)
  find_path(${target}_INCLUDE "${header}" REQUIRED)
  add_library(${target} INTERFACE)
  target_include_directories(${target} SYSTEM INTERFACE "${${target}_INCLUDE}")
endfunction()

userauth_header_only(third_party_httplib httplib.h)
userauth_header_only(third_party_cli11 CLI/CLI.hpp)
userauth_header_only(third_party_spdlog spdlog/spdlog.h)
userauth_header_only(third_party_fmt fmt/core.h)
target_link_libraries(third_party_spdlog INTERFACE third_party_fmt)
target_compile_definitions(third_party_spdlog INTERFACE SPDLOG_FMT_EXTERNAL FMT_HEADER_ONLY)

# Brotli's encoder and decoder. The library brings no package description for this; its static archives go first, so
# that no DLL of it is needed at run time.
find_path(third_party_brotli_INCLUDE brotli/encode.h REQUIRED)
find_library(third_party_brotli_ENCODER NAMES brotlienc-static brotlienc REQUIRED)
find_library(third_party_brotli_DECODER NAMES brotlidec-static brotlidec REQUIRED)
find_library(third_party_brotli_COMMON NAMES brotlicommon-static brotlicommon REQUIRED)
add_library(third_party_brotli INTERFACE)
target_include_directories(third_party_brotli SYSTEM INTERFACE "${third_party_brotli_INCLUDE}")
target_link_libraries(third_party_brotli INTERFACE "${third_party_brotli_ENCODER}" "${third_party_brotli_COMMON}")
add_library(third_party_brotli_decoder INTERFACE)
target_include_directories(third_party_brotli_decoder SYSTEM INTERFACE "${third_party_brotli_INCLUDE}")
target_link_libraries(third_party_brotli_decoder INTERFACE "${third_party_brotli_DECODER}" "${third_party_brotli_COMMON}")

# Copies what programs need at run time beside them: the libraries' DLLs and, for MinGW, the compiler's runtime.
set(runtime_dlls)
if(USERAUTH_THIRD_PARTY)
  file(GLOB runtime_dlls "${USERAUTH_THIRD_PARTY}/openssl/bin/*.dll" "${USERAUTH_THIRD_PARTY}/jsoncpp/bin/*.dll"
       "${USERAUTH_THIRD_PARTY}/curl/bin/*.dll")
endif()
if(MINGW)
  foreach(dll IN ITEMS libgcc_s_seh-1.dll libssp-0.dll libstdc++-6.dll libwinpthread-1.dll)
    execute_process(COMMAND "${CMAKE_CXX_COMPILER}" -print-file-name=${dll} OUTPUT_VARIABLE path
                    OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT EXISTS "${path}")
      set(path "/usr/x86_64-w64-mingw32/lib/${dll}")
    endif()
    list(APPEND runtime_dlls "${path}")
  endforeach()
endif()
file(MAKE_DIRECTORY "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
foreach(dll IN LISTS runtime_dlls)
  get_filename_component(name "${dll}" NAME)
  configure_file("${dll}" "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${name}" COPYONLY)
endforeach()
