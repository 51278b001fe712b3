# The two data blocks embedded in the library: the design image and the icon.
#
# APPLET_DESIGN_IMAGE names the user's own design image. Without it the build creates a file of the design's
# size, which the virtual board accepts like any other.

set(APPLET_DESIGN_IMAGE "" CACHE FILEPATH "Design image to embed instead of the one made by the build")

find_package(Python3 REQUIRED COMPONENTS Interpreter)

set(EMBEDDED_DIR ${CMAKE_BINARY_DIR}/embedded)
set(EMBEDDED_SCRIPT ${CMAKE_CURRENT_LIST_DIR}/make_embedded_data.py)
set(ICON_FILE ${EMBEDDED_DIR}/icon.png)

if(APPLET_DESIGN_IMAGE)
  get_filename_component(DESIGN_IMAGE_FILE ${APPLET_DESIGN_IMAGE} ABSOLUTE)
  if(NOT EXISTS ${DESIGN_IMAGE_FILE})
    message(FATAL_ERROR "APPLET_DESIGN_IMAGE: there is no file '${DESIGN_IMAGE_FILE}'")
  endif()
else()
  set(DESIGN_IMAGE_FILE ${EMBEDDED_DIR}/design.bin)
  add_custom_command(
    OUTPUT ${DESIGN_IMAGE_FILE}
    COMMAND Python3::Interpreter ${EMBEDDED_SCRIPT} design ${DESIGN_IMAGE_FILE}
    DEPENDS ${EMBEDDED_SCRIPT}
    COMMENT "Making the design image")
endif()

add_custom_command(
  OUTPUT ${ICON_FILE}
  COMMAND Python3::Interpreter ${EMBEDDED_SCRIPT} icon ${ICON_FILE}
  DEPENDS ${EMBEDDED_SCRIPT}
  COMMENT "Drawing the icon")

# embed_data(source): passes the paths of the two files to the assembler source.
function(embed_data source)
  set_source_files_properties(${source} PROPERTIES
    OBJECT_DEPENDS "${DESIGN_IMAGE_FILE};${ICON_FILE}"
    COMPILE_DEFINITIONS "DESIGN_IMAGE_FILE=\"${DESIGN_IMAGE_FILE}\";ICON_FILE=\"${ICON_FILE}\"")
endfunction()
