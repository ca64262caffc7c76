cmake_policy(VERSION 3.25)
# Plays one session script in a fresh directory that holds the small images of data/.
#   PROGRAM  kestrel-script     SCRIPT  the script      DIRECTORY  where it runs
# A script's exit status is to be 0; NAME.status, NAME.out and NAME.err, where they stand beside it, say what status and output
# it is to have instead.
get_filename_component(name ${SCRIPT} NAME_WE)
get_filename_component(home ${SCRIPT} DIRECTORY)
file(REMOVE_RECURSE ${DIRECTORY})
file(COPY ${home}/data/ DESTINATION ${DIRECTORY})
file(COPY ${SCRIPT} DESTINATION ${DIRECTORY})
if(EXISTS ${home}/${name}.files)
  file(COPY ${home}/${name}.files/ DESTINATION ${DIRECTORY})
endif()

set(wanted_status 0)
if(EXISTS ${home}/${name}.status)
  file(STRINGS ${home}/${name}.status wanted_status)
endif()
execute_process(COMMAND ${PROGRAM} ${name}.script WORKING_DIRECTORY ${DIRECTORY}
  OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE status)
if(NOT status STREQUAL wanted_status)
  message(FATAL_ERROR "status ${status}, want ${wanted_status}\n${out}${err}")
endif()
foreach(stream out err)
  if(EXISTS ${home}/${name}.${stream})
    file(READ ${home}/${name}.${stream} wanted)
    if(NOT ${stream} STREQUAL wanted)
      message(FATAL_ERROR "${stream}: have\n${${stream}}want\n${wanted}")
    endif()
  endif()
endforeach()
