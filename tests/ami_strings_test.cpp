// The strings between a host and the code file of an algorithmic model.

#include "ibis/interface/talibis_ami.h"

#include "tests/builders.h"

namespace
{

// A parameter file with these branches below its root "m", parsed, with an instance of each parameter.
struct Exchange {
    std::unique_ptr<TalIbisAMI_File> pFile;
    TalIbisAMI_ParamList params;
    std::string sWarnings;
    std::string sErrors;

    explicit Exchange(const std::string& specific,
                      const std::string& reserved = "(e (Usage Info)(Type Boolean)(Value True))")
    {
        WriteTestFile("m.ami", "(m (Reserved_Parameters " + reserved + ")(Model_Specific " + specific + "))");
        pFile = std::make_unique<TalIbisAMI_File>("M", "m.ami", TestFolder() + "/");
        EXPECT_TRUE(pFile->parseFile());
        pFile->instantiateParams(params, "id");
    }
    std::string input(bool inputsOnly = false) const
    {
        std::string text;
        pFile->generateAMI_DLL_Input(params, text, inputsOnly);
        return text;
    }
    // "ok", or the error; then the warnings, then "name=value" of each parameter that differs from its
    // definition.
    Lines take(const std::string& text)
    {
        Lines lines;
        lines.emplace_back(pFile->parseAMI_DLL_Output(params, text, sWarnings, sErrors) ? "ok" + sErrors
                                                                                        : sErrors);
        if (!sWarnings.empty()) {
            lines.push_back(sWarnings);
        }
        for (const TalIbisAMI_Param* param : params) {
            const std::string value = param->getValue().toString();
            if (value != param->getParamDef()->getValue().toString()) {
                lines.push_back(param->getParamName() + "=" + value);
            }
        }
        return lines;
    }
};

const std::string OUTPUTS =
    "(a (Usage Out)(Type Integer)(Value 1))(b (Usage InOut)(Type Float)(Range 1 0 2))"
    "(g (c (Usage Out)(Type Boolean)(Value False))(h (d (Usage Out)(Type String)(Value x))))"
    "(i (Usage In)(Type Float)(Value 5))(j (Usage Info)(Type Float)(Value 6))";

Lines Take(const std::string& text, const std::string& specific = OUTPUTS)
{
    return Exchange(specific).take(text);
}

Lines Tokens(const std::string& text)
{
    Lines tokens{"former"};
    TalIbisAMI_File("M", "m.ami", "").tokenize_DLL_Output(text, tokens);
    return tokens;
}

}  // namespace

TEST(AmiInput, ParametersStandInTheirGroups)
{
    EXPECT_EQ(
        Exchange("(a (Usage In)(Type Integer)(Value 3))", "(e (Usage In)(Type Boolean)(Value True))").input(),
        "(m\n    (e True)\n    (a 3)\n)");
    EXPECT_EQ(Exchange("(g (a (Usage In)(Type Integer)(Value 3))(h (b (Usage In)(Type Float)(Value 0.5))))"
                       "(c (Usage In)(Type String)(Value \"x y\"))")
                  .input(true),
              "(m\n    (g\n      (a 3)\n      (h\n        (b 0.5)\n      )\n    )\n    (c \"x y\")\n)");
}

TEST(AmiInput, EveryKindOfValue)
{
    const std::string info = "(Usage Info)(Type Float)";
    const Exchange model(
        "(i (Usage In)(Type Integer)(Value 1e3))(f (Usage In)(Type UI)(Range 1e-12 0 1))"
        "(s (Usage In)(Type String)(Default \"\" x))(b (Usage Out)(Type Boolean)(List False True))"
        "(g " +
        info + "(Gaussian 0.5 1))(d " + info + "(Dual-Dirac 1 2 3))(r " + info +
        "(DjRj -1 1 0.25))"
        "(t (Usage In)(Type Integer Float String)(Table (Labels a b c)(0 0.5 \"p q\")(1 1 r)))"
        "(n (Description \"no value\"))");
    EXPECT_EQ(model.input(),
              "(m\n    (e True)\n    (i 1)\n    (f 1e-12)\n    (s \"\")\n    (b False)\n    (g 0.5 1)\n"
              "    (d 1 2 3)\n    (r -1 1 0.25)\n    (t 0 0.5 p q 1 1 r)\n)");
    EXPECT_EQ(model.input(true), "(m\n    (i 1)\n    (f 1e-12)\n    (s \"\")\n    (t 0 0.5 p q 1 1 r)\n)");
}

