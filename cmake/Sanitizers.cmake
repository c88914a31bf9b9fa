# ZEL_SANITIZE: a comma-separated list for -fsanitize (address,undefined or thread); empty for none.
set(ZEL_SANITIZE "" CACHE STRING "Sanitizers to build everything with")

if(ZEL_SANITIZE)
  add_compile_options(-fsanitize=${ZEL_SANITIZE} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${ZEL_SANITIZE})
endif()
