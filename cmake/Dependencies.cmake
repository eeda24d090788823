# Finds the third-party libraries. The Linux build takes them from Debian's
# packages; the mingw cross build takes header-only libraries from the host
# through a staged include folder (never the whole of /usr/include) and Expat
# from the cross build made by scripts/build-expat-mingw.sh.
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

  set(TARNI_EXPAT_PREFIX "${CMAKE_BINARY_DIR}/../expat-mingw" CACHE PATH "Expat built for the cross target")
  find_library(TARNI_EXPAT_LIB NAMES libexpat.a expat PATHS ${TARNI_EXPAT_PREFIX}/lib NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  if(NOT TARNI_EXPAT_LIB)
    message(FATAL_ERROR "Expat for the cross target not found under ${TARNI_EXPAT_PREFIX}; run scripts/build-expat-mingw.sh")
  endif()
  add_library(tarni_expat STATIC IMPORTED)
  set_target_properties(tarni_expat PROPERTIES IMPORTED_LOCATION ${TARNI_EXPAT_LIB}
    INTERFACE_INCLUDE_DIRECTORIES ${TARNI_EXPAT_PREFIX}/include
    INTERFACE_COMPILE_DEFINITIONS XML_STATIC)
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