TEST(AmiInput, TakesTheInstancesAndAppends)
{
    Exchange model("(a (Usage InOut)(Type Integer)(Value 3))");
    model.params[1]->setIntValue(-7);
    std::string text = "ahead:";
    model.pFile->generateAMI_DLL_Input(model.params, text, true);
    EXPECT_EQ(text, "ahead:(m\n    (a -7)\n)");
    TalIbisAMI_File("M", "m.ami", "").generateAMI_DLL_Input(model.params, text, true);  // not parsed
    EXPECT_EQ(text, "ahead:(m\n    (a -7)\n)");
}

// A host may hold fewer instances than the file has definitions.
TEST(AmiInput, WithoutInstancesThereIsNoText)
{
    Exchange model("(a (Usage InOut)(Type Integer)(Value 3))(g (b (Usage InOut)(Type Float)(Value 1)))");
    model.params.clear();
    EXPECT_EQ(model.input(), "(m\n    (g\n    )\n)");
    EXPECT_EQ(model.take("(m (a 2)(g (b 2)))"), Lines{"ok"});
}

TEST(AmiOutput, Tokens)
{
    EXPECT_EQ(Tokens("(m(a \t1)\n( b\"x y\") )"),
              (Lines{"(", "m", "(", "a", "1", ")", "(", "b\"x", "y\"", ")", ")"}));
    EXPECT_EQ(Tokens("|note (x)\n(m | rest\r|\n\r a|b)"), (Lines{"(", "m", "a|b", ")"}));
    EXPECT_EQ(Tokens(" |only"), Lines{});
}

TEST(AmiOutput, ValuesGoToTheirParameters)
{
    EXPECT_EQ(Take("(m (a 2) (b 0.5) (g (c TRUE) (h (d \"two words\"))))"),
              (Lines{"ok", "a=2", "b=0.5", "c=1", "d=\"two\""}));
    EXPECT_EQ(Take("(M (Model_Specific (a 2) (g (c False))) (b 1e-3))"),
              (Lines{"ok", "a=2", "b=0.001", "c=0"}));
    EXPECT_EQ(Take("(m (a 2 9 9) (i 7) (j 8) (b x))"), (Lines{"ok", "a=2", "b=0"}));
    EXPECT_EQ(Take("(m (a 2)) trailing"), (Lines{"ok", "a=2"}));
    EXPECT_EQ(Take("(m)"), (Lines{"ok"}));
    EXPECT_EQ(Take("(m (g))"), (Lines{"ok"}));
}

TEST(AmiOutput, DistributionsAndTables)
{
    const std::string distributions =
        "(g (Usage Out)(Type Float)(Gaussian 1 2))(d (Usage Out)(Type UI)(Dual-Dirac 1 2 3))"
        "(r (Usage InOut)(Type Float)(DjRj 1 2 3))";
    EXPECT_EQ(Take("(m (g 3 4) (d 5 6 7) (r 8 9 10 11))", distributions),
              (Lines{"ok", "g=3 4", "d=5 6 7", "r=8 9 10"}));
    const std::string of = " in DLL output string. ";
    const struct {
        const char* pszText;
        std::string sError;
    } rows[] = {
        {"(m (g 3))", "Parameter 'g' is format of Gaussian. Sigma value is missing" + of},
        {"(m (g 3", "Parameter 'g' is format of Gaussian. Sigma value is missing" + of},
        {"(m (d 3))", "Parameter 'd' is format of Dual-Dirac. Mean2 and Sigma value are missing" + of},
        {"(m (d 3 4))", "Parameter 'd' is format of Dual-Dirac. Sigma value is missing" + of},
        {"(m (r 3))", "Parameter 'r' is format of DjRj. MaxDj and Sigma value are missing" + of},
        {"(m (r 3 4))", "Parameter 'r' is format of DjRj. Sigma value is missing" + of},
        {"(m (r))", "Value for parameter `r' is not given in DLL output string."},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Take(row.pszText, distributions), (Lines{row.sError})) << row.pszText;
    }
    const std::string table = "(t (Usage Out)(Type Integer Float)(Table (Labels a b)(0 1)(1 2)))";
    EXPECT_EQ(Take("(m (t 5 6.5 7 8 9 10))", table), (Lines{"ok", "t=5 6.5 7 8 9 10"}));
    EXPECT_EQ(Take("(m (t 1 2 3 4 5))", table),
              (Lines{"For the Table parameter 't' the DLL output string contains an incomplete last row. "}));
    EXPECT_EQ(Take("(m (t 1 2 (3 4)))", table),
              (Lines{"For the Table parameter 't' a missing `)' is detected in the AMI DLL output string."}));
    EXPECT_EQ(Take("(m (t 1 2", table),
              (Lines{"For the Table parameter 't' a missing `)' is detected in the AMI DLL output string."}));
}

