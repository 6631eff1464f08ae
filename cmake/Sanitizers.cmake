# Sanitizers by name: -DZRVOMGUI_SANITIZE=address,undefined or -DZRVOMGUI_SANITIZE=thread.
set(ZRVOMGUI_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize= takes them")
if(ZRVOMGUI_SANITIZE)
    # Line numbers in the reports need -g1, which the build types of the presets bring.
    add_compile_options(-fsanitize=${ZRVOMGUI_SANITIZE} -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${ZRVOMGUI_SANITIZE})
    if(ZRVOMGUI_SANITIZE MATCHES undefined)
        add_compile_options(-fno-sanitize-recover=undefined)
    endif()
endif()
if(ZRVOMGUI_FUZZ)
    # Fuzzing follows the edges that an input takes through all our code.
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()
