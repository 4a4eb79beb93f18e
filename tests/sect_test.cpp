#include "ibis/source/nuibis_sect.h"
#include "tests/builders.h"

#include <sstream>

namespace
{

// Reads sections until none is left: each as "[Len L R C]" with "-" for what was not given, then "!" for a
// section that was not closed.
std::string Sections(std::string_view text)
{
    std::ostringstream out;
    SECT* section = nullptr;
    int result = 1;
    while ((result = SECT_ParseNext(text, &section)) != 0 && section != nullptr) {
        const char* separator = "[";
        for (const double* value : {section->pdLen, section->pdL, section->pdR, section->pdC}) {
            out << separator;
            separator = " ";
            if (value == nullptr) {
                out << '-';
            } else {
                out << *value;
            }
        }
        out << ']';
        SECT_Free(section);
    }
    return out.str() + (result == 0 ? "!" : "");
}

struct Row {
    std::string_view sText;
    std::string_view sSections;
    Lines messages;
};

const std::string AT = "ERROR (line    0) - ";

}  // namespace

TEST(Section, Grammar)
{
    const Row rows[] = {
        {"Len=0 L=1n / Len=2 L=3n C=4p R=0.1 / Len=0 C=1p /",
         "[0 1e-09 - -][2 3e-09 0.1 4e-12][0 - - 1e-12]",
         {}},
        {"  Len = 1n\tL=1n C\t= 1p/", "[1e-09 1e-09 - 1e-12]", {}},
        {"Len=0 /", "[0 - - -]", {}},
        {"", "", {}},
        {"Len=1 L=1n /", "[1 1e-09 - -]", {AT + " L and C must be specified when Len != 0"}},
        {"/", "[- - - -]", {AT + "Empty R/L/C section found"}},
        {"L=1n C=1p /",
         "[- 1e-09 - 1e-12]",
         {AT + "Len should be specified before L", AT + "Len should be specified before C"}},
        {"R=1 Len=0 /", "[0 - 1 -]", {AT + "Len should be specified before R"}},
        {"Len=0 L=1 L=2 R=3 R=4 C=5 C=6 Len=0 /",
         "[0 2 4 6]",
         {AT + "Duplicate L sub param in R/L/C section", AT + "Duplicate R sub param in R/L/C section",
          AT + "Duplicate C sub param in R/L/C section", AT + "Duplicate Len sub param in R/L/C section"}},
        {"Len=-1 L=-1n C=-1p R=-1 /",
         "[-1 -1e-09 -1 -1e-12]",
         {AT + "Len should not be less than zero", AT + "L should not be less than zero",
          AT + "C should not be less than zero", AT + "R should not be less than zero"}},
        {"Len=1 L=1n C=1p", "!", {AT + "Premature end of R/L/C section. Trailing '/' missing"}},
        {"Len=0 / Len=1 L=",
         "[0 - - -]!",
         {AT + "Premature end of R/L/C section",
          AT + "Premature end of R/L/C section. Trailing '/' missing"}},
    };
    for (const Row& row : rows) {
        std::string sections;
        EXPECT_EQ(MessagesOf([&] { sections = Sections(row.sText); }), row.messages) << row.sText;
        EXPECT_EQ(sections, row.sSections) << row.sText;
    }
}

// What cannot be understood is told, and the section goes on behind it.
TEST(Section, GoesOnBehindAFault)
{
    const Row rows[] = {
        {"Len 1 / Len=0 /", "[0 - - -]", {AT + "Error parsing R/L/C section. Missing '='"}},
        {"len=1 / Len=0 /",
         "[- - - -][0 - - -]",
         {AT + "Unexpected token 'len' found in R/L/C section", AT + "Unexpected '=' found",
          AT + "Unexpected token '1' found in R/L/C section", AT + "Empty R/L/C section found"}},
        {"Len=0 L=x R=1m2 C=/",
         "[0 0 0.001 0]",
         {AT + "Illegal number found 'x'", AT + "Illegal number found '1m2'",
          AT + "Numerical value expected"}},
    };
    for (const Row& row : rows) {
        std::string sections;
        EXPECT_EQ(MessagesOf([&] { sections = Sections(row.sText); }), row.messages) << row.sText;
        EXPECT_EQ(sections, row.sSections) << row.sText;
    }
}
