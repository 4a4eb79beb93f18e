#include "tests/builders.h"

TEST(CleanFile, EveryVersionIsSilent)
{
    for (const char* version : {"2.1", "3.2", "4.2", "5.1", "6.0", "6.1"}) {
        EXPECT_EQ(Messages(Ibs(Model("M"), version)), Lines{}) << version;
        EXPECT_EQ(Messages(Ibs(Model("M") + Driver("D"), version)), Lines{}) << version;
    }
}
