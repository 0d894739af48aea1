# Part of the installation: moves the symbols of each installed DLL and program into .debug/NAME.debug beside it. A debugger
# finds them there by the link that stays in the file. objcopy: set by the installation.

foreach(image IN LISTS CMAKE_INSTALL_MANIFEST_FILES)
  if(NOT image MATCHES "\\.(dll|exe)$")
    continue()
  endif()
  string(PREPEND image "$ENV{DESTDIR}")
  cmake_path(GET image PARENT_PATH folder)
  cmake_path(GET image FILENAME name)
  set(symbols "${folder}/.debug/${name}.debug")
  file(MAKE_DIRECTORY "${folder}/.debug")
  # With its dates: objcopy would otherwise write the time of day into the image.
  execute_process(COMMAND "${objcopy}" --preserve-dates --only-keep-debug "${image}" "${symbols}"
                  COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND "${objcopy}" --preserve-dates --strip-all "--add-gnu-debuglink=${symbols}" "${image}"
                  COMMAND_ERROR_IS_FATAL ANY)
  # Newer than what it was made from, so that the next installation copies it again, with symbols.
  file(TOUCH "${image}")
endforeach()
