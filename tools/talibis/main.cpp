// The command line of the library.

#include "tools/talibis/ami.h"
#include "tools/talibis/call.h"
#include "tools/talibis/check.h"
#include "tools/talibis/exit_status.h"
#include "tools/talibis/explain.h"
#include "tools/talibis/export.h"
#include "tools/talibis/keywords.h"
#include "tools/talibis/manual.h"
#include "tools/talibis/show.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <iostream>
#include <map>

namespace
{

template <class Value> using Words = std::map<std::string, Value>;

const Words<ibis_file_type> FILE_TYPES{{"ibs", IBIS_FILE_IBS},
                                       {"pkg", IBIS_FILE_PKG},
                                       {"ebd", IBIS_FILE_EBD},
                                       {"ami", IBIS_FILE_AMI},
                                       {"param", IBIS_FILE_PARAM}};
const Words<OutputFormat> FORMATS{{"text", OutputFormat::Text},
                                  {"json", OutputFormat::Json},
                                  {"gcc", OutputFormat::Gcc},
                                  {"sarif", OutputFormat::Sarif},
                                  {"junit", OutputFormat::Junit}};
const Words<Colour> COLOURS{{"auto", Colour::Auto}, {"always", Colour::Always}, {"never", Colour::Never}};
const Words<FailOn> THRESHOLDS{{"error", FailOn::Error},
                               {"warning", FailOn::Warning},
                               {"caution", FailOn::Caution},
                               {"never", FailOn::Never}};

const Words<ManualForm> MANUAL_FORMS{{"man", ManualForm::Man},
                                     {"bash", ManualForm::Bash},
                                     {"zsh", ManualForm::Zsh},
                                     {"fish", ManualForm::Fish}};

// An option that takes one of some words.
template <class Value>
void AddWordOption(CLI::App& app, const std::string& name, const Words<Value>& words, Value& value,
                   const std::string& help)
{
    app.add_option_function<std::string>(
           name, [&words, &value](const std::string& word) { value = words.at(word); }, help)
        ->check(CLI::IsMember(words))
        ->type_name("WORD");
}

CLI::App* AddCheck(CLI::App& app, CheckOptions& options)
{
    CLI::App* const check =
        app.add_subcommand("check", "Check model files and print what is wrong with them");
    check
        ->add_option("FILE", options.files,
                     "Files to check, each on its own; folders, whose .ibs, .pkg, .ebd and .ami files are\n"
                     "meant; patterns such as \"*.ibs\"; - for the standard input, with --type")
        ->required();
    AddWordOption(*check, "--type", FILE_TYPES, options.type,
                  "Kind of the files; without it the extension tells");
    AddWordOption(*check, "--format", FORMATS, options.format, "How to print the findings");
    AddWordOption(*check, "--color", COLOURS, options.colour,
                  "Colours in the text; auto asks the terminal and NO_COLOR");
    check->add_flag("--caution", options.caution, "Show cautions too");
    check
        ->add_option("--max-per-code", options.maxPerCode,
                     "Show no more findings of one number and severity in a file")
        ->check(CLI::Range(1, 1000000000))
        ->type_name("N");
    check->add_option("--waivers", options.waivers, "TOML file of the findings that are accepted")
        ->type_name("FILE");
    check->add_flag("--show-waived", options.showWaived, "Show waived findings too");
    AddWordOption(*check, "--fail-on", THRESHOLDS, options.failOn,
                  "Least severity for exit status 1, error by default;\n"
                  "caution stands for notes too and shows cautions");
    check
        ->add_option("-j,--jobs", options.jobs,
                     "Files to read side by side; without it as many as there are cores")
        ->check(CLI::Range(1, 256))
        ->type_name("N");
    check->footer("Exit status: 0 nothing of the severity of --fail-on, 1 something of it, 2 wrong usage or "
                  "a file that\n"
                  "could not be read, 130 after Ctrl-C.\n"
                  "json prints one object a file and line: path, type, status and messages.");
    return check;
}

CLI::App* AddShow(CLI::App& app, ShowOptions& options)
{
    CLI::App* const show = app.add_subcommand("show", "Show what is in a file at a glance");
    show->add_option("FILE", options.file, "The file (.ibs, .pkg, .ebd, .ami)")->required();
    AddWordOption(*show, "--type", FILE_TYPES, options.type,
                  "Kind of the file; without it the extension tells");
    AddWordOption(*show, "--color", COLOURS, options.colour,
                  "Bold names and dim headings; auto asks the terminal and NO_COLOR");
    show->footer("Values are typical ones. Exit status: 0, or 2 for a file that could not be read.");
    return show;
}

CLI::App* AddExport(CLI::App& app, ExportOptions& options)
{
    CLI::App* const command =
        app.add_subcommand("export", "Print the numbers of a file as one JSON document in SI units");
    command->add_option("FILE", options.file, "The file (.ibs, .pkg, .ebd, .ami)")->required();
    command->add_option("--model", options.model, "Only this model and the submodels that it adds")
        ->type_name("NAME");
    AddWordOption(*command, "--type", FILE_TYPES, options.type,
                  "Kind of the file; without it the extension tells");
    command->footer("What the file does not give, or gives as NA, is null. docs/schema/export.schema.json "
                    "describes the\n"
                    "document. Exit status: 0, or 2 for a file or a model that is not there.");
    return command;
}

CLI::App* AddCall(CLI::App& app, std::string& function, std::vector<std::string>& parameters)
{
    CLI::App* const call = app.add_subcommand("call", "Call a script function and print its value as JSON");
    call->add_option("FUNCTION", function, "Name of the function, such as deGetIbisPinList")->required();
    call->add_option("PARAMETER", parameters,
                     "File name, file type (ibs, pkg, ebd) and what the function takes;\n"
                     "int:3 is an integer, anything else a string");
    call->footer(
        "Prints [[status, \"error text\"], payload]: status 0 is success, -1 an error, 1 nothing found,\n"
        "2 a partial answer.");
    return call;
}

CLI::App* AddExplain(CLI::App& app, ExplainOptions& options)
{
    CLI::App* const explain =
        app.add_subcommand("explain", "Tell what a message means, how to mend the file, and show an example");
    CLI::Option_group* const one = explain->add_option_group("What to print");
    one->add_option("CODE", options.codes, "Numbers of messages, such as 119 or E0119");
    one->add_flag("--list", options.list, "Number and text of every message");
    one->add_flag("--markdown", options.markdown, "All messages as one document");
    one->add_option("--write", options.folder, "Write every example to DIR/NUMBER")->type_name("DIR");
    one->require_option(1);
    return explain;
}

CLI::App* AddAmi(CLI::App& app, const std::string& name, const std::string& help, AmiOptions& options)
{
    CLI::App* const ami = app.add_subcommand(name, help);
    ami->add_option("FILE", options.file, "Component file (.ibs)")->required();
    ami->add_option("MODEL", options.model, "Name of a model with an [Algorithmic Model]")->required();
    return ami;
}

CLI::App* AddAmiInput(CLI::App& app, AmiOptions& options)
{
    CLI::App* const input = AddAmi(
        app, "ami-input", "Print the string that the code file of an algorithmic model takes", options);
    input->add_flag("--inputs-only", options.inputsOnly, "Leave out what the code file does not read");
    input->footer("The string has no line feed at its end. DLL_ID is the name of the model.\n"
                  "Exit status: 0, or 2 if there is no such model or parameter file.");
    return input;
}

CLI::App* AddAmiOutput(CLI::App& app, AmiOptions& options)
{
    CLI::App* const output =
        AddAmi(app, "ami-output",
               "Read a string of the code file of an algorithmic model from the standard input", options);
    output->footer("Prints one JSON object: ok, warnings, errors, and params with the text of each value.\n"
                   "Exit status: 0 if the string was read, faulty or not, or 2 if there is no such model or\n"
                   "parameter file.");
    return output;
}

CLI::App* AddManual(CLI::App& app, ManualForm& form)
{
    CLI::App* const manual =
        app.add_subcommand("manual", "Print the manual page, or what completes a shell's command lines");
    AddWordOption(*manual, "--form", MANUAL_FORMS, form, "The page (man) or a shell, man by default");
    return manual;
}

// What each subcommand runs, in the order of the help.
using Commands = std::vector<std::pair<const CLI::App*, std::function<int()>>>;

int RunParsed(CLI::App& app, const Commands& commands, int argc, char** argv)
{
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == EXIT_CLEAN ? EXIT_CLEAN : EXIT_UNUSABLE;
    }
    for (const auto& [command, run] : commands) {
        if (command->parsed()) {
            return run();
        }
    }
    return EXIT_UNUSABLE;
}

