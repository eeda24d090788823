# Writes a C++ source that holds the text of the resource script and of its
# resource.h, for the builds that read the templates themselves (the terminal
# and scripted dialog hosts). Run at build time:
#   cmake -DSCRIPT=... -DHEADER=... -DOUTPUT=... -P EmbedResourceScript.cmake
# The texts are written as byte arrays, which every compiler takes whatever
# their length and whatever characters they hold.
function(tarni_embed_text variable path out)
  file(READ ${path} hex HEX)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
  string(REGEX REPLACE "((0x[0-9a-f][0-9a-f],){32})" "\\1\n" bytes "${bytes}")
  set(${out} "static const unsigned char ${variable}Bytes[] = {\n${bytes}0x00};\nextern const char* const ${variable};\nconst char* const ${variable} = reinterpret_cast<const char*>(${variable}Bytes);\n" PARENT_SCOPE)
endfunction()

tarni_embed_text(g_tarniResourceScriptText ${SCRIPT} script_source)
tarni_embed_text(g_tarniResourceHeaderText ${HEADER} header_source)
file(WRITE ${OUTPUT}.tmp "// Generated from the resource script at build time; do not edit.\n${script_source}${header_source}")
file(COPY_FILE ${OUTPUT}.tmp ${OUTPUT} ONLY_IF_DIFFERENT)
