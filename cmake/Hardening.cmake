# What is released is hardened, and says nothing of the folder that it was built in. This holds for
# everything that is compiled, Qt's generated sources included.

if(NOT CMAKE_BUILD_TYPE STREQUAL "Release" OR LORVANE_SANITIZE)
  return()
endif()
# A position-independent executable is the default of Debian's compiler; a test asks for it.
add_compile_options(-fstack-protector-strong -fstack-clash-protection
                    -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2
                    # The last one that fits counts.
                    -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.
                    -ffile-prefix-map=${PROJECT_BINARY_DIR}=build)
if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
  add_compile_options(-fcf-protection)
endif()
add_link_options(-Wl,-z,relro,-z,now,-z,noexecstack)
