# One check of the Debian package, named by CHECK. "Builds" makes the package
# with CPack into SCRATCH and unpacks it into SCRATCH/root; the other checks
# read that package and that tree.
cmake_minimum_required(VERSION 3.25)

# Runs a command; a non-zero exit fails the check with everything it printed.
# Leaves its standard output in `out` and its standard error in `err`.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE stdout
    ERROR_VARIABLE stderr)
  if(NOT status EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "'${command}' failed (${status}):\n${stdout}${stderr}")
  endif()
  set(out "${stdout}" PARENT_SCOPE)
  set(err "${stderr}" PARENT_SCOPE)
endfunction()

run(dpkg --print-architecture)
string(STRIP "${out}" arch)
set(deb ${SCRATCH}/orrenvale_${VERSION}_${arch}.deb)
set(root ${SCRATCH}/root)
set(man_pages ${root}/usr/share/man/man1/orrenvale.1.gz ${root}/usr/share/man/man1/orrenvale-batch.1.gz)
set(metainfo ${root}/usr/share/metainfo/org.orrenvale.Orrenvale.metainfo.xml)
# The GUI program prints its help and version without a display this way.
set(offscreen ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen)

if(CHECK STREQUAL "Builds")
  file(REMOVE_RECURSE ${SCRATCH})
  run(${CPACK} -G DEB --config ${CPACK_CONFIG} -B ${SCRATCH})
  file(GLOB debs ${SCRATCH}/*.deb)
  if(NOT debs STREQUAL deb)
    message(FATAL_ERROR "expected the one package ${deb}, found: ${debs}")
  endif()
  run(dpkg-deb -x ${deb} ${root})

elseif(CHECK STREQUAL "HoldsEveryFileAndNoOther")
  set(expected
    usr/bin/orrenvale
    usr/bin/orrenvale-batch
    usr/share/applications/orrenvale.desktop
    usr/share/mime/packages/orrenvale.xml
    usr/share/icons/hicolor/scalable/apps/orrenvale.svg
    usr/share/icons/hicolor/scalable/mimetypes/application-x-orrenvale.svg
    usr/share/metainfo/org.orrenvale.Orrenvale.metainfo.xml
    usr/share/man/man1/orrenvale.1.gz
    usr/share/man/man1/orrenvale-batch.1.gz
    usr/share/doc/orrenvale/README.md
    usr/share/doc/orrenvale/copyright)
  file(GLOB examples RELATIVE ${EXAMPLES} ${EXAMPLES}/*.ovd)
  list(TRANSFORM examples PREPEND usr/share/orrenvale/examples/)
  list(APPEND expected ${examples})
  # Lines look like "-rw-r--r-- root/root 333 2026-01-01 12:00 ./usr/share/..."; folders end in "/".
  run(dpkg-deb -c ${deb})
  string(REGEX MATCHALL "[^\n]+" lines "${out}")
  set(files "")
  foreach(line IN LISTS lines)
    if(line MATCHES " \\./(.*[^/])$")
      list(APPEND files "${CMAKE_MATCH_1}")
    endif()
  endforeach()
  set(missing ${expected})
  list(REMOVE_ITEM missing ${files})
  set(extra ${files})
  list(REMOVE_ITEM extra ${expected})
  if(missing OR extra)
    message(FATAL_ERROR "missing: ${missing}\nnot expected: ${extra}")
  endif()

elseif(CHECK STREQUAL "DependsOnTheLibrariesItLinks")
  # The C library and Qt appear only when dpkg-shlibdeps read the binaries.
  run(dpkg-deb -f ${deb} Depends)
  foreach(library IN ITEMS libc6 libqt6core6 libqt6widgets6 libglu1-mesa libavcodec59)
    if(NOT out MATCHES "(^|[ ,])${library}[ ,(]")
      message(FATAL_ERROR "Depends lacks ${library}: '${out}'")
    endif()
  endforeach()

elseif(CHECK STREQUAL "ProgramsRunUnpacked")
  run(${root}/usr/bin/orrenvale-batch --version)
  if(NOT out STREQUAL "orrenvale-batch ${VERSION}\n")
    message(FATAL_ERROR "unexpected version: '${out}'")
  endif()
  run(${root}/usr/bin/orrenvale-batch -n 100 --summary ${root}/usr/share/orrenvale/examples/figure-eight.ovd)
  if(NOT out MATCHES "^steps\t100\n.*\nbodies\t3\n")
    message(FATAL_ERROR "unexpected summary of the packaged example:\n${out}")
  endif()
  run(${offscreen} ${root}/usr/bin/orrenvale --version)
  if(NOT out STREQUAL "Orrenvale ${VERSION}\n")
    message(FATAL_ERROR "unexpected version: '${out}'")
  endif()

elseif(CHECK STREQUAL "MetainfoValidates")
  # --strict fails on warnings and hints too, not only on errors.
  run(appstreamcli validate --no-net --strict ${metainfo})
  file(READ ${metainfo} xml)
  # Releases are listed newest first.
  if(NOT xml MATCHES "<release version=\"([^\"]*)\"" OR NOT CMAKE_MATCH_1 STREQUAL VERSION)
    message(FATAL_ERROR "the newest release in ${metainfo} is '${CMAKE_MATCH_1}', not ${VERSION}")
  endif()
  string(REGEX MATCHALL "<binary>[^<]+</binary>" binaries "${xml}")
  foreach(binary IN LISTS binaries)
    string(REGEX REPLACE "</?binary>" "" binary "${binary}")
    if(NOT EXISTS ${root}/usr/bin/${binary})
      message(FATAL_ERROR "${metainfo} names ${binary}, which the package lacks")
    endif()
  endforeach()

elseif(CHECK STREQUAL "ManPagesAreCompressedAndLintClean")
  foreach(page IN LISTS man_pages)
    # The header gzip -9n writes: deflate, no flags (so no file name), time
    # stamp 0, extra flags 2 ("best compression"); the operating system follows.
    file(READ ${page} header LIMIT 10 HEX)
    if(NOT header MATCHES "^1f8b08000000000002")
      message(FATAL_ERROR "${page} is not compressed with gzip -9n (header ${header})")
    endif()
    run(${CMAKE_COMMAND} -E env LC_ALL=C.UTF-8 MANROFFSEQ= MANWIDTH=80
      man --warnings -E UTF-8 -l -Tutf8 -Z ${page})
    if(NOT err STREQUAL "")
      message(FATAL_ERROR "${page}:\n${err}")
    endif()
  endforeach()

elseif(CHECK STREQUAL "ManPagesNameEveryOption")
  foreach(program IN ITEMS orrenvale orrenvale-batch)
    run(${offscreen} ${root}/usr/bin/${program} --help)
    # Options are the -x and --name words of the help lines that start with one.
    string(REGEX MATCHALL "\n *-[^\n]*" lines "${out}")
    set(options "")
    foreach(line IN LISTS lines)
      string(REGEX MATCHALL "(^|[ ,])-(-[a-z][-a-z]*|[a-z])" words "${line}")
      foreach(word IN LISTS words)
        string(REGEX REPLACE "^[ ,]" "" word "${word}")
        list(APPEND options ${word})
      endforeach()
    endforeach()
    if(NOT options)
      message(FATAL_ERROR "no options found in the help of ${program}:\n${out}")
    endif()
    # Without hyphenation or justification every option stays one word. An
    # option counts as described when it heads an entry of the OPTIONS
    # section: a line indented by the section's 7 columns, not more.
    run(${CMAKE_COMMAND} -E env LC_ALL=C.UTF-8 MANWIDTH=200
      man --nh --nj -E UTF-8 -l ${root}/usr/share/man/man1/${program}.1.gz)
    if(NOT out MATCHES "\nOPTIONS(\n.*)")
      message(FATAL_ERROR "the manual page of ${program} has no OPTIONS section")
    endif()
    string(REGEX REPLACE "\n[A-Z].*" "" section "${CMAKE_MATCH_1}")
    string(REGEX MATCHALL "\n       -[^\n]*" entries "${section}")
    foreach(option IN LISTS options)
      if(NOT entries MATCHES "(^|[^-a-z])${option}([^-a-z]|$)")
        message(FATAL_ERROR "no entry of the manual page of ${program} describes ${option}")
      endif()
    endforeach()
  endforeach()

else()
  message(FATAL_ERROR "unknown check '${CHECK}'")
endif()
