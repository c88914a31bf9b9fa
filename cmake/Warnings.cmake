# The options every target of the project is built with.
option(ZEL_WERROR "Treat warnings as errors" OFF)

add_library(zel_options INTERFACE)
target_compile_options(
  zel_options
  INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
            $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast>
            $<$<COMPILE_LANGUAGE:CXX>:-Woverloaded-virtual>
            $<$<BOOL:${ZEL_WERROR}>:-Werror>)
