# What an installed copy consists of. The desktop, the bus and systemd know it by one name, and look in fixed folders:
# an installation outside /usr takes part in none of them.
set(name com.vantro.Standalone1)
set(made ${CMAKE_CURRENT_BINARY_DIR}/installed)

set(VANTRO_SETTINGS_FOLDER /var/lib/vantro-standalone/settings)
set(VANTRO_RECORDS_FOLDER /var/lib/vantro-standalone/challenge-response)
set(VANTRO_SIGNED_IN_FOLDER /run/vantro-standalone)
set(VANTRO_PAM_SERVICES_FOLDER /etc/pam.d)
set(VANTRO_PAM_MODULES_FOLDER ${VANTRO_LIBPAM_MODULES_FOLDER})
configure_file(Info.plist.in ${made}/Info.plist @ONLY)
configure_file(${name}.service.in ${made}/activation/${name}.service @ONLY)
configure_file(${name}.unit.in ${made}/unit/${name}.service @ONLY)
configure_file(${name}.metainfo.xml.in ${made}/${name}.metainfo.xml @ONLY)
configure_file(${name}.tmpfiles ${made}/tmpfiles/${name}.conf COPYONLY)

# The scripts are whole in themselves: a purge comes when no other file of the package is left, and the rescue is also run
# from another system.
file(READ debian/pam-entries.awk PAM_ENTRIES_PROGRAM)
configure_file(debian/pam.sh.in ${made}/debian/pam.sh @ONLY)
file(READ ${made}/debian/pam.sh PAM_FUNCTIONS)
file(READ debian/service.sh SERVICE_FUNCTIONS)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS debian/pam-entries.awk debian/service.sh)
foreach(script IN ITEMS debian/postinst debian/prerm debian/postrm vantro-standalone-rescue)
    configure_file(${script}.in ${made}/${script} @ONLY)
endforeach()

set(manual_pages vantro-standalone.1 vantro-standalone-service.8 vantro-standalone-rescue.8 pam_vantro_standalone.8)
list(TRANSFORM manual_pages PREPEND man/)
foreach(text IN LISTS manual_pages ITEMS debian/changelog)
    get_filename_component(packed ${made}/${text}.gz NAME)
    # Without name and time, so that the same text is packed in the same way each time.
    add_custom_command(OUTPUT ${made}/${packed}
        COMMAND gzip -9nc ${CMAKE_CURRENT_SOURCE_DIR}/${text} > ${made}/${packed}
        DEPENDS ${text} VERBATIM)
    list(APPEND compressed ${made}/${packed})
endforeach()
add_custom_target(compressed_documents ALL DEPENDS ${compressed})

install(TARGETS vantro-standalone RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS vantro-standalone-service RUNTIME DESTINATION ${CMAKE_INSTALL_LIBEXECDIR})
install(FILES ${made}/Info.plist pam-service DESTINATION ${CMAKE_INSTALL_DATADIR}/vantro-standalone)
# The folder by the name under which Debian's own modules lie there, since dpkg counts by name who still has a folder.
install(TARGETS pam_vantro_standalone LIBRARY DESTINATION /lib/${CMAKE_LIBRARY_ARCHITECTURE}/security)
install(DIRECTORY ${CMAKE_BINARY_DIR}/share/locale DESTINATION ${CMAKE_INSTALL_DATADIR})
install(PROGRAMS ${made}/vantro-standalone-rescue DESTINATION ${CMAKE_INSTALL_SBINDIR})
install(FILES pam-auth-update-profile DESTINATION ${CMAKE_INSTALL_DATADIR}/pam-configs RENAME vantro-standalone)
install(FILES ${name}.conf DESTINATION ${CMAKE_INSTALL_DATADIR}/dbus-1/system.d)
install(FILES ${name}.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/dbus-1/interfaces)
install(FILES ${made}/activation/${name}.service DESTINATION ${CMAKE_INSTALL_DATADIR}/dbus-1/system-services)
install(FILES ${made}/unit/${name}.service DESTINATION /lib/systemd/system)
install(FILES ${made}/tmpfiles/${name}.conf DESTINATION lib/tmpfiles.d)
install(FILES ${name}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${made}/${name}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES icons/${name}.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
# Those of pixels are made from the drawings beside them, as by "rsvg-convert --width 48".
foreach(size IN ITEMS 16 48 128)
    install(FILES icons/${name}-${size}.png
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps RENAME ${name}.png)
endforeach()
install(FILES ${made}/vantro-standalone.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${made}/vantro-standalone-service.8.gz ${made}/vantro-standalone-rescue.8.gz
    ${made}/pam_vantro_standalone.8.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man8)
install(FILES debian/copyright ${made}/changelog.gz DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/vantro-standalone)
install(FILES debian/lintian-overrides DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME vantro-standalone)
