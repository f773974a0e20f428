# Tells the desktop about installed or removed entries, icons and MIME types in a data folder
# (PREFIX/share).
# Every tool is optional: a missing one is skipped, a failing one only warned about.
function(orvella_refresh_step)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_QUIET ERROR_VARIABLE errors)
    if(NOT result EQUAL 0)
        message(WARNING "${ARGN} failed (${result}): ${errors}")
    endif()
endfunction()

function(orvella_refresh_desktop share)
    find_program(ORVELLA_UPDATE_MIME update-mime-database)
    find_program(ORVELLA_UPDATE_DESKTOP update-desktop-database)
    find_program(ORVELLA_UPDATE_ICONS gtk-update-icon-cache)
    if(ORVELLA_UPDATE_MIME AND IS_DIRECTORY "${share}/mime/packages")
        message(STATUS "Refreshing: ${share}/mime")
        orvella_refresh_step(${ORVELLA_UPDATE_MIME} "${share}/mime")
    endif()
    if(ORVELLA_UPDATE_DESKTOP AND IS_DIRECTORY "${share}/applications")
        message(STATUS "Refreshing: ${share}/applications")
        orvella_refresh_step(${ORVELLA_UPDATE_DESKTOP} -q "${share}/applications")
    endif()
    # Only a theme that has an index keeps a cache; without one the icons are found by scanning.
    if(ORVELLA_UPDATE_ICONS AND EXISTS "${share}/icons/hicolor/index.theme")
        message(STATUS "Refreshing: ${share}/icons/hicolor")
        orvella_refresh_step(${ORVELLA_UPDATE_ICONS} -q -t "${share}/icons/hicolor")
    endif()
endfunction()
