# What every Windows binary needs: one file that imports system libraries only, and the same bytes
# from every build.
enable_language(RC)
add_compile_definitions(_WIN32_WINNT=0x0601 UNICODE _UNICODE NOMINMAX)
add_compile_options(-ffile-prefix-map=${CMAKE_SOURCE_DIR}=. -ffile-prefix-map=${CMAKE_BINARY_DIR}=.)
add_link_options(-static -s -Wl,--no-insert-timestamp)
