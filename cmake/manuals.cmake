# What is installed beside the programs: the manual pages and the completions, both made of what the
# programs themselves say, and the examples. The target kivstore_manuals makes the first two.
if(NOT KIVSTORE_HOSTS AND NOT KIVSTORE_INSTALL)
  return()
endif()
find_package(Python3 COMPONENTS Interpreter)
find_program(SCDOC scdoc)
set(KIVSTORE_MAN AUTO CACHE STRING "Make the manual pages: ON, OFF, or AUTO where scdoc is found")
set(has_pages OFF)
if(KIVSTORE_HOSTS AND Python3_FOUND AND SCDOC AND NOT CMAKE_CROSSCOMPILING)
  set(has_pages ON)
endif()
if(NOT KIVSTORE_MAN)
  set(has_pages OFF)
elseif(NOT KIVSTORE_MAN STREQUAL "AUTO" AND NOT has_pages)
  message(FATAL_ERROR "KIVSTORE_MAN: scdoc, python3 and host programs that run here are wanted")
endif()

add_custom_target(kivstore_manuals ALL)
set(KIVSTORE_PAGES "")
if(has_pages)
  set(KIVSTORE_PAGES ${PROJECT_BINARY_DIR}/man)
  set(sources kivadmin.1 kivadmin-backup.1 kivadmin-check.1 kivadmin-import.1 kivadmin-init.1 kivadmin-options.1
              kivadmin-roster.1 kivreport.1 kivstore.3 kivstore.5 kivstore.7)
  list(TRANSFORM sources REPLACE "(.+)" "${PROJECT_SOURCE_DIR}/docs/man/\\1.scd")
  add_custom_command(
    OUTPUT ${KIVSTORE_PAGES}/made
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${KIVSTORE_PAGES}
    COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/docs/man/pages.py $<TARGET_FILE_DIR:kivadmin>
            ${KIVSTORE_PAGES} ${sources}
    COMMAND ${CMAKE_COMMAND} -E touch ${KIVSTORE_PAGES}/made
    DEPENDS kivadmin kivreport ${PROJECT_SOURCE_DIR}/docs/man/pages.py ${sources}
    COMMENT "Making the manual pages" VERBATIM)
  add_custom_target(kivstore_man DEPENDS ${KIVSTORE_PAGES}/made)
  add_dependencies(kivstore_manuals kivstore_man)
endif()

set(completions ${PROJECT_BINARY_DIR}/completions)
set(KIVSTORE_COMPLETIONS "")
if(KIVSTORE_HOSTS AND NOT CMAKE_CROSSCOMPILING)
  foreach(shell bash zsh fish)
    add_custom_command(
      OUTPUT ${completions}/${shell}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${completions}
      COMMAND kivadmin completion ${shell} > ${completions}/${shell}
      DEPENDS kivadmin VERBATIM)
    list(APPEND KIVSTORE_COMPLETIONS ${completions}/${shell})
  endforeach()
  add_custom_target(kivstore_completions DEPENDS ${KIVSTORE_COMPLETIONS})
  add_dependencies(kivstore_manuals kivstore_completions)
endif()

if(NOT KIVSTORE_INSTALL)
  return()
endif()
if(KIVSTORE_PAGES)
  foreach(section 1 3 5 7)
    install(DIRECTORY ${KIVSTORE_PAGES}/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section}
            FILES_MATCHING PATTERN "*.${section}")
  endforeach()
endif()
if(KIVSTORE_COMPLETIONS)
  # A distribution's zsh looks for what its packages bring in another folder than for the rest.
  if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set(zsh_folder ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
  else()
    set(zsh_folder ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
  endif()
  set(KIVSTORE_ZSH_FOLDER ${zsh_folder} CACHE STRING "Where zsh looks for completions")
  install(FILES ${completions}/bash RENAME kivadmin
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  install(FILES ${completions}/zsh RENAME _kivadmin DESTINATION ${KIVSTORE_ZSH_FOLDER})
  install(FILES ${completions}/fish RENAME kivadmin.fish
          DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endif()
install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples USE_SOURCE_PERMISSIONS
        PATTERN "__pycache__" EXCLUDE)
