# cmake -DNAME=… -DFILE=… -DSOURCE=… -P EmbedFile.cmake: writes SOURCE with the bytes of FILE (see Embed.cmake).
file(READ "${FILE}" hex HEX)
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)"
                     "\\1\n" bytes "${bytes}")
file(WRITE "${SOURCE}"
     "#include <string_view>\n\nnamespace runtime::output {\n\nstd::string_view ${NAME}() {\n"
     "  static const unsigned char bytes[] = {\n${bytes}0x00};\n"
     "  return {reinterpret_cast<const char*>(bytes), sizeof bytes - 1};\n}\n\n}  // namespace runtime::output\n")
