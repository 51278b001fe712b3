# What is installed beside the targets: headers, the packages for CMake and pkg-config, documents, manual pages, completions.
include(CMakePackageConfigHelpers)

install(DIRECTORY include/vexo DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

# find_package(VexoApplet) and pkg-config vexo. Both follow a tree that is moved.
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/VexoApplet)
install(TARGETS vexo_headers EXPORT VexoAppletTargets)
install(EXPORT VexoAppletTargets NAMESPACE VexoApplet:: DESTINATION ${package_dir})
configure_package_config_file(cmake/VexoAppletConfig.cmake.in ${CMAKE_BINARY_DIR}/package/VexoAppletConfig.cmake
  INSTALL_DESTINATION ${package_dir} PATH_VARS VEXO_INSTALL_DIR)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/package/VexoAppletConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/package/VexoAppletConfig.cmake
  ${CMAKE_BINARY_DIR}/package/VexoAppletConfigVersion.cmake DESTINATION ${package_dir})
file(RELATIVE_PATH PREFIX_FROM_PKGCONFIG /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/vexo.pc.in ${CMAKE_BINARY_DIR}/package/vexo.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/package/vexo.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

set(doc_dir ${CMAKE_INSTALL_DATADIR}/doc/vexo)
install(FILES README.md CHANGELOG.md CONTRIBUTING.md DESTINATION ${doc_dir})
install(DIRECTORY docs/ DESTINATION ${doc_dir}/docs)
install(DIRECTORY examples DESTINATION ${doc_dir})
install(FILES page/icon.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps RENAME appletctl.svg)
install(DIRECTORY docs/examples/ DESTINATION ${CMAKE_INSTALL_DATADIR}/vexo/stations)

# appletctl writes its own completions and manual pages.
if(TARGET appletctl AND NOT CMAKE_CROSSCOMPILING)
  set(written ${CMAKE_BINARY_DIR}/written)
  file(MAKE_DIRECTORY ${written})
  find_program(SCDOC scdoc)
  if(NOT SCDOC)
    message(STATUS "scdoc is missing: no manual pages are installed")
  else()
    install(CODE "execute_process(
      COMMAND $<TARGET_FILE:appletctl> --quiet docs --man ${written} COMMAND_ERROR_IS_FATAL ANY)")
    install(FILES ${written}/appletctl.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    install(FILES ${written}/appletctl-parameters.7 DESTINATION ${CMAKE_INSTALL_MANDIR}/man7)
  endif()
  function(install_completion shell folder name)
    install(CODE "execute_process(COMMAND $<TARGET_FILE:appletctl> completion ${shell}
      OUTPUT_FILE ${written}/${name} COMMAND_ERROR_IS_FATAL ANY)")
    install(FILES ${written}/${name} DESTINATION ${CMAKE_INSTALL_DATADIR}/${folder})
  endfunction()
  install_completion(bash bash-completion/completions appletctl)
  install_completion(zsh zsh/vendor-completions _appletctl)
  install_completion(fish fish/vendor_completions.d appletctl.fish)
endif()
