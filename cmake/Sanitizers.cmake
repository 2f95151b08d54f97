# The build type of the sanitizers' presets: it compiles in less than half the time of RelWithDebInfo, and reports still
# name lines.
set(CMAKE_CXX_FLAGS_SANITIZED "-O1 -g1 -DNDEBUG")
set(CMAKE_C_FLAGS_SANITIZED "-O1 -g1 -DNDEBUG")

if(TESSERET_SANITIZE)
  add_compile_options(-fsanitize=${TESSERET_SANITIZE} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${TESSERET_SANITIZE})
endif()
