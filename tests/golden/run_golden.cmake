cmake_policy(VERSION 3.25)
# Plays SCRIPT with PROGRAM and compares the screen that it leaves with the golden picture beside it, with COMPARE. A picture that differs
# stays in KEEP as NAME.png, and NAME_difference.png shows it dimmed with what differs in red.
#
# The directory has a name of its own, the same in every build, since forms show it.
get_filename_component(name ${SCRIPT} NAME_WE)
get_filename_component(home ${SCRIPT} DIRECTORY)
set(directory /tmp/kestrel-golden/${name})
file(REMOVE_RECURSE ${directory})
file(COPY ${home}/data/ ${SCRIPT} DESTINATION ${directory})
execute_process(COMMAND ${PROGRAM} ${name}.script WORKING_DIRECTORY ${directory} OUTPUT_VARIABLE out ERROR_VARIABLE out RESULT_VARIABLE status)
if(NOT status STREQUAL 0)
  message(FATAL_ERROR "status ${status}\n${out}")
endif()
file(COPY ${directory}/${name}.png DESTINATION ${KEEP})
file(REMOVE_RECURSE ${directory})
if(NOT EXISTS ${home}/${name}.png)
  message(FATAL_ERROR "no golden picture yet: look at ${KEEP}/${name}.png, then tests/golden/accept")
endif()
execute_process(COMMAND ${COMPARE} difference ${KEEP}/${name}.png ${home}/${name}.png ${KEEP}/${name}_difference.png
  OUTPUT_VARIABLE out ERROR_VARIABLE out RESULT_VARIABLE status)
if(NOT status STREQUAL 0)
  message(FATAL_ERROR "${out}have ${KEEP}/${name}.png\nwant ${home}/${name}.png\nthe difference is in ${KEEP}/${name}_difference.png")
endif()
file(REMOVE ${KEEP}/${name}.png ${KEEP}/${name}_difference.png)
