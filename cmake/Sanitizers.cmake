if(TESSERET_SANITIZE)
  add_compile_options(-fsanitize=${TESSERET_SANITIZE} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${TESSERET_SANITIZE})
endif()