int Run(int argc, char** argv)
{
    CLI::App app{"Reads, checks and queries IBIS signal-integrity model files", "talibis"};
    app.set_version_flag("--version", "talibis " TALIBIS_VERSION);
    app.require_subcommand(1);
    app.failure_message([](const CLI::App*, const CLI::Error& error) {
        return "talibis: " + std::string(error.what()) + " (see talibis --help)\n";
    });

    Commands commands;
    CheckOptions check;
    commands.emplace_back(AddCheck(app, check), [&] { return RunCheck(check); });
    ExplainOptions explain;
    commands.emplace_back(AddExplain(app, explain), [&] { return RunExplain(explain); });
    ShowOptions show;
    commands.emplace_back(AddShow(app, show), [&] { return RunShow(show); });
    ExportOptions exporting;
    commands.emplace_back(AddExport(app, exporting), [&] { return RunExport(exporting); });
    AmiOptions ami;
    commands.emplace_back(AddAmiInput(app, ami), [&] { return RunAmiInput(ami); });
    commands.emplace_back(AddAmiOutput(app, ami), [&] { return RunAmiOutput(ami); });
    std::string function;
    std::vector<std::string> parameters;
    commands.emplace_back(AddCall(app, function, parameters), [&] { return RunCall(function, parameters); });
    commands.emplace_back(app.add_subcommand("functions", "List the script functions and what they take"),
                          RunFunctions);
    commands.emplace_back(
        app.add_subcommand(
            "keywords", "Print the keywords, the versions that have them and the files that may hold them"),
        RunKeywords);
    ManualForm form = ManualForm::Man;
    commands.emplace_back(AddManual(app, form), [&] {
        PrintManual(std::cout, app, form, TALIBIS_VERSION);
        return EXIT_CLEAN;
    });
    return RunParsed(app, commands, argc, argv);
}

}  // namespace

int main(int argc, char** argv)
{
    try {
        return Run(argc, argv);
    } catch (const std::exception& failure) {
        std::cerr << "talibis: " << failure.what() << '\n';
        return EXIT_UNUSABLE;
    }
}
