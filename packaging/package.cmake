# The Debian package, made by `cpack` in the build folder. Its parts are those of `cmake --install`:
# the folder of the programs as lib/kelvaro, what a desktop reads, and here what only a machine's
# administrator can add.
set(folder lib/kelvaro)
set(documents share/doc/kelvaro)

# All profiles lie in the users' own folders.
file(TOUCH ${made}/PerUser)
install_part(machine FILES ${made}/PerUser DESTINATION ${folder})
install_part(machine FILES 60-kelvaro.rules DESTINATION lib/udev/rules.d)
install_part(machine FILES kelvaro-modules-load.conf DESTINATION lib/modules-load.d
             RENAME kelvaro.conf)
foreach(program kelvaro kelvaroctl rendlink)
  file(MAKE_DIRECTORY ${made}/links)
  file(CREATE_LINK ../${folder}/${program} ${made}/links/${program} SYMBOLIC)
  install_part(machine FILES ${made}/links/${program} DESTINATION bin)
endforeach()

# Debian wants a maintainer's address of each package. By its ending this one is nobody's.
set(KELVARO_MAINTAINER "Marnstone <nobody@kelvaro.invalid>")
if(KELVARO_SUPPORT_ADDRESS)
  set(KELVARO_MAINTAINER "Marnstone <${KELVARO_SUPPORT_ADDRESS}>")
endif()

# What Debian wants to know of each package. SOURCE_DATE_EPOCH gives the date, where it is set.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(debian/changelog.in debian-changelog @ONLY)
file(READ ${CMAKE_SOURCE_DIR}/LICENSE licence)
string(REGEX REPLACE "\n\n" "\n.\n" licence "${licence}")
string(REGEX REPLACE "\n([^\n])" "\n \\1" licence "${licence}")
string(REGEX MATCH "[(]c[)][^\n]*" owner "${licence}")
string(REGEX REPLACE "^MIT License\n .\n Copyright[^\n]*\n .\n" "" licence "${licence}")
string(STRIP "${licence}" licence)
configure_file(debian/copyright.in debian-copyright @ONLY)

# kelvaro_packed(FILE NAME): without its name and time, so that it is always the same.
set(packed "")
function(kelvaro_packed file name)
  add_custom_command(OUTPUT ${made}/${name}.gz DEPENDS ${file} VERBATIM
    COMMAND sh -c "gzip -9nc <\"$1\" >\"$2\"" sh ${file} ${made}/${name}.gz)
  set(packed ${packed} ${made}/${name}.gz PARENT_SCOPE)
endfunction()
kelvaro_packed(${made}/debian-changelog changelog.Debian)
kelvaro_packed(${CMAKE_SOURCE_DIR}/CHANGELOG.md changelog)
add_custom_target(kelvaro_documents ALL DEPENDS ${packed})
install_part(machine FILES ${packed} DESTINATION ${documents})
install_part(machine FILES ${made}/debian-copyright DESTINATION ${documents} RENAME copyright)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kelvaro)
set(CPACK_PACKAGE_VENDOR ${KELVARO_MAKER})
set(CPACK_PACKAGE_CONTACT "${KELVARO_MAINTAINER}")
set(CPACK_PACKAGE_HOMEPAGE_URL "${KELVARO_WEB_ADDRESS}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "turn a game pad into keys and mouse motion")
set(CPACK_PACKAGE_DESCRIPTION
"Kelvaro lets you play games with a game pad or joystick that know nothing of
the device. A profile says which buttons, axes and hats press which keys, how
long and how often, and what moves the pointer.
.
The window hides in the notification area while a game runs. kelvaroctl does
the same on the console, and rendlink makes launchers that start a game with
its profile.")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR})
set(CPACK_PACKAGING_INSTALL_PREFIX /)
set(CPACK_INSTALL_CMAKE_PROJECTS
  "${CMAKE_BINARY_DIR}" kelvaro Unspecified /usr/${folder}
  "${CMAKE_BINARY_DIR}" kelvaro desktop /usr
  "${CMAKE_BINARY_DIR}" kelvaro machine /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-wayland, fonts-dejavu-core")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
  ${CMAKE_CURRENT_SOURCE_DIR}/debian/postinst ${CMAKE_CURRENT_SOURCE_DIR}/debian/postrm)
# Debian's folders have this mode, whatever the mask of the one who builds.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
include(CPack)
