#include "ibis/interface/talibis_symbol.h"
#include "tests/builders.h"

namespace
{

std::string Types(const char* name)
{
    std::string text;
    for (const nuibis_model_type type : TalIbisSymbol(name).mModelTypes) {
        text += (text.empty() ? "" : " ") + std::to_string(static_cast<int>(type));
    }
    return text;
}

std::string Flags(const char* name)
{
    const TalIbisSymbol symbol(name);
    return std::string(symbol.mDifferential ? "d" : "") + (symbol.mSelective ? "s" : "") +
           (symbol.mSeries ? "r" : "");
}

}  // namespace

TEST(Symbol, TypesAndFlags)
{
    const std::string transmitter = "3 4 5 6 7 8 9 10 11 12 13 14 16 17 18 19 20 21";
    const struct {
        const char* name;
        std::string types;
        const char* flags;
    } rows[] = {
        {"", "", ""},
        {"IBIS", "", ""},
        {"IBIS_Pkg", "", ""},
        {"IBIS_IO_OPENSINK", "9 7", ""},
        {"IBIS_DOPENSINK", "8 6", "d"},
        {"IBIS_T", "15", ""},
        {"IBIS_D3S_ECL", "18", "d"},
        {"IBIS_Tx_AMI", transmitter + " 22", "ds"},
        {"IBIS_XtlkTx_AMI", transmitter + " 22", "ds"},
        {"IBIS_Rx_AMI", "2 15", "ds"},
        {"IBIS_XtlkRx_AMI", "2 15 12 11 14 9 7 11", "d"},
        {"IBIS_S_I", "2 15 12 4 14 9 7 11 22", "r"},
        {"IBIS_S_O", transmitter, "r"},
        {"ibis_io", "0", ""},
        {nullptr, "0", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Types(row.name), row.types) << row.name;
        EXPECT_EQ(Flags(row.name), row.flags) << row.name;
    }
}

TEST(Symbol, WithoutAFilterOrWithoutAName)
{
    EXPECT_FALSE(TalIbisSymbol("").isSelectiveModelType());
    EXPECT_FALSE(TalIbisSymbol("").isInvalid());
    EXPECT_TRUE(TalIbisSymbol("IBIS_I").isSelectiveModelType());
    EXPECT_TRUE(TalIbisSymbol("ibis_i").isSelectiveModelType());
    EXPECT_TRUE(TalIbisSymbol("ibis_i").isInvalid());
}
