#include "tools/talibis/manual.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace
{

// The table of options, as the pages need it
// -----------------------------------------------------------------

struct Entry {
    std::vector<std::string> names;  // "-j", "--jobs"; none for what has a place and no name
    std::string place;               // "FILE"
    std::string value;               // "N"; empty for a flag
    std::vector<std::string> words;  // that the value may be
    std::string help;
    bool several = false;
};

struct Command {
    std::string name;
    std::string help;
    std::string footer;
    std::vector<Entry> entries;
};

// "WORD:{ibs,pkg}": what the parser calls a value that is one of some words.
std::vector<std::string> WordsOf(const std::string& type)
{
    std::vector<std::string> words;
    const std::size_t open = type.find('{');
    if (open == std::string::npos) {
        return words;
    }
    std::string_view rest = std::string_view(type).substr(open + 1, type.find('}', open) - open - 1);
    while (!rest.empty()) {
        const std::size_t length = std::min(rest.find(','), rest.size());
        words.emplace_back(rest.substr(0, length));
        rest.remove_prefix(std::min(length + 1, rest.size()));
    }
    return words;
}

Entry EntryOf(const CLI::Option& option)
{
    Entry entry;
    for (const std::string& name : option.get_snames()) {
        entry.names.push_back("-" + name);
    }
    for (const std::string& name : option.get_lnames()) {
        entry.names.push_back("--" + name);
    }
    entry.place = option.nonpositional() ? "" : option.get_name(true, false);
    const std::string type = option.get_type_name();
    if (option.get_items_expected_max() > 0) {
        entry.value = type.substr(0, type.find(':'));
        entry.words = WordsOf(type);
    }
    entry.help = option.get_description();
    entry.several = option.get_items_expected_max() > 1;
    return entry;
}

// A group of options is a command without a name.
void CollectEntries(const CLI::App& app, std::vector<Entry>& entries)
{
    for (const CLI::Option* const option : app.get_options([](const CLI::Option*) { return true; })) {
        entries.push_back(EntryOf(*option));
    }
    for (const CLI::App* const group : app.get_subcommands([](const CLI::App*) { return true; })) {
        if (group->get_name().empty()) {
            CollectEntries(*group, entries);
        }
    }
}

Command CommandOf(const CLI::App& app)
{
    Command command{app.get_name(), app.get_description(), app.get_footer(), {}};
    CollectEntries(app, command.entries);
    return command;
}

std::vector<Command> CommandsOf(const CLI::App& app)
{
    std::vector<Command> commands;
    for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; })) {
        commands.push_back(CommandOf(*command));
    }
    return commands;
}

std::string Joined(const std::vector<std::string>& words, std::string_view between)
{
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : std::string(between)) + word;
    }
    return text;
}

