# embed_text(target file name): compiles the text of `file` into `target` as the std::string_view
# excelexp::`name`, so that the command carries its schema with it.
function(embed_text target file name)
  if(NOT EXISTS ${PROJECT_SOURCE_DIR}/${file})
    return()
  endif()
  set(output ${CMAKE_CURRENT_BINARY_DIR}/embedded/${name}.cpp)
  add_custom_command(
    OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -DINPUT=${PROJECT_SOURCE_DIR}/${file} -DOUTPUT=${output} -DNAME=${name}
            -P ${PROJECT_SOURCE_DIR}/cmake/EmbedText.cmake
    DEPENDS ${PROJECT_SOURCE_DIR}/${file} ${PROJECT_SOURCE_DIR}/cmake/EmbedText.cmake)
  target_sources(${target} PRIVATE ${output})
endfunction()
