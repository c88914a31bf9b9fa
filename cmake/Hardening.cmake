# Optimised builds are hardened: the plug-in lives for months inside another program's process.
if(CMAKE_BUILD_TYPE STREQUAL "RelWithDebInfo" OR CMAKE_BUILD_TYPE STREQUAL "Release")
  add_compile_options(-fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
  # Bound at once, so that calls need no stubs that would bind them later.
  add_compile_options(-fno-plt -fno-semantic-interposition)
  add_link_options(-Wl,-z,relro,-z,now)
endif()
