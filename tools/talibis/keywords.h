// talibis keywords: what the readers of all versions recognise.

#pragma once

/// Prints the table of keywords as a Markdown page.
int RunKeywords();
