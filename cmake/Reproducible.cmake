# The same sources give the same bytes, wherever and whenever they are built: Qt's resource compiler
# and the packaging take every time that they write down from the last entry of the change log.

set(changelog ${PROJECT_SOURCE_DIR}/packaging/debian/changelog)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${changelog})
execute_process(COMMAND dpkg-parsechangelog -l ${changelog} -S Timestamp
                OUTPUT_VARIABLE epoch OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set_property(GLOBAL PROPERTY RULE_LAUNCH_CUSTOM
             "${CMAKE_COMMAND} -E env SOURCE_DATE_EPOCH=${epoch}")
