// The words of parameter definitions as the file writes them; null where nothing, or nothing known, is given.

#pragma once

#include "ibis/interface/talibis_ami.h"

const char* UsageWord(UsageType usage);
const char* TypeWord(ParamDataType type);
const char* FormatWord(FormatType format);