TEST(AmiOutput, FaultsOfStructure)
{
    const struct {
        const char* pszText;
        Lines result;
    } rows[] = {
        {"", {"Incomplete AMI DLL output string."}},
        {"(m", {"Incomplete AMI DLL output string."}},
        {"m (a 1)", {"`(' is missing in the AMI DLL output string."}},
        {"(x (a 1))",
         {"Top branch name in AMI DLL output string doesn't match that in the AMI parameter file ."}},
        {"(m x (a 1))", {"ok"}},
        {"(m (a 2) b 3)", {"`(' is missing before AMI parameter branch b.", "a=2"}},
        {"(m (a 2) (", {"Incomplete AMI DLL output string detected.", "a=2"}},
        {"(m (g", {"Unmatched parentheses found."}},
        {"(m (a 2", {"Missing `)' is detected in the AMI DLL output string.", "a=2"}},
        {"(m (a 2)", {"Unmatched parentheses found.", "a=2"}},
        {"(m (g (c True))", {"Unmatched parentheses found.", "c=1"}},
        {"(m (a))", {"Value for parameter `a' is not given in DLL output string."}},
        {"(m (i))", {"ok"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Take(row.pszText), row.result) << row.pszText;
    }
}

TEST(AmiOutput, UnknownNamesAreSkipped)
{
    const auto ignored = [](const std::string& name) {
        return name + " could not be found in AMI parameter tree. It was ignored.\n";
    };
    EXPECT_EQ(Take("(m (z 1))"), (Lines{"ok", ignored("z")}));
    EXPECT_EQ(Take("(m (z (a 5) (y (x 1))) (a 2) (g (a 3)))"),
              (Lines{"ok", ignored("z") + ignored("a"), "a=2"}));
    EXPECT_EQ(Take("(m (z (a 5)"),
              (Lines{"Missing `)' is detected in the AMI DLL output string.", ignored("z")}));
    // A wrapper that the tree does not have there is stepped into.
    EXPECT_EQ(Take("(m (g (Model_Specific (c True) (z 1)) (h (d y))))"),
              (Lines{"ok", ignored("z"), "c=1", "d=\"y\""}));
    EXPECT_EQ(Take("(m (g (Model_Specific"),
              (Lines{"Missing `)' is detected in the AMI DLL output string.", ignored("Model_Specific")}));
    Exchange model(OUTPUTS);
    model.take("(m (z 1))");
    EXPECT_EQ(model.take("(m (y 1))"), (Lines{"ok", ignored("z") + ignored("y")}));
}

TEST(AmiOutput, RoundTripOfEveryKind)
{
    const std::string text =
        "(i (Usage InOut)(Type Integer)(Value 3))(f (Usage InOut)(Type Float)(Value 1.5e-12))"
        "(s (Usage InOut)(Type String)(Value word))(b (Usage InOut)(Type Boolean)(Value True))"
        "(u (Usage InOut)(Type UI)(Gaussian 0.5 0.25))(d (Usage InOut)(Type Float)(Dual-Dirac -1 1 2))"
        "(r (Usage InOut)(Type Float)(DjRj -1 1 2))(t (Usage InOut)(Type Float)(Table (0 1)(2 3)))";
    Exchange model(text);
    const std::string written = model.input(true);
    EXPECT_EQ(model.take(written), (Lines{"ok", "b=1"}));  // a boolean comes back as an integer
    model.params[4]->setBooleanValue(1);
    EXPECT_EQ(model.input(true), written);
}

TEST(AmiOutput, AnythingIsReadInBoundedStackAndTime)
{
    std::string specific;
    std::string text = "(m";
    for (int i = 0; i < 5'000; ++i) {
        const std::string name = "p" + std::to_string(i);
        specific += "(" + name + " (Usage Out)(Type Integer)(Value 0))";
        text += "(" + name + " 0)";
    }
    EXPECT_EQ(Take(text + ")", specific), (Lines{"ok"}));
    EXPECT_EQ(Take("(m " + std::string(200'000, '('))[0],
              "Missing `)' is detected in the AMI DLL output string.");
}
