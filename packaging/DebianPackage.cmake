# The Debian package, made by the target "debian_package" of the release preset.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vantro-standalone)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR Vantro)
set(CPACK_PACKAGE_CONTACT "Vantro Standalone maintainers <maintainers@vantro.example>")
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "settings tool of a login add-on for YubiKey tokens
An administrator decides with it which tokens open which local accounts, which
are master keys that open every account, which guard the tool itself, and
whether a token is mandatory.
.
The package holds the desktop tool, its privileged service, which the system
bus starts on demand, and the PAM module. Installing it changes nothing about
signing in: the module takes part once an administrator has enabled its profile
with pam-auth-update and has switched the demand on.")

# What the programs link is found out; what they load (windows without X), and what the maintainer scripts call, is named.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "default-dbus-system-bus | dbus-system-bus, libpam-runtime (>= 1.0.1-6), systemd | systemd-standalone-tmpfiles, qt6-wayland")
# The toolkit's own texts in other languages than English; who locks screens.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-translations-l10n, default-logind | logind")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
    ${made}/debian/postinst
    ${made}/debian/prerm
    ${made}/debian/postrm)
include(CPack)

# Builds what is installed and nothing else.
add_custom_target(debian_package
    COMMAND ${CMAKE_CPACK_COMMAND} --config ${CMAKE_BINARY_DIR}/CPackConfig.cmake
    WORKING_DIRECTORY ${CMAKE_BINARY_DIR}
    USES_TERMINAL VERBATIM)
add_dependencies(debian_package vantro-standalone vantro-standalone-service pam_vantro_standalone pam_texts compressed_documents)
