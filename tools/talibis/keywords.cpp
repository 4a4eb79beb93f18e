#include "tools/talibis/keywords.h"

#include "ibis/source/nuibis_cmn.h"
#include "ibis/source/nuibis_ibis11_text.h"
#include "ibis/source/nuibis_parse.h"
#include "tools/talibis/exit_status.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <string>
#include <vector>

namespace
{

// The first and the last of the versions that are read under one set of rules.
struct Rules {
    ibis_ver eVersion;
    const char* pszFirst;
    const char* pszLast;
};

constexpr std::array<Rules, 6> RULES{{
    {IBIS_VER_2, "2.0", "2.1"},
    {IBIS_VER_3, "3.0", "3.2"},
    {IBIS_VER_4, "4.0", "4.2"},
    {IBIS_VER_5, "5.0", "5.1"},
    {IBIS_VER_6_0, "6.0", "6.0"},
    {IBIS_VER_6_1, "6.1", "6.1"},
}};

constexpr std::array<ibis_file_type, 3> TYPES{IBIS_FILE_IBS, IBIS_FILE_PKG, IBIS_FILE_EBD};

constexpr const char* HEAD =
    R"(# Keywords

What `talibis keywords` prints: each keyword with the versions that have it, by the kind of the file.

From 2.0 on a blank and an underscore of a keyword are the same, and case does not count. In 1.0 and 1.1 files,
which are component files, a blank and an underscore differ, so that the second column gives the spelling of
those versions. Parameter files (`.ami`) have no keywords. [IBIS Ver] is looked up under the version that is in
force before it, which for the first file of a process is none.

| Keyword | 1.0 - 1.1 | `.ibs` | `.pkg` | `.ebd` |
| --- | --- | --- | --- | --- |
)";

// The rows of the keyword table that share one text, and what the reader of 1.x files calls it.
struct Entry {
    std::string_view sText;
    std::string_view sOldName;
    std::vector<const PARSE_Keyword*> rows;
};

Entry& FindOrAdd(std::vector<Entry>& entries, std::string_view text)
{
    const auto same = [text](const Entry& entry) { return CMN_KeywordEqual(entry.sText, text); };
    const auto found = std::find_if(entries.begin(), entries.end(), same);
    return found == entries.end() ? entries.emplace_back(Entry{text, {}, {}}) : *found;
}

std::vector<Entry> CollectEntries()
{
    std::vector<Entry> entries;
    for (const PARSE_Keyword& row : PARSE_GetKeywords()) {
        FindOrAdd(entries, row.sText).rows.push_back(&row);
    }
    for (int kind = IBIS11_IBIS_VER; kind <= IBIS11_END; ++kind) {
        const std::string_view name = IBIS11_KeywordName(static_cast<IBIS11_Kind>(kind));
        FindOrAdd(entries, name).sOldName = name;
    }
    return entries;
}

// "2.0 - 6.1", or several such ranges where versions between them lack the keyword.
std::string VersionsOf(const Entry& entry, ibis_file_type type)
{
    std::string ranges;
    const Rules* first = nullptr;
    const Rules* last = nullptr;
    const auto close = [&] {
        if (first != nullptr) {
            ranges += ranges.empty() ? "" : ", ";
            ranges += first->pszFirst;
            ranges +=
                std::string_view(first->pszFirst) == last->pszLast ? "" : std::string(" - ") + last->pszLast;
        }
        first = nullptr;
    };
    for (const Rules& rules : RULES) {
        if (std::any_of(entry.rows.begin(), entry.rows.end(),
                        [&](const PARSE_Keyword* row) { return PARSE_IsRead(*row, rules.eVersion, type); })) {
            first = first == nullptr ? &rules : first;
            last = &rules;
        } else {
            close();
        }
    }
    close();
    return ranges;
}

void PrintCell(std::string_view text, std::string_view mark = "")
{
    std::cout << ' ';
    if (!text.empty()) {
        std::cout << mark << text << mark << ' ';
    }
    std::cout << '|';
}

}  // namespace

int RunKeywords()
{
    std::cout << HEAD;
    for (const Entry& entry : CollectEntries()) {
        std::cout << '|';
        PrintCell(entry.sText, "`");
        PrintCell(entry.sOldName, "`");
        for (const ibis_file_type type : TYPES) {
            PrintCell(VersionsOf(entry, type));
        }
        std::cout << '\n';
    }
    return EXIT_CLEAN;
}
