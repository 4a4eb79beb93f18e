#include "ibis/source/nuibis_sswch.h"

#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_ibis.h"
#include "tests/builders.h"

namespace
{

// [Series Switch Groups] on line 13, its lines from 14 on; groups that no mapping uses are another rule.
std::string GroupsFile(std::string_view lines, std::string_view keyword = "[Series Switch Groups]")
{
    return Bare(
        Component("U1", "1 S NC 1 1n 1p\n2 S NC 1 1n 1p\n", std::string(keyword) + "\n" + std::string(lines)),
        "3.2");
}

Lines GroupsMessages(std::string_view lines, std::string_view keyword = "[Series Switch Groups]")
{
    return Unfolded(MessagesWith("(line", GroupsFile(lines, keyword)));
}

// The records of the last read, as "On:A,B".
Lines Groups()
{
    Lines found;
    ibis* root = nullptr;
    if (!IBIS_GetCurrent(&root) || root->pComponents == nullptr) {
        return found;
    }
    for (const SSWCH* state = root->pComponents->pSeriesSwitchGroups; state != nullptr;
         state = state->pNext) {
        std::string text = std::string(state->szState) + ":";
        for (int i = 0; i < state->iGroupCount; ++i) {
            text += (i == 0 ? "" : ",") + std::string(state->ppszGroups[i]);
        }
        found.push_back(text);
    }
    return found;
}

const std::string OPEN = "Previous keyword not terminated properly. Possibly missing a \"/\"\n";

}  // namespace

TEST(SeriesSwitchGroups, LinesGoOnUntilTheirEnd)
{
    const std::string taken = "Unable to add data for Series_Switch_Group keyword.";
    const struct {
        std::string lines;
        Lines messages;
        Lines groups;
    } rows[] = {
        {"On A B /\nOff C /\n", {}, {"On:A,B", "Off:C"}},
        {"On A B\nC /\n", {}, {"On:A,B,C"}},
        {"On A\n\n| comment\nB\nOff_too /\nOff /\n", {}, {"On:A,B,Off_too", "Off:"}},
        {"On A / B C\nOff D /\n", {}, {"On:A", "Off:D"}},
        {"Off A B/\nOn C /\n",
         {"ERROR (line   15) - Series switch Group name cannot be 'On' or 'Off'"},
         {"Off:A,B/,On,C"}},
        {"On\nOff A /\n", {"ERROR (line   14) - No Group names specified on this line"}, {"On:", "Off:A"}},
        {"on A /\nOn B /\n",
         {"ERROR (line   14) - Unknown sub parameter 'on'", "ERROR (line   14) - " + taken},
         {"On:B"}},
        {"On A A B A\nA /\n",
         {"ERROR (line   14) - Duplicate Series switch Group name 'A'",
          "ERROR (line   14) - Duplicate Series switch Group name 'A'",
          "ERROR (line   15) - Duplicate Series switch Group name 'A'"},
         {"On:A,A,B,A,A"}},
        {"On Off nc /\nOff Off /\n",
         {"ERROR (line   14) - Series switch Group name cannot be 'On' or 'Off'",
          "ERROR (line   14) - Illegal use of Reserved Word 'nc'.",
          "ERROR (line   15) - Series switch Group name cannot be 'On' or 'Off'"},
         {"On:Off,nc", "Off:Off"}},
        {"On " + std::string(20, 'g') + " " + std::string(21, 'g') + " /\n",
         {"ERROR (line   14) - Series switch Group name '" + std::string(21, 'g') +
              "' over 20 characters long",
          "ERROR (line   14) - Duplicate Series switch Group name '" + std::string(20, 'g') + "'"},
         {"On:" + std::string(20, 'g') + "," + std::string(20, 'g')}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(GroupsMessages(row.lines), row.messages) << row.lines;
        EXPECT_EQ(Groups(), row.groups) << row.lines;
    }
}

TEST(SeriesSwitchGroups, AKeywordEndsAnOpenLine)
{
    EXPECT_EQ(GroupsMessages("On A B\n[Package Model] P\n[Series Switch Groups]\nOff C /\n"),
              (Lines{"ERROR (line   15) - " + OPEN,
                     "ERROR (line   16) - Duplicate [Series_Switch_Groups] keyword found."}));
    EXPECT_EQ(Groups(), (Lines{"On:A,B", "Off:C"}));
    EXPECT_EQ(GroupsMessages("On A\n"), (Lines{"ERROR (line   15) - " + OPEN}));
    EXPECT_EQ(
        GroupsMessages("On A /\n", "[Series Switch Groups] On A /"),
        (Lines{"ERROR (line   13) - Incorrect Number of Line Items (4) For Series_Switch_Groups: Expecting "
               "1"}));
}

TEST(SeriesSwitchGroups, EveryGroupSwitchesAPair)
{
    const std::string mapping = "[Series Pin Mapping] pin_2 model_name function_table_group\n1 2 M A\n";
    const std::string warning = "WARNING - Component: U1 Series Switch Function '";
    EXPECT_EQ(Unfolded(MessagesWith("Function '", GroupsFile("On A B /\nOff B a /\n" + mapping))),
              (Lines{warning + "B' is used but not defined", warning + "B' is used but not defined",
                     warning + "a' is used but not defined"}));
    EXPECT_EQ(Unfolded(MessagesWith("Function '", GroupsFile("On A /\n"))),
              (Lines{warning + "A' is used but not defined"}));
}

// A group is found whichever line of whichever state names it, also when lines come behind a lookup.
TEST(SeriesSwitchGroups, GroupsAreFound)
{
    SSWCH* list = nullptr;
    SSWCH* record = nullptr;
    for (const char* line : {"On A", "B /", "Off C /"}) {
        EXPECT_FALSE(SSWCH_HasGroup(list, "C"));
        ASSERT_TRUE(SSWCH_ReadLine(line, &record));
        EXPECT_EQ(SSWCH_Has(list, record), line[0] == 'B');
        if (!SSWCH_Has(list, record)) {
            SSWCH_Add(list, record);
        }
        EXPECT_TRUE(SSWCH_HasGroup(list, "A"));
    }
    EXPECT_TRUE(SSWCH_HasGroup(list, "B"));
    EXPECT_TRUE(SSWCH_HasGroup(list, "C"));
    SSWCH_Free(list);
}
