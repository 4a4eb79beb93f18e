// docs/messages.md.

#pragma once

#include "tools/talibis/explain_data.h"

/// Prints the whole document on standard output.
void PrintExplainMarkdown(const ExplainData& data);
/// The catalogue's text of a number, on one line.
std::string CatalogueText(int code);
