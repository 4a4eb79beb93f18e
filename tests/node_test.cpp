#include "tests/builders.h"

TEST(NodeDeclarations, LinesAndLists)
{
    const auto file = [](std::string_view nodes) { return Bare(Component("U1", "1 S NC\n", nodes)); };
    EXPECT_EQ(Messages(file("[Node Declarations]\n[End Node Declarations]\n")), Lines{});
    EXPECT_EQ(Messages(file("[Node Declarations]\na b\n\tc\n[End Node Declarations]\nx\n")).size(), 1U);
    EXPECT_EQ(
        Messages(file("[Node Declarations]\na\n[Node Declarations]\n" + std::string(500, 'n') + "\n")).size(),
        2U);  // the repeat, and the length of the line
}