// On one line.
std::string Flat(std::string text)
{
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

// The manual page
// --------------------------------------------------------------------------------------------

std::string Roff(const std::string& text)
{
    std::string out;
    for (const char c : text) {
        const bool first = out.empty() || out.back() == '\n';
        out += first && (c == '.' || c == '\'') ? "\\&" : "";
        out += c == '\\' ? "\\e" : c == '-' ? "\\-" : std::string(1, c);
    }
    return out;
}

void PrintEntry(std::ostream& out, const Entry& entry)
{
    const std::string value = entry.words.empty() ? entry.value : Joined(entry.words, "|");
    out << ".TP\n";
    if (entry.names.empty()) {
        out << ".I " << Roff(entry.place) << (entry.several ? " ..." : "") << '\n';
    } else {
        out << "\\fB" << Roff(Joined(entry.names, ", ")) << "\\fR";
        out << (value.empty() ? "" : " \\fI" + Roff(value) + "\\fR") << '\n';
    }
    out << Roff(entry.help) << '\n';
}

void PrintCommand(std::ostream& out, const Command& command)
{
    out << ".SS talibis " << Roff(command.name);
    for (const Entry& entry : command.entries) {
        if (entry.names.empty()) {
            out << ' ' << Roff(entry.place) << (entry.several ? "..." : "");
        }
    }
    out << '\n' << Roff(command.help) << ".\n";
    for (const Entry& entry : command.entries) {
        PrintEntry(out, entry);
    }
    if (!command.footer.empty()) {
        out << ".PP\n" << Roff(command.footer) << '\n';
    }
}

void PrintManPage(std::ostream& out, const CLI::App& app, const char* version)
{
    out << ".TH TALIBIS 1 \"\" \"talibis " << version << "\" \"User Commands\"\n"
        << ".SH NAME\ntalibis \\- " << Roff(app.get_description()) << '\n'
        << ".SH SYNOPSIS\n.B talibis\n.I COMMAND\n[\\fIOPTION\\fR]... [\\fIARGUMENT\\fR]...\n.SH OPTIONS\n";
    for (const Entry& entry : CommandOf(app).entries) {
        PrintEntry(out, entry);
    }
    out << ".SH COMMANDS\n";
    for (const Command& command : CommandsOf(app)) {
        if (!command.name.empty()) {
            PrintCommand(out, command);
        }
    }
}

// Completions
// ------------------------------------------------------------------------------------------------

// For a text between single quotes of a shell.
std::string Quoted(const std::string& text)
{
    std::string out = "'";
    for (const char c : Flat(text)) {
        out += c == '\'' ? "'\\''" : std::string(1, c);
    }
    return out + "'";
}

std::string NamesOf(const std::vector<Entry>& entries)
{
    std::vector<std::string> names;
    for (const Entry& entry : entries) {
        names.insert(names.end(), entry.names.begin(), entry.names.end());
    }
    return Joined(names, " ");
}

std::string NamesOf(const std::vector<Command>& commands)
{
    std::vector<std::string> names;
    names.reserve(commands.size());
    for (const Command& command : commands) {
        names.push_back(command.name);
    }
    return Joined(names, " ");
}

void PrintBash(std::ostream& out, const CLI::App& app)
{
    const std::vector<Command> commands = CommandsOf(app);
    out << "# bash completion for talibis\n"
           "_talibis()\n{\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} words=\n"
           "    case ${COMP_WORDS[1]}:${COMP_WORDS[COMP_CWORD - 1]} in\n";
    for (const Command& command : commands) {
        for (const Entry& entry : command.entries) {
            for (const std::string& name : entry.names) {
                if (!entry.words.empty()) {
                    out << "        " << command.name << ':' << name << ") words='"
                        << Joined(entry.words, " ") << "' ;;\n";
                }
            }
        }
    }
    out << "        *)\n"
           "            ((COMP_CWORD == 1)) && words='"
        << NamesOf(commands) << ' ' << NamesOf(CommandOf(app).entries)
        << "'\n"
           "            [[ $current == -* ]] && case ${COMP_WORDS[1]} in\n";
    for (const Command& command : commands) {
        out << "                " << command.name << ") words='" << NamesOf(command.entries) << "' ;;\n";
    }
    out << "            esac\n"
           "            ;;\n"
           "    esac\n"
           "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\")\n"
           "}\n"
           "complete -o default -F _talibis talibis\n";
}

// "(-j --jobs)" in front keeps the other name from being offered once one is there.
std::string ZshSpecOf(const Entry& entry, const std::string& name)
{
    std::string help = Flat(entry.help);
    for (const char c : {'[', ']', ':'}) {
        std::replace(help.begin(), help.end(), c, ' ');
    }
    std::string spec = "(" + Joined(entry.names, " ") + ")" + name + "[" + help + "]";
    if (!entry.words.empty()) {
        spec += ":" + entry.value + ":(" + Joined(entry.words, " ") + ")";
    } else if (!entry.value.empty()) {
        spec += ":" + entry.value + ":_files";
    }
    return Quoted(spec);
}

void PrintZsh(std::ostream& out, const CLI::App& app)
{
    const std::vector<Command> commands = CommandsOf(app);
    out << "#compdef talibis\n"
           "local -a commands=(\n";
    for (const Command& command : commands) {
        out << "    " << Quoted(command.name + ":" + command.help) << '\n';
    }
    out << ")\n"
           "if ((CURRENT == 2)); then\n    _describe command commands\n    return\nfi\n"
           "case $words[2] in\n";
    for (const Command& command : commands) {
        out << "    " << command.name << ")\n        _arguments";
        for (const Entry& entry : command.entries) {
            for (const std::string& name : entry.names) {
                out << " \\\n            " << ZshSpecOf(entry, name);
            }
        }
        out << " \\\n            '*:file:_files'\n        ;;\n";
    }
    out << "esac\n";
}

void PrintFish(std::ostream& out, const CLI::App& app)
{
    out << "# fish completion for talibis\n";
    for (const Command& command : CommandsOf(app)) {
        out << "complete -c talibis -n __fish_use_subcommand -a " << command.name << " -d "
            << Quoted(command.help) << '\n';
        for (const Entry& entry : command.entries) {
            if (entry.names.empty()) {
                continue;
            }
            out << "complete -c talibis -n '__fish_seen_subcommand_from " << command.name << "'";
            for (const std::string& name : entry.names) {
                out << (name.starts_with("--") ? " -l " : " -s ") << name.substr(name.find_first_not_of('-'));
            }
            out << (entry.words.empty() ? "" : " -x -a " + Quoted(Joined(entry.words, " ")));
            out << (entry.words.empty() && !entry.value.empty() ? " -r" : "");
            out << " -d " << Quoted(entry.help) << '\n';
        }
    }
}

}  // namespace

void PrintManual(std::ostream& out, const CLI::App& app, ManualForm form, const char* version)
{
    switch (form) {
    case ManualForm::Man:
        PrintManPage(out, app, version);
        return;
    case ManualForm::Bash:
        PrintBash(out, app);
        return;
    case ManualForm::Zsh:
        PrintZsh(out, app);
        return;
    case ManualForm::Fish:
        PrintFish(out, app);
        return;
    }
}
