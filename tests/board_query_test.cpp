// Queries about electrical boards.

#include "ibis/source/nuibis_ebdmdl.h"
#include "ibis/source/nuibis_ibis.h"
#include "tests/queries.h"

namespace
{

std::string Board(std::string_view body)
{
    return Header("5.1", "t.ebd") +
           "[Begin Board Description] B\n[Manufacturer] Acme\n[Number Of Pins] 4\n[Pin List] signal_name\n"
           "A1 S1\nA2 S2\nA3 GND\nA4 NC\n" +
           std::string(body) + "[End Board Description]\n[End]\n";
}

// A path with branches side by side and within each other, one that is nothing but branches, and one that
// ends at once.
const TalIbis& File()
{
    return *ReadHandle(
        Board("[Path Description] P1\nPin A1 Len=1 L=1n C=1p /\nFork\nLen=2 / Node U1.1\nEndfork\n"
              "Fork\nLen=3 / Node U1.2\nFork\nNode U2.1\nEndfork\nEndfork\nLen=0 R=5 / Node U3.7\nPin A3\n"
              "[Path Description] P2\nPin A2\nFork\nNode U2.2\nEndfork\nFork\nFork\nNode U2.3\nEndfork\n"
              "Endfork\n"
              "[Path Description] P4\nPin A4 NC\n"
              "[Reference Designator Map]\nU1 part.ibs Chip\nU2 other.ibs Chip2\n"),
        "t.ebd");
}

std::string FileName()
{
    return TestFolder() + "/t.ebd";
}

}  // namespace

TEST(BoardQueries, Mounted)
{
    const TalIbis& file = File();
    const std::string gap1(26, ' ');
    const std::string gap2(25, ' ');
    EXPECT_EQ(Rows(file, &TalIbis::getEbdRefList),
              (Lines{"Ref Des  File Name" + gap2 + "Component Names", std::string(57, '-'),
                     "U2       other.ibs" + gap2 + "Chip2", "U1       part.ibs" + gap1 + "Chip"}));
    Lines refs;
    Lines files;
    Lines components;
    file.getEbdRefListQt(&refs, &files, &components);
    file.getEbdRefListQt(&refs, &files, &components);
    EXPECT_EQ(refs, (Lines{"U2", "U1"}));
    EXPECT_EQ(files, (Lines{"other.ibs", "part.ibs", "other.ibs", "part.ibs"}));
    EXPECT_EQ(components, (Lines{"Chip2", "Chip", "Chip2", "Chip"}));
    EXPECT_EQ(Rows(*ReadHandle(Board(""), "t.ebd"), &TalIbis::getEbdRefList),
              Lines{"1 No Reference Designator detected in the IBIS EBD file '" + FileName() + "'"});
    EXPECT_EQ(Rows(*ReadHandle(Ibs(Model("M"))), &TalIbis::getEbdRefList),
              Lines{"1 No Reference Designator detected in the IBIS EBD file '" + TestFolder() + "/t.ibs'"});
}

TEST(BoardQueries, PinsAndTheirNodes)
{
    const TalIbis& file = File();
    const std::string gap(22, ' ');
    // The component does not matter, and the width of the last column follows its nodes.
    for (const char* component : {"U1", "", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(Rows(file, &TalIbis::getPinModelList, component, "Ebd"),
                  (Lines{"Name     Signal Name             Node Names", std::string(57, '-'),
                         "A1       S1" + gap + "U1.1 U1.2 U2.1 U3.7", "A2       S2" + gap + "U2.2 U2.3",
                         "A3       GND", "A4       NC"}));
    }
    Lines pins{"old"};
    Lines signals{"old"};
    file.getEbdPinListQt(&pins, &signals);
    EXPECT_EQ(pins, (Lines{"A1", "A2", "A3", "A4"}));
    EXPECT_EQ(signals, (Lines{"S1", "S2", "GND", "NC"}));
    EXPECT_EQ(Rows(*ReadHandle(Ibs(Model("M"))), &TalIbis::getPinModelList, "U1", "Ebd"),
              Lines{"1 No pin detected in the IBIS EBD file '" + TestFolder() + "/t.ibs'"});
}

TEST(BoardQueries, NodesOfAPath)
{
    const TalIbis& file = File();
    EXPECT_EQ(Rows(file, &TalIbis::getEbdNodeList, "A1"), (Lines{"U1.1", "U1.2", "U2.1", "U3.7"}));
    EXPECT_EQ(Rows(file, &TalIbis::getEbdNodeList, "P1"), Lines{}) << "the path's own name is no key";
    EXPECT_EQ(Rows(file, &TalIbis::getEbdNodeList, nullptr), Lines{});
    Lines nodes{"old"};
    file.getEbdNodeListQt("A2", &nodes);
    EXPECT_EQ(nodes, (Lines{"U2.2", "U2.3"}));
    // The branch alone, behind what the result holds.
    const ebdpathelement* element = file.getIbis()->pBoards->pPaths->pHead;
    file.EbdNodeForkQt(element, &nodes);
    while (element->eKind != EBDPATH_FORK) {
        element = element->pNext;
    }
    file.EbdNodeForkQt(element->pNext, &nodes);
    EXPECT_EQ(nodes, (Lines{"U2.2", "U2.3", "U1.2", "U2.1"}));
    TalIbisListQueryData list;
    file.EbdNodeFork(element, list);
    file.EbdNodeFork(element, list);
    file.EbdNodeFork(nullptr, list);
    EXPECT_EQ(Answer(list), (Lines{"U1.1", "U1.1"}));
}

TEST(BoardQueries, FlattenedPath)
{
    const TalIbis& file = File();
    EXPECT_EQ(Rows(file, &TalIbis::getIbisEbdModel, "A1"),
              (Lines{"0",  "",       "1", "1e-09", "1e-12", "0",  //
                     "1",  "",       "2", "0",     "0",     "0",  //
                     "1",  "U1.1",   "0", "0",     "0",     "0",  //
                     "-1", "",       "3", "0",     "0",     "0",  //
                     "1",  "U1.2",   "0", "0",     "0",     "0",  //
                     "2",  "U2.1",   "0", "0",     "0",     "0",  //
                     "0",  "",       "0", "0",     "0",     "5",  //
                     "0",  "U3.7",   "0", "0",     "0",     "0",  //
                     "0",  "Pin.A3", "0", "0",     "0",     "0"}));
    // The mark of a branch behind a branch waits for the first row, even of a branch within.
    EXPECT_EQ(Rows(file, &TalIbis::getIbisEbdModel, "A2"),
              (Lines{"1", "U2.2", "0", "0", "0", "0", "-1", "U2.3", "0", "0", "0", "0"}));
    EXPECT_EQ(Rows(file, &TalIbis::getIbisEbdModel, "A4"), Lines{});
    EXPECT_EQ(Rows(file, &TalIbis::getIbisEbdModel, "none"), Lines{});
}
