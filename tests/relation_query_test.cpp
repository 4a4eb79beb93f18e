// Queries about the relations of a component's pins.

#include "ibis/source/nuibis_algmod.h"
#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "tests/queries.h"

#include <cstring>

namespace
{

// Receivers R and drivers D on single and paired pins, a selector, rails, and a switch between 7 and 8.
std::string File(std::string_view extra = "")
{
    return Bare(Component("U1", "1 s1 R\n2 s2 D\n3 p SEL\n4 n SEL\n5 v POWER\n6 g GND\n7 x R\n8 y NC\n",
                          "[Diff Pin] inv_pin vdiff tdelay_typ tdelay_min tdelay_max\n3 4 0.2 1n NA NA\n"
                          "[Series Pin Mapping] pin_2 model_name function_table_group\n7 8 W G1\n"
                          "[Series Switch Groups]\nOn G1 G2 /\nOff G1 /\n" +
                              std::string(extra)) +
                    Component("U2", "") + Model("R") + Driver("D") +
                    "[Model Selector] SEL\nR one\nD two\n"
                    "[Model] W\nModel_type Series_switch\nC_comp 1p 1p 1p\n[On]\n[R Series] 1 1 1\n[Off]\n[R "
                    "Series] 1k 1k "
                    "1k\n",
                "6.0");
}

std::string Name()
{
    return TestFolder() + "/t.ibs";
}

std::string PinRow(std::string pin, std::string signal, const std::string& model)
{
    pin.resize(9, ' ');
    signal.resize(44, ' ');
    return pin + signal + model;
}

Lines Table(const Lines& rows)
{
    Lines table{PinRow("Name", "Signal Name", "Model Name"), std::string(76, '-')};
    table.insert(table.end(), rows.begin(), rows.end());
    return table;
}

}  // namespace

TEST(PinModelList, SymbolsFilter)
{
    const TalIbis& file = *ReadHandle(File());
    const auto list = [&](const char* symbol) { return Rows(file, &TalIbis::getPinModelList, "U1", symbol); };
    const std::string r1 = PinRow("1", "s1", "R");
    const std::string d2 = PinRow("2", "s2", "D");
    const std::string p3 = PinRow("3", "p", "SEL");
    const std::string n4 = PinRow("4", "n", "SEL");
    const std::string x7 = PinRow("7", "x", "R");
    EXPECT_EQ(list("IBIS_I"), Table({r1, x7}));
    EXPECT_EQ(list("IBIS_DI"), Table({p3, n4}));
    EXPECT_EQ(list("IBIS_O"), Table({d2}));
    EXPECT_EQ(list("IBIS_S_I"), Table({x7}));
    EXPECT_EQ(list("IBIS_3S"), Lines{});
    // A selector needs an algorithmic model behind a selective symbol.
    EXPECT_EQ(list("IBIS_Rx_AMI"), Lines{});
    EXPECT_EQ(list(""), Table({r1, d2, p3, n4, x7}));
    EXPECT_EQ(list("IBIS"), Table({r1, d2, p3, n4, PinRow("5", "v", "POWER"), PinRow("6", "g", "GND"), x7,
                                   PinRow("8", "y", "NC")}));
    EXPECT_EQ(list("IBIS_Pkg"), list("IBIS"));
    EXPECT_EQ(list("ibis"), Lines{"-1 Model type `ibis' is an invalid type"});
    EXPECT_EQ(list(nullptr), Lines{"-1 Model type `Typ' is an invalid type"});
    EXPECT_EQ(Rows(file, &TalIbis::getPinModelList, "U9", "IBIS"),
              Lines{"-1 Component `U9' not found in the IBIS file '" + Name() + "'"});
    EXPECT_EQ(Rows(file, &TalIbis::getPinModelList, "U2", "x"),
              Lines{"1 No pin detected in the IBIS file '" + Name() + "'"});
}

TEST(PinModelList, TitleComesWithPinsThatAreLeftOut)
{
    const TalIbis& file = *ReadHandle(Bare(Component("U1", "1 v POWER\n")));
    EXPECT_EQ(Rows(file, &TalIbis::getPinModelList, "U1", ""), Table({}));
}

TEST(RelationQueries, DiffPin)
{
    const TalIbis& file = *ReadHandle(File());
    const Lines table{"[Diff pin]   inv_pin      vdiff         tdelay_typ    tdelay_min    tdelay_max",
                      std::string(78, '-'),
                      "3            4            0.2           1e-09         0             1e-09"};
    EXPECT_EQ(Rows(file, &TalIbis::getDiffPin, "U1", "3"), table);
    EXPECT_EQ(Rows(file, &TalIbis::getDiffPin, "U1", "4"), table);
    EXPECT_EQ(Rows(file, &TalIbis::getDiffPin, "U1", "1"), Lines{});
    EXPECT_EQ(Rows(file, &TalIbis::getDiffPin, "U9", "1"),
              Lines{"-1 Component 'U9' not found in the IBIS file '" + Name() + "'"});
}

