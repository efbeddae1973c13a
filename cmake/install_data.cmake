# What an installation holds besides the programs and the library (those are
# installed where they are built): the status pictures, the configuration,
# the web servers' configurations, the demo directory, the manual pages and
# the documents. Every path written into an installed file is an installed
# path, never one of the source or build trees.

install(FILES web/images/Blank.gif web/images/Disabled.gif web/images/Redisable.gif
              web/images/Unknown.gif
        DESTINATION ${LXR_INSTALL_DATADIR}/images COMPONENT runtime)
install(FILES examples/demo.ldif DESTINATION ${LXR_INSTALL_DATADIR} COMPONENT runtime)
install(FILES web/apache/lxradmin.conf DESTINATION ${LXR_INSTALL_DATADIR}/apache
        COMPONENT runtime)

# The configuration as installed works over the demo directory kept in the
# state folder; examples/lxrapi.toml names the checkout's var/demo.db.
# Its opening comment, which speaks of the checkout, is replaced too.
file(READ examples/lxrapi.toml lxr_example_config)
string(REPLACE "\"../var/demo.db\"" "\"${LXR_STATE_DIR}/demo.db\"" lxr_installed_config
               "${lxr_example_config}")
string(FIND "${lxr_installed_config}" "\n\n" lxr_opening_end)
string(SUBSTRING "${lxr_installed_config}" ${lxr_opening_end} -1 lxr_installed_config)
string(PREPEND lxr_installed_config
       "# Configuration of the administration API (libLXRAPI), as installed: the demo
# directory ${LXR_STATE_DIR}/demo.db, made from
# ${CMAKE_INSTALL_FULL_DATADIR}/lxradmin/demo.ldif with lxrdir(8). Point the
# directories at your own stores (man lxrapi.toml).")
file(GENERATE OUTPUT ${CMAKE_BINARY_DIR}/installed/lxrapi.toml CONTENT "${lxr_installed_config}")
set(LXR_INSTALLED_CGI ${CMAKE_INSTALL_PREFIX}/${LXR_INSTALL_CGIDIR}/LXRAdmin)
set(LXR_INSTALLED_LIST ${CMAKE_INSTALL_PREFIX}/${LXR_INSTALL_CGIDIR}/LXRList)
set(LXR_INSTALLED_DATA ${CMAKE_INSTALL_FULL_DATADIR}/lxradmin)
configure_file(web/installed/apache.conf.in installed/apache.conf @ONLY)
configure_file(web/installed/lighttpd.conf.in installed/lighttpd.conf @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/installed/lxrapi.toml web/installed/agents.map
        DESTINATION ${LXR_CONFIG_DIR} COMPONENT runtime)
install(FILES ${CMAKE_BINARY_DIR}/installed/apache.conf
        DESTINATION ${CMAKE_INSTALL_FULL_SYSCONFDIR}/apache2/conf-available
        RENAME lxradmin.conf COMPONENT runtime)
install(FILES ${CMAKE_BINARY_DIR}/installed/lighttpd.conf
        DESTINATION ${CMAKE_INSTALL_FULL_SYSCONFDIR}/lighttpd/conf-available
        RENAME 50-lxradmin.conf COMPONENT runtime)
install(DIRECTORY DESTINATION ${LXR_STATE_DIR} COMPONENT runtime)

install(FILES docs/man/LXRAdmin.8 docs/man/lxrdir.8 DESTINATION ${CMAKE_INSTALL_MANDIR}/man8
        COMPONENT runtime)
install(FILES docs/man/lxrapi.toml.5 DESTINATION ${CMAKE_INSTALL_MANDIR}/man5 COMPONENT runtime)
file(GLOB lxr_documents docs/*.md)
install(FILES README.md ${lxr_documents} DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime)
install(FILES examples/lxrapi.toml DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT runtime)
install(DIRECTORY examples/ldap DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT runtime)
