# Installs the build into an empty folder, asks the program there for its version, then configures,
# builds and runs a project that knows nothing but that folder.
file(REMOVE_RECURSE ${WORK_DIR})

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

set(flags "")
if(SANITIZE)
  set(flags -fsanitize=${SANITIZE})
endif()
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/prefix)
run(${WORK_DIR}/prefix/${BIN_DIR}/qv --version)
run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/build
    -D CMAKE_CXX_COMPILER=${CXX_COMPILER}
    -D CMAKE_CXX_FLAGS=${flags}
    -D CMAKE_PREFIX_PATH=${WORK_DIR}/prefix)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run(${WORK_DIR}/build/consumer)
