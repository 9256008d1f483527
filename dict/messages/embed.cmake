# Writes a source file with the text of another file: cmake -DFROM=... -DTO=... -DNAME=... -P embed.cmake
file(READ "${FROM}" text)
file(WRITE "${TO}" "#include \"dict/messages/messages.h\"\n
namespace dict {\n
const char ${NAME}[] = R\"page(${text})page\";\n
}  // namespace dict\n")
