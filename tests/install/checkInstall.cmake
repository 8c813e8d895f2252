# Script of the installation test: install, look for every file, build and
# run the C test program tests/c_abi/c_abi.c through the CMake package and
# through pkg-config.
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGN}\n${out}\n${err}")
  endif()
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

include(GNUInstallDirs)
foreach(f
    bin/scalerctl
    bin/pwsimd
    bin/plaunchd
    ${CMAKE_INSTALL_LIBDIR}/libscalerctl-support.a
    ${CMAKE_INSTALL_LIBDIR}/cmake/scalerctl/scalerctlConfig.cmake
    ${CMAKE_INSTALL_LIBDIR}/pkgconfig/scalerctl-support.pc
    include/Common/OS/os.h
    include/Common/OS/osUtil.h
    include/Common/OS/osUsage.h
    include/Common/OS/syslogf.h
    include/Common/OS/osAssert.h
    include/Common/OS/log.h
    include/Common/OS/settings.h
    include/system/Pixelworks/PWApi.h
    include/avc/main/sysType.h
    include/avc/main/vidFormat.h
    include/avc/main/vidTiming.h
    include/avc/main/sysCaps.h
    share/man/man1/scalerctl.1
    share/man/man1/pwsimd.1
    share/man/man1/plaunchd.1)
  if(NOT EXISTS ${prefix}/${f})
    message(FATAL_ERROR "not installed: ${f}")
  endif()
endforeach()

# Through the CMake package.
run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/consumer
    -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_C_COMPILER=${C_COMPILER})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/consumer)
run(${WORK_DIR}/consumer/consumer)

# Through pkg-config.
set(ENV{PKG_CONFIG_PATH} ${prefix}/${CMAKE_INSTALL_LIBDIR}/pkgconfig)
execute_process(COMMAND pkg-config --cflags --libs scalerctl-support
    OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "pkg-config does not know scalerctl-support")
endif()
separate_arguments(flags UNIX_COMMAND "${flags}")
run(${C_COMPILER} ${CONSUMER_DIR}/../../c_abi/c_abi.c -o ${WORK_DIR}/consumer-pc ${flags})
run(${WORK_DIR}/consumer-pc)
