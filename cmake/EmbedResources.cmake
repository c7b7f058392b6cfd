# The English language resource module is compiled into KORVAutl: the string
# table resources/strings.txt and the files listed in resources/resources.txt
# become one generated source file.
set(KORVA_EMBED_SCRIPT ${CMAKE_CURRENT_LIST_DIR}/EmbedResourcesScript.cmake)

function(korva_embed_resources resource_dir output)
  file(GLOB_RECURSE resource_files CONFIGURE_DEPENDS ${resource_dir}/*)
  add_custom_command(
    OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -DRESOURCE_DIR=${resource_dir} -DOUTPUT=${output} -P ${KORVA_EMBED_SCRIPT}
    DEPENDS ${resource_files} ${KORVA_EMBED_SCRIPT}
    COMMENT "Embedding the English resource module"
    VERBATIM)
endfunction()
