#include "ibis/source/nuibis_names.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>

namespace
{

std::string RandomName(std::mt19937& random)
{
    static constexpr std::string_view letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_+";
    std::string name(1 + random() % NAMES_Places::LONGEST, ' ');
    for (char& c : name) {
        c = letters[random() % letters.size()];
    }
    return name;
}

}  // namespace

TEST(Names, KeepTheirFirstPlace)
{
    NAMES_Places places;
    EXPECT_EQ(places.find("A1"), 0U);
    std::map<std::string, unsigned> expected;
    std::mt19937 random(1);
    for (unsigned place = 1; place <= 60'000; ++place) {
        const std::string name = RandomName(random);
        EXPECT_EQ(places.add(name, place), expected.emplace(name, place).second) << name;
    }
    ASSERT_LT(expected.size(), 60'000U);
    for (const auto& [name, place] : expected) {
        EXPECT_EQ(places.find(name), place) << name;
    }
    for (int i = 0; i < 10'000; ++i) {
        const std::string name = RandomName(random);
        const auto known = expected.find(name);
        EXPECT_EQ(places.find(name), known == expected.end() ? 0 : known->second) << name;
    }
    for (const std::string_view name : {"", "a", "ABCDEFGH", "ABCDEFGHIJKLMNOPQRSTUVWXYZ"}) {
        EXPECT_EQ(places.find(name), 0U) << name;
    }
    places.clear();
    EXPECT_EQ(places.find(expected.begin()->first), 0U);
    EXPECT_TRUE(places.add(expected.begin()->first, 1));
}
