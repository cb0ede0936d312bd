# Warnings are errors in every preset. The optimiser's guesses about code it inlined from the standard
# library (GCC 12) stay warnings: they name lines nobody here wrote.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wnon-virtual-dtor
                    -Woverloaded-virtual -Wold-style-cast -Wimplicit-fallthrough -Werror
                    -Wno-error=restrict -Wno-error=maybe-uninitialized -Wno-error=stringop-overflow
                    -Wno-error=array-bounds)
if(EXCELEXP_SANITIZE)
  # Instrumented code makes those guesses wherever <regex> is used; the uninstrumented build still prints them.
  add_compile_options(-Wno-maybe-uninitialized -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
