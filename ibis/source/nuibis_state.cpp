#include "ibis/source/nuibis_state.h"

ibis_file_type geFileType = IBIS_FILE_NONE;
ibis_ver geIbisVersion = IBIS_VER_NONE;
unsigned guiLineNumber = 0;
unsigned guiParamLineNumber = 0;
char gszFileName[CMN_PATH_LIMIT + 1] = "";
bool gbExpectContinuation = false;

unsigned PARSE_GetLineNumber()
{
    const bool parameters = geFileType == IBIS_FILE_AMI || geFileType == IBIS_FILE_PARAM;
    return parameters ? guiParamLineNumber : guiLineNumber;
}

std::string_view PARSE_GetFileName()
{
    return gszFileName;
}
