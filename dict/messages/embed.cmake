# Writes a source file with the text of another file: cmake -DFROM=... -DTO=... -P embed.cmake
file(READ "${FROM}" text)
file(WRITE "${TO}" "#include \"dict/messages/messages.h\"\n
namespace dict {\n
const char MESSAGES_PAGE[] = R\"page(${text})page\";\n
}  // namespace dict\n")
