# Installs the build into ROOT, then checks that the menu entry's Exec names an installed program,
# that its Icon is where the icon theme looks (256x256 PNG of that size, scalable SVG) and that
# desktop-file-validate, where present, has nothing to say about it.
file(REMOVE_RECURSE ${ROOT})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${ROOT}
                OUTPUT_QUIET RESULT_VARIABLE failed)
if(failed)
  message(FATAL_ERROR "install into ${ROOT} failed")
endif()

set(entry ${ROOT}/share/applications/delfor.desktop)
file(STRINGS ${entry} exec_line REGEX "^Exec=")
file(STRINGS ${entry} icon_line REGEX "^Icon=")
string(REGEX REPLACE "^Exec=([^ ]+).*" "\\1" program "${exec_line}")
string(REGEX REPLACE "^Icon=" "" icon "${icon_line}")

set(errors)
if(NOT EXISTS ${ROOT}/bin/${program})
  list(APPEND errors "Exec names '${program}', which is not installed in bin")
endif()
set(icons ${ROOT}/share/icons/hicolor)
if(NOT EXISTS ${icons}/scalable/apps/${icon}.svg)
  list(APPEND errors "no scalable icon ${icon}.svg")
endif()
set(png ${icons}/256x256/apps/${icon}.png)
if(EXISTS ${png})
  # A PNG's width and height are the two 32-bit numbers after its 16-byte signature and chunk head.
  file(READ ${png} size HEX OFFSET 16 LIMIT 8)
  if(NOT size STREQUAL "0000010000000100")
    list(APPEND errors "${icon}.png is not 256 x 256 (header ${size})")
  endif()
else()
  list(APPEND errors "no 256x256 icon ${icon}.png")
endif()

find_program(validate desktop-file-validate)
if(validate)
  execute_process(COMMAND ${validate} ${entry} OUTPUT_VARIABLE said ERROR_VARIABLE said RESULT_VARIABLE failed)
  if(failed OR said)
    list(APPEND errors "desktop-file-validate: ${said}")
  endif()
else()
  message(STATUS "desktop-file-validate not found: the entry's syntax is not checked")
endif()

if(errors)
  list(JOIN errors "\n" text)
  message(FATAL_ERROR "${text}")
endif()
