# cmake -DINPUT=FILE -DOUTPUT=FILE.cpp -DHEADER=FILE.h -DFUNCTION=NAME -P EmbedText.cmake
# Writes a source file whose function gives the lines of a text file in pieces: compilers need not take string
# literals of 64 kB or more.

set(piece_size 60000)
file(READ "${INPUT}" text)
string(CONCAT source "// Made from a text file by EmbedText.cmake.\n\n#include \"${HEADER}\"\n\n#include <array>\n\n"
    "std::span<const std::string_view> ${FUNCTION}()\n{\n"
    "    using namespace std::string_view_literals;\n"
    "    static constexpr auto PIECES = std::to_array<std::string_view>({\n")
while(NOT text STREQUAL "")
    string(SUBSTRING "${text}" 0 ${piece_size} piece)
    string(FIND "${piece}" "\n" line_end REVERSE)
    math(EXPR length "${line_end} + 1")
    string(SUBSTRING "${text}" 0 ${length} piece)
    string(SUBSTRING "${text}" ${length} -1 text)
    string(APPEND source "        R\"text(${piece})text\"sv,\n")
endwhile()
string(APPEND source "    });\n    return PIECES;\n}\n")
file(WRITE "${OUTPUT}" "${source}")
