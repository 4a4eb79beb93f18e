// Header keywords: [IBIS Ver], [File Name], [File Rev], [Date], [Source], [Notes], [Disclaimer], [Copyright].

#pragma once

#include "ibis/source/nuibis_keyword.h"

#include <string_view>

/// The header of a file.
struct HDR {
    HDR* pNext;
    char szIbisVer[71];
    char szFileName[1025];
    char szFileRev[71];
    char szDate[41];
    char* pszSource;  ///< the four texts: lines joined with newlines; owned
    char* pszNotes;
    char* pszDisclaimer;
    char* pszCopyright;
};

void HDR_Init();
void HDR_Line(line_type lineType, nuibis_keyword code, std::string_view text);
void HDR_Leave(nuibis_keyword newCode);
void HDR_FreeList(HDR* list);

// Each gives 1 and the text, or 0 and null for an empty field.
int HDR_GetIbisVer(const HDR* header, const char** out);
int HDR_GetFileName(const HDR* header, const char** out);
int HDR_GetFileRev(const HDR* header, const char** out);
int HDR_GetDate(const HDR* header, const char** out);
int HDR_GetSource(const HDR* header, const char** out);
int HDR_GetNotes(const HDR* header, const char** out);
int HDR_GetDisclaimer(const HDR* header, const char** out);
int HDR_GetCopyright(const HDR* header, const char** out);
