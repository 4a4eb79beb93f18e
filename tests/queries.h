// Short forms of query calls: the whole answer as lines, or as "status error text" and result.

#pragma once

#include "tests/builders.h"

/// The rows of a record; status and error text stand ahead of them unless the status is 0.
inline Lines Answer(const TalIbisListQueryData& list)
{
    Lines lines(list.getData().begin(), list.getData().end());
    if (list.getStatus() != QueryOk) {
        lines.insert(lines.begin(), std::to_string(list.getStatus()) + " " + list.getErrMsg());
    }
    return lines;
}

/// What a list query answers.
template <class Query, class... Args> Lines Rows(const TalIbis& file, Query query, Args... args)
{
    TalIbisListQueryData list;
    (file.*query)(args..., list);
    return Answer(list);
}

/// "status error text result"
template <class Query, class... Args> std::string Text(const TalIbis& file, Query query, Args... args)
{
    TalIbisStringQueryData text;
    (file.*query)(args..., text);
    return std::to_string(text.getStatus()) + " " + text.getErrMsg() + " " + text.getData();
}

/// The texts of a container, without their trailing newlines.
inline Lines Found(const IbisErrorContainer* findings)
{
    Lines lines;
    for (std::size_t i = 0; i < findings->getNumErrors(); ++i) {
        lines.emplace_back(findings->getErrMsg(i));
        if (lines.back().ends_with('\n')) {
            lines.back().pop_back();
        }
    }
    return lines;
}