TEST(RelationQueries, SeriesPinsAndGroups)
{
    const TalIbis& file = *ReadHandle(File());
    EXPECT_EQ(Rows(file, &TalIbis::getSeriesPinMapping, "U1", "8"),
              (Lines{"pin_1    pin_2    Model Name" + std::string(34, ' ') + "function_table_group",
                     std::string(82, '-'), "7        8        W" + std::string(43, ' ') + "G1"}));
    EXPECT_EQ(Rows(file, &TalIbis::getSeriesPinMapping, "U1", "1"), Lines{});
    EXPECT_EQ(Rows(file, &TalIbis::getSeriesPinMapping, "U9", "1"),
              Lines{"-1 Component `U9' not found in the IBIS file '" + Name() + "'"});
    EXPECT_EQ(
        Rows(file, &TalIbis::getSeriesSwitchGroup, "U1"),
        (Lines{"Series Switch Groups", std::string(40, '-'), "On      G1    G2     /", "Off     G1     /"}));
    EXPECT_EQ(Rows(file, &TalIbis::getSeriesSwitchGroup, "U2"), Lines{});
    // A null name leaves the record as it is.
    TalIbisListQueryData kept;
    file.getSeriesSwitchGroup("U1", kept);
    file.getSeriesSwitchGroup(nullptr, kept);
    file.getSeriesPinMapping("U1", nullptr, kept);
    EXPECT_EQ(kept.size(), 4U);
    TalIbisBooleanQueryData flag;
    for (const auto& [pin, expected] : {std::pair("7", true), std::pair("8", true), std::pair("1", false)}) {
        file.hasSeriesPinMapping("U1", pin, flag);
        EXPECT_EQ(flag.status(), expected) << pin;
    }
    flag.setData(true);
    file.hasSeriesPinMapping("U9", "7", flag);
    EXPECT_FALSE(flag.status());
    EXPECT_EQ(flag.getStatus(), QueryOk);
}

TEST(RelationQueries, LongGroupsAreCut)
{
    std::string groups = "On";
    for (int i = 0; i < 300; ++i) {
        groups +=
            (i % 4 == 3 ? "\n" : " ") + std::string(20 - std::to_string(i).size(), 'g') + std::to_string(i);
    }
    const TalIbis& file =
        *ReadHandle(Bare(Component("U1", "1 s NC\n", "[Series Switch Groups]\n" + groups + " /\n")));
    EXPECT_EQ(Rows(file, &TalIbis::getSeriesSwitchGroup, "U1").at(2).size(), 8U + 4095U + 2U);
}

TEST(RelationQueries, RepeatersByTheirType)
{
    const TalIbis& file = *ReadHandle(File("[Repeater Pin] tx_non_inv_pin\n1 2\n3 2\n7 99\n"));
    const auto list = [&](const char* symbol) {
        return Rows(file, &TalIbis::getRepeaterPinList, "U1", symbol);
    };
    // A read leaves the repeater type empty.
    EXPECT_EQ(list("IBIS_ReDriver_AMI"), Lines{});
    ALGMOD line{};
    std::strcpy(line.szRepeaterType, "Redriver");
    ALGMOD_LIST lines{&line};
    nuibis_mdl* const model = MDL_Find("R", file.getIbis()->pModels);
    ALGMOD_LIST* const former = std::exchange(model->pAlgorithmicModel, &lines);
    EXPECT_EQ(list("IBIS_ReDriver_AMI"),
              (Lines{"2 Error handling [Repeater Pin] keyword for '7' and `99' - ingnoring it",
                     "[Repeater pin] tx_non_inv_pin RX Model Name" + std::string(28, ' ') + "TX Model Name",
                     std::string(111, '-'), "1              2              R" + std::string(40, ' ') + "D",
                     "3              2              SEL" + std::string(38, ' ') + "D"}));
    EXPECT_EQ(list("IBIS_ReTimer_AMI"), Lines{});
    EXPECT_EQ(list(nullptr), Lines{});
    model->pAlgorithmicModel = former;
    EXPECT_EQ(Rows(file, &TalIbis::getRepeaterPinList, "U9", ""),
              Lines{"-1 Component 'U9' not found in the IBIS file '" + Name() + "'"});
}
