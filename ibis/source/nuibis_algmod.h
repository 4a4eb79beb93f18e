// [Algorithmic Model]: the code files of a model and the parameter files that describe them, and the
// judgement of a parameter file's text.

#pragma once

#include "ibis/source/nuibis_pfile.h"

struct EFILE;
struct nuibis_mdl;

/// What a line's code file models.
enum ALGMOD_Kind : std::uint32_t {
    NOT_ALGMOD = 0,
    ALGMOD_EXECUTABLE = 1,
    ALGMOD_EXECUTABLE_TX = 2,
    ALGMOD_EXECUTABLE_RX = 3,
};

/// One line: "Executable platform_compiler_bits code-file parameter-file".
struct ALGMOD {
    ALGMOD* pNext;
    ALGMOD_Kind eKind;
    char szPlatform[45];
    char szCompiler[45];
    std::int32_t iBits;    ///< -1 if it could not be read
    bool bCodeFileUsable;  ///< see EFILE_CheckPlatform
    bool bDuplicate;       ///< see ALGMOD_MarkDuplicates
    char szReserved[45];
    char szRepeaterType[37];  ///< empty, as that of the parameter file
    PFILE* pParamFile;        ///< of the root; null if the name is no parameter file's
    EFILE* pCodeFile;         ///< of the root
};

/// The value of the keyword; it exists once the keyword was seen.
struct ALGMOD_LIST {
    ALGMOD* pFirst;  ///< last line first
};

/// The keyword line. A second keyword in a model replaces the first.
void ALGMOD_Init(std::string_view text, ALGMOD_LIST** list);
/// A data line.
void ALGMOD_Line(std::string_view text, ALGMOD_LIST* list);
/// The checks when the keyword is left. Null is fine.
void ALGMOD_CheckBits(const ALGMOD_LIST* list);
/// Releases the lines, and with each the tree of its parameter file. Null is fine.
void ALGMOD_Free(ALGMOD_LIST* list);

/// The checks at the end of a component file; `list` runs from the last model to the first.
void ALGMOD_CheckModels(const nuibis_mdl* list);

/// Marks the lines of a list that repeat an earlier line's platform, bits and code file.
void ALGMOD_MarkDuplicates(ALGMOD_LIST* list);
/// Marks the lines of `second` that repeat platform, bits and code file of the first line of `first`.
void ALGMOD_MarkDuplicatesAcross(const ALGMOD_LIST* first, ALGMOD_LIST* second);

/// Builds the tree of the text that the driver has read, judges it and frees the text. Null, with messages
/// unless there is no text, if the text has a fault; warnings alone do not cost the tree. The caller owns the
/// tree.
_tagTree* ALGMOD_ParseParamText(const char* fileName, ibis_file_type type);
/// Judges the text of a parameter file that is read on its own.
void ALGMOD_ReadAmiFile(const char* fileName);

/// What is known of a parameter that [External Model] refers to.
struct AMI_PARAMINFO {
    AMI_Keyword eUsage;    ///< AMI_NO_KEYWORD if none is given
    AMI_Keyword eType;     ///< AMI_NO_KEYWORD if none is given
    std::int32_t iFormat;  ///< code of the format's word; 0 if none is given, AMI_TABLE_FORMAT for a branch
    const char* pszValue;  ///< of the tree, which lives with the root or until the model's second
                           ///< [Algorithmic Model]; null if there is none
};

/// Finds the parameter that `tokens`, of which there is at least one, lead to: the file, the name of its root
/// branch, the branches, the parameter.
/// `name` and `label` are the subparameter and its keyword for messages. False with 4683 if it is not there;
/// a parameter that may not be referred to is reported and given all the same.
bool ALGMOD_ResolveParameter(std::span<const std::string_view> tokens, std::string_view name,
                             std::string_view label, const nuibis_mdl* model, AMI_PARAMINFO* out);
