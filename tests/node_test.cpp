#include "ibis/source/nuibis_node.h"

#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_ibis.h"
#include "tests/builders.h"

namespace
{

std::string NodeFile(std::string_view nodes)
{
    return Bare(Component("U1", "1 S NC\n", nodes));
}

// The declared names in the order of the list.
Lines NamesOf(const std::string& file)
{
    Lines names;
    for (const NODELIST* node = RootOf(file)->pComponents->pNodes; node != nullptr; node = node->pNext) {
        names.emplace_back(node->pszName == nullptr ? "" : node->pszName);
    }
    return names;
}

}  // namespace

TEST(NodeDeclarations, LinesAndLists)
{
    const std::string longName(500, 'n');
    const struct {
        std::string nodes;
        Lines messages;
        Lines names;
    } rows[] = {
        {"[Node Declarations]\n[End Node Declarations]\n", {}, {""}},
        {"[Node Declarations]\na b\n\tc\n[End Node Declarations]\n", {}, {"c", "b", "a"}},
        {"[Node Declarations] y\na a\n[Node Declarations]\n" + longName + "\n",
         {"ERROR (line   14) - Duplicate Node Declaration keyword found.",
          "ERROR (line   15) - Exceeds 120 chararacters.", "ERROR - Component <U1>: Duplicate Node Name <a>"},
         {longName, "a", "a"}},
        {"a\n[End Node Declarations]\n",
         {"ERROR (line   12) - Signal name not found.", "ERROR (line   12) - Model name not found.",
          "ERROR (line   12) - Each line of Pin data must contain either 3 or 6 columns.",
          "ERROR - Component 'U1': Model '' for Pin 'a' not defined."},
         {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.nodes);
        EXPECT_EQ(Messages(NodeFile(row.nodes)), row.messages);
        EXPECT_EQ(NamesOf(NodeFile(row.nodes)), row.names);
    }
}
