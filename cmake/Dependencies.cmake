# Finds the third-party libraries. The Linux build takes them from Debian's
# packages; the mingw cross build takes header-only libraries from the host
# through a staged include folder (never the whole of /usr/include) and Expat,
# OpenSSL and Apache Thrift from the cross builds that
# scripts/build-<name>-mingw.sh keep in the user's cache folder
# (tarni-cross/<name>-<Debian version>, the newest complete one is taken).
find_package(Threads REQUIRED)

if(WIN32)
  set(TARNI_HOST_HEADERS ${CMAKE_BINARY_DIR}/host-headers)
  file(MAKE_DIRECTORY ${TARNI_HOST_HEADERS})
  foreach(dir boost nlohmann)
    if(NOT EXISTS ${TARNI_HOST_HEADERS}/${dir})
      file(CREATE_LINK /usr/include/${dir} ${TARNI_HOST_HEADERS}/${dir} SYMBOLIC)
    endif()
  endforeach()
  add_library(tarni_host_headers INTERFACE)
  target_include_directories(tarni_host_headers SYSTEM INTERFACE ${TARNI_HOST_HEADERS})

  if(DEFINED ENV{XDG_CACHE_HOME} AND NOT "$ENV{XDG_CACHE_HOME}" STREQUAL "")
    set(TARNI_CROSS_CACHE "$ENV{XDG_CACHE_HOME}/tarni-cross")
  else()
    set(TARNI_CROSS_CACHE "$ENV{HOME}/.cache/tarni-cross")
  endif()
  # tarni_cross_prefix(<var> <name> [<built-against>]): the newest complete
  # cross build of <name> (built against <built-against>, which its script
  # appends to the folder name after a "+").
  function(tarni_cross_prefix out name)
    set(against "")
    if(ARGC GREATER 2)
      set(against "+${ARGV2}")
    endif()
    # A version starts with a digit: openssl-* must not match openssl-static-*.
    file(GLOB candidates LIST_DIRECTORIES true "${TARNI_CROSS_CACHE}/${name}-[0-9]*${against}")
    list(SORT candidates COMPARE NATURAL ORDER DESCENDING)
    foreach(dir IN LISTS candidates)
      if(EXISTS "${dir}/.complete")
        set(${out} "${dir}" PARENT_SCOPE)
        return()
      endif()
    endforeach()
    set(${out} "" PARENT_SCOPE)
  endfunction()

  # TARNI_EXPAT_PREFIX and TARNI_OPENSSL_PREFIX may be given on the command
  # line; otherwise the cache is searched on every configuration. Expat falls
  # back to build/expat-mingw, where its script used to put it.
  if(NOT TARNI_EXPAT_PREFIX)
    tarni_cross_prefix(TARNI_EXPAT_PREFIX expat)
    if(NOT TARNI_EXPAT_PREFIX)
      set(TARNI_EXPAT_PREFIX "${CMAKE_BINARY_DIR}/../expat-mingw")
    endif()
  endif()
  find_library(TARNI_EXPAT_LIB NAMES libexpat.a expat PATHS ${TARNI_EXPAT_PREFIX}/lib
    NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH NO_CACHE)
  if(NOT TARNI_EXPAT_LIB)
    message(FATAL_ERROR "Expat for the cross target not found under ${TARNI_EXPAT_PREFIX}; run scripts/build-expat-mingw.sh")
  endif()
  add_library(tarni_expat STATIC IMPORTED)
  set_target_properties(tarni_expat PROPERTIES IMPORTED_LOCATION ${TARNI_EXPAT_LIB}
    INTERFACE_INCLUDE_DIRECTORIES ${TARNI_EXPAT_PREFIX}/include
    INTERFACE_COMPILE_DEFINITIONS XML_STATIC)

  # OpenSSL: libcrypto is loaded at run time by the programs (its DLLs beside
  # them and the tests); the connection test links the static libraries, so
  # that the setup DLL imports system DLLs only.
  if(NOT TARNI_OPENSSL_PREFIX)
    tarni_cross_prefix(TARNI_OPENSSL_PREFIX openssl-static)
  endif()
  if(TARNI_OPENSSL_PREFIX AND EXISTS "${TARNI_OPENSSL_PREFIX}/bin/libcrypto-3-x64.dll"
     AND EXISTS "${TARNI_OPENSSL_PREFIX}/lib/libssl.a")
    message(STATUS "OpenSSL for the cross target: ${TARNI_OPENSSL_PREFIX}")
    file(GLOB TARNI_OPENSSL_DLLS "${TARNI_OPENSSL_PREFIX}/bin/*.dll")
    file(COPY ${TARNI_OPENSSL_DLLS} DESTINATION ${CMAKE_BINARY_DIR}/bin)
    add_library(tarni_openssl_crypto SHARED IMPORTED)
    set_target_properties(tarni_openssl_crypto PROPERTIES
      IMPORTED_IMPLIB "${TARNI_OPENSSL_PREFIX}/lib/libcrypto.dll.a"
      IMPORTED_LOCATION "${TARNI_OPENSSL_PREFIX}/bin/libcrypto-3-x64.dll"
      INTERFACE_INCLUDE_DIRECTORIES "${TARNI_OPENSSL_PREFIX}/include")
    # What static OpenSSL needs from Windows: sockets, the certificate store,
    # the registry and the random generator.
    add_library(tarni_openssl_crypto_static STATIC IMPORTED)
    set_target_properties(tarni_openssl_crypto_static PROPERTIES
      IMPORTED_LOCATION "${TARNI_OPENSSL_PREFIX}/lib/libcrypto.a"
      INTERFACE_INCLUDE_DIRECTORIES "${TARNI_OPENSSL_PREFIX}/include"
      INTERFACE_LINK_LIBRARIES "ws2_32;crypt32;user32;advapi32;gdi32;bcrypt")
    add_library(tarni_openssl_ssl_static STATIC IMPORTED)
    set_target_properties(tarni_openssl_ssl_static PROPERTIES
      IMPORTED_LOCATION "${TARNI_OPENSSL_PREFIX}/lib/libssl.a"
      INTERFACE_INCLUDE_DIRECTORIES "${TARNI_OPENSSL_PREFIX}/include"
      INTERFACE_LINK_LIBRARIES tarni_openssl_crypto_static)
  else()
    message(STATUS "OpenSSL for the cross target not found; run scripts/build-openssl-mingw.sh")
  endif()

  # Apache Thrift: found here for src/thrift, which looks for it by these
  # names; only a build made against this OpenSSL is taken.
  set(thrift_prefix "")
  if(TARGET tarni_openssl_ssl_static)
    get_filename_component(openssl_build "${TARNI_OPENSSL_PREFIX}" NAME)
    string(REPLACE "openssl-static-" "openssl-" openssl_build "${openssl_build}")
    tarni_cross_prefix(thrift_prefix thrift "${openssl_build}")
  endif()
  if(thrift_prefix)
    find_path(TARNI_THRIFT_INCLUDE_DIR thrift/transport/TTransportException.h
      PATHS ${thrift_prefix}/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH NO_CACHE)
    find_library(TARNI_THRIFT_LIBRARY NAMES libthrift.a libthriftMD.a
      PATHS ${thrift_prefix}/lib NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH NO_CACHE)
    # What the static library needs from the system and from OpenSSL.
    set(TARNI_THRIFT_DEPENDENCIES tarni_openssl_ssl_static ws2_32 crypt32)
  endif()

  # The ZooKeeper C client of scripts/build-zookeeper-mingw.sh (static, its
  # own hash table beside it). Its headers choose Winsock by WIN32, which a
  # strict C++ standard mode leaves undefined.
  tarni_cross_prefix(zookeeper_prefix zookeeper)
  if(zookeeper_prefix AND TARNI_THRIFT_LIBRARY)
    add_library(tarni_zookeeper_static STATIC IMPORTED)
    set_target_properties(tarni_zookeeper_static PROPERTIES
      IMPORTED_LOCATION "${zookeeper_prefix}/lib/libzookeeper_mt.a"
      INTERFACE_LINK_LIBRARIES "${zookeeper_prefix}/lib/libhashtable.a;ws2_32"
      INTERFACE_COMPILE_DEFINITIONS "USE_STATIC_LIB;WIN32")
    set(TARNI_ZOOKEEPER_INCLUDE_DIR "${zookeeper_prefix}/include")
    set(TARNI_ZOOKEEPER_LIBRARY tarni_zookeeper_static)
  endif()
else()
  find_package(ICU 70 REQUIRED COMPONENTS uc i18n)
  find_package(Boost 1.74 REQUIRED)
  find_package(EXPAT REQUIRED)
  find_package(nlohmann_json 3 REQUIRED)
  add_library(tarni_host_headers INTERFACE)
  target_link_libraries(tarni_host_headers INTERFACE Boost::boost nlohmann_json::nlohmann_json)
  add_library(tarni_expat INTERFACE)
  target_link_libraries(tarni_expat INTERFACE EXPAT::EXPAT)
endif()

if(TARNI_BUILD_TESTS)
  if(WIN32)
    # Debian ships GoogleTest as source; build it for the cross target.
    set(gtest_force_shared_crt ON CACHE BOOL "" FORCE)
    set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
    add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
  else()
    find_package(GTest REQUIRED)
  endif()
  include(GoogleTest)
endif()
