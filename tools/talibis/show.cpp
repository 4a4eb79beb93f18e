#include "tools/talibis/show.h"

#include "ibis/source/nuibis_algmod.h"
#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_difpin.h"
#include "ibis/source/nuibis_ebdmdl.h"
#include "ibis/source/nuibis_efile.h"
#include "ibis/source/nuibis_hdr.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_msel.h"
#include "ibis/source/nuibis_mtx.h"
#include "ibis/source/nuibis_pin.h"
#include "ibis/source/nuibis_pkg.h"
#include "ibis/source/nuibis_pkgmdl.h"
#include "ibis/source/nuibis_rng.h"
#include "ibis/source/nuibis_submdl.h"
#include "tools/talibis/check_print.h"
#include "tools/talibis/exit_status.h"
#include "tools/talibis/model_items.h"
#include "tools/talibis/parameter_words.h"
#include "tools/talibis/source_file.h"
#include "tools/talibis/text_table.h"

#include <array>
#include <iostream>

namespace
{

constexpr const char* NONE = "-";

// Parts of a note, with a mark between them.
class Note
{
  public:
    Note& add(const std::string& part)
    {
        mText += mText.empty() || part.empty() ? part : "; " + part;
        return *this;
    }
    Note& addText(const std::string& label, const char* text)
    {
        return *text == '\0' ? *this : add(label + " " + text);
    }
    Note& addCount(std::size_t count, std::string_view word)
    {
        return count == 0 ? *this : add(Plural(count, word));
    }
    const std::string& text() const { return mText; }

  private:
    std::string mText;
};

std::string Join(const std::vector<std::string>& words, std::string_view between)
{
    std::string text;
    for (const std::string& word : words) {
        text += text.empty() ? "" : between;
        text += word;
    }
    return text;
}

std::string OrNone(const std::string& text)
{
    return text.empty() ? NONE : text;
}

std::string TypicalOf(const rng* triple, std::string_view unit)
{
    return triple == nullptr || triple->eTyp != NUM_VALUE ? NONE : Quantity(triple->dTyp, unit);
}

// Prints the sections of one file.
class Show
{
  public:
    Show(std::ostream& out, bool colour) : mOut(out), mStyle(colour) {}

    void title(const SourceFile& file);
    void records(const ibis& root);
    void parameters(const TalIbisAMI_Node& root);

  private:
    void section(const std::string& title, std::size_t count, const std::string& legend = "");
    void components(const std::vector<const CMPNT*>& list);
    void selectors(const std::vector<const msel*>& list);
    void models(const std::vector<const nuibis_mdl*>& list);
    void submodels(const std::vector<const submdl*>& list);
    void packages(const std::vector<const PKGMDL*>& list);
    void boards(const std::vector<const EBDMDL*>& list);
    void designators(const EBDMDL& board);
    void parameterTable(const std::string& title, const std::vector<TreeLine>& lines);

    std::ostream& mOut;
    TextStyle mStyle;
};

void Show::section(const std::string& title, std::size_t count, const std::string& legend)
{
    mOut << '\n' << mStyle.bold(Harmless(title)) << " (" << count << ')';
    mOut << (legend.empty() ? "" : mStyle.dim("  " + legend)) << '\n';
}

std::string KindOf(const SourceFile& file)
{
    static constexpr std::array<const char*, 5> KINDS{"file", "component file", "package model file",
                                                      "board description", "parameter file"};
    return KINDS[file.type];
}

void Show::title(const SourceFile& file)
{
    Note note;
    note.add(KindOf(file));
    if (file.root != nullptr && file.root->pHeaders != nullptr) {
        const HDR& header = *file.root->pHeaders;
        note.addText("IBIS", header.szIbisVer)
            .addText("revision", header.szFileRev)
            .addText("of", header.szDate);
    }
    if (file.errors + file.warnings != 0) {
        note.addCount(file.errors, "error").addCount(file.warnings, "warning").add("see talibis check");
    }
    mOut << mStyle.bold(Harmless(file.path)) << '\n';
    for (const std::string& line : WrapText(Harmless(note.text()), TEXT_WIDTH)) {
        mOut << line << '\n';
    }
    if (file.isOld) {
        mOut << "A file of version 1.x is only checked: nothing of it is kept that could be shown.\n";
    }
}

struct PinCounts {
    std::size_t all = 0;
    std::size_t power = 0;
    std::size_t ground = 0;
    std::size_t unconnected = 0;
};

PinCounts CountPins(const CMPNT& component)
{
    PinCounts counts;
    for (const PIN* pin = component.pPins; pin != nullptr; pin = pin->pNext) {
        ++counts.all;
        counts.power += CMN_Equal(pin->szModel, "POWER") ? 1 : 0;
        counts.ground += CMN_Equal(pin->szModel, "GND") ? 1 : 0;
        counts.unconnected += CMN_Equal(pin->szModel, "NC") ? 1 : 0;
    }
    return counts;
}

void Show::components(const std::vector<const CMPNT*>& list)
{
    TextTable table({{"NAME"},
                     {"PINS", ColumnKind::Right},
                     {"SIGNAL", ColumnKind::Right},
                     {"POWER", ColumnKind::Right},
                     {"GND", ColumnKind::Right},
                     {"NC", ColumnKind::Right},
                     {"R_pkg", ColumnKind::Right},
                     {"L_pkg", ColumnKind::Right},
                     {"C_pkg", ColumnKind::Right}});
    for (const CMPNT* component : list) {
        const PinCounts pins = CountPins(*component);
        const PKG package = component->pPackage == nullptr ? PKG{} : *component->pPackage;
        const Note note = Note()
                              .addText("by", component->szManufacturer)
                              .addText("package model", component->szPackageModel)
                              .addCount(RecordsOf(component->pDiffPins).size(), "differential pair");
        table.add({component->szName, std::to_string(pins.all),
                   std::to_string(pins.all - pins.power - pins.ground - pins.unconnected),
                   std::to_string(pins.power), std::to_string(pins.ground), std::to_string(pins.unconnected),
                   TypicalOf(package.pRpkg, "Ohm"), TypicalOf(package.pLpkg, "H"),
                   TypicalOf(package.pCpkg, "F")},
                  note.text());
    }
    section("Components", list.size());
    table.print(mOut, mStyle);
}

void Show::selectors(const std::vector<const msel*>& list)
{
    TextTable table({{"NAME"}, {"MODELS", ColumnKind::Wrapped}});
    for (const msel* selector : list) {
        std::vector<std::string> names;
        for (const mselmodel* model = selector->pModels; model != nullptr; model = model->pNext) {
            names.emplace_back(model->szName);
        }
        table.add({selector->szName, OrNone(Join(names, ", "))});
    }
    section("Model selectors", list.size());
    table.print(mOut, mStyle);
}

constexpr const char* TABLE_LEGEND = "PD PU pulldown, pullup; GC PC ground, power clamp";

// The words of those tables that the record has, in the order of the items.
template <class Record, std::size_t N>
std::string TablesOf(const Record& record, const Item<Record, crv> (&items)[N])
{
    static constexpr std::array<const char*, 6> WORDS{"PD", "PU", "GC", "PC", "SSO_PD", "SSO_PU"};
    static_assert(N <= WORDS.size());
    std::vector<std::string> words;
    for (std::size_t i = 0; i < N; ++i) {
        if (record.*items[i].ppField != nullptr) {
            words.emplace_back(WORDS[i]);
        }
    }
    return OrNone(Join(words, " "));
}

// The supply that the driver pulls up to; a receiver has that of its clamp.
const rng* SupplyOf(const nuibis_mdl& model)
{
    return model.pVoltageRange != nullptr ? model.pVoltageRange
           : model.pPullupRef != nullptr  ? model.pPullupRef
                                          : model.pPowerClampRef;
}

std::string CodeOf(const ALGMOD& line)
{
    return (line.pCodeFile == nullptr ? std::string("no code file") : line.pCodeFile->szName) + " with " +
           (line.pParamFile == nullptr ? "no parameter file" : line.pParamFile->szName);
}

std::string ExtrasOf(const nuibis_mdl& model)
{
    static constexpr struct {
        const char* pszName;
        bool (*has)(const nuibis_mdl&);
    } BLOCKS[]{{"Model Spec", MDL_Has<&nuibis_mdl::pModelSpec>},
               {"Receiver Thresholds", MDL_Has<&nuibis_mdl::pReceiverThresholds>},
               {"Driver Schedule", MDL_Has<&nuibis_mdl::pDriverSchedule>},
               {"C Comp Corner", MDL_Has<&nuibis_mdl::pCCompCorner>},
               {"On", MDL_Has<&nuibis_mdl::pOn>},
               {"Off", MDL_Has<&nuibis_mdl::pOff>},
               {"External Model", MDL_Has<&nuibis_mdl::pExternalModel>}};
    Note note;
    for (const auto& block : BLOCKS) {
        note.add(block.has(model) ? block.pszName : "");
    }
    for (const addsubmdl* added = model.pAddSubmodels; added != nullptr; added = added->pNext) {
        note.addText("adds", added->szName);
    }
    if (model.pAlgorithmicModel != nullptr) {
        for (const ALGMOD* line : InFileOrder(model.pAlgorithmicModel->pFirst)) {
            note.add("algorithmic model: " + CodeOf(*line));
        }
    }
    return note.text();
}

void Show::models(const std::vector<const nuibis_mdl*>& list)
{
    TextTable table({{"NAME"},
                     {"TYPE"},
                     {"SUPPLY", ColumnKind::Right},
                     {"C_comp", ColumnKind::Right},
                     {"I-V", ColumnKind::Wrapped},
                     {"RAMP"},
                     {"RISE", ColumnKind::Right},
                     {"FALL", ColumnKind::Right}});
    for (const nuibis_mdl* model : list) {
        table.add({model->szName, MDL_TypeText(model->eModelType), TypicalOf(SupplyOf(*model), "V"),
                   TypicalOf(model->pCComp, "F"), TablesOf(*model, MODEL_TABLES),
                   model->pRamp != nullptr ? "yes" : NONE, std::to_string(RecordsOf(model->pRising).size()),
                   std::to_string(RecordsOf(model->pFalling).size())},
                  ExtrasOf(*model));
    }
    section("Models", list.size(), TABLE_LEGEND);
    table.print(mOut, mStyle);
}

void Show::submodels(const std::vector<const submdl*>& list)
{
    TextTable table({{"NAME"}, {"TYPE"}, {"I-V"}, {"WAVEFORMS", ColumnKind::Wrapped}});
    for (const submdl* submodel : list) {
        std::vector<std::string> waveforms;
        for (const auto& item : SUBMODEL_WAVEFORMS) {
            if (submodel->*item.ppField != nullptr) {
                waveforms.emplace_back(item.pszName);
            }
        }
        const char* const type = SUBMDL_TypeWord(submodel->eSubmodelType);
        table.add({submodel->szName, type == nullptr ? NONE : type, TablesOf(*submodel, SUBMODEL_TABLES),
                   OrNone(Join(waveforms, ", "))});
    }
    section("Submodels", list.size(), TABLE_LEGEND);
    table.print(mOut, mStyle);
}

std::string MatrixText(const char* name, const MTX* matrix)
{
    static constexpr std::array<const char*, 5> SHAPES{"", " banded", " banded", " sparse", " full"};
    if (matrix == nullptr) {
        return "";
    }
    const std::string band = matrix->bBandwidthSeen ? " (" + std::to_string(matrix->uiBandwidth) + ")" : "";
    return name + std::string(SHAPES[matrix->eMatrixType]) + band;
}

std::string StructureOf(const PKGMDL& package)
{
    return Note()
        .add(package.ppSections == nullptr ? ""
                                           : "paths of up to " + Plural(package.uiSectionCount, "section"))
        .add(MatrixText("R", package.pResistance))
        .add(MatrixText("L", package.pInductance))
        .add(MatrixText("C", package.pCapacitance))
        .text();
}

void Show::packages(const std::vector<const PKGMDL*>& list)
{
    TextTable table({{"NAME"}, {"PINS", ColumnKind::Right}, {"STRUCTURE", ColumnKind::Wrapped}});
    for (const PKGMDL* package : list) {
        const Note note = Note().addText("by", package->szManufacturer).add(package->szDescription);
        table.add({package->szName,
                   std::to_string(EntriesOf(package->ppszPinNames, package->uiPinCount).size()),
                   OrNone(StructureOf(*package))},
                  note.text());
    }
    section("Package models", list.size());
    table.print(mOut, mStyle);
}

void Show::designators(const EBDMDL& board)
{
    const std::vector<const EBDREFDES*> places = InFileOrder(board.pRefDesMap);
    if (places.empty()) {
        return;
    }
    TextTable table({{"PLACE"}, {"FILE", ColumnKind::Wrapped}, {"COMPONENT", ColumnKind::Wrapped}});
    for (const EBDREFDES* place : places) {
        table.add({place->szRefDes, place->szFile, place->szComponent});
    }
    section("Reference designators of " + std::string(board.szName), places.size());
    table.print(mOut, mStyle);
}

void Show::boards(const std::vector<const EBDMDL*>& list)
{
    TextTable table({{"NAME"}, {"PINS", ColumnKind::Right}, {"PATHS", ColumnKind::Right}});
    for (const EBDMDL* board : list) {
        table.add({board->szName, std::to_string(EntriesOf(board->ppPins, board->uiPinCount).size()),
                   std::to_string(RecordsOf(board->pPaths).size())},
                  Note().addText("by", board->szManufacturer).text());
    }
    section("Boards", list.size());
    table.print(mOut, mStyle);
    for (const EBDMDL* board : list) {
        designators(*board);
    }
}

void Show::records(const ibis& root)
{
    const auto print = [this](const auto* newest, auto printList) {
        if (newest != nullptr) {
            (this->*printList)(InFileOrder(newest));
        }
    };
    print(root.pComponents, &Show::components);
    print(root.pModelSelectors, &Show::selectors);
    print(root.pModels, &Show::models);
    print(root.pSubmodels, &Show::submodels);
    print(root.pPackageModels, &Show::packages);
    print(root.pBoards, &Show::boards);
}

std::string WordOrNone(const char* word)
{
    return word == nullptr ? NONE : word;
}

void Show::parameterTable(const std::string& title, const std::vector<TreeLine>& lines)
{
    TextTable table(
        {{"NAME"}, {"USAGE"}, {"TYPE"}, {"DEFAULT", ColumnKind::Wrapped}, {"FORMAT", ColumnKind::Wrapped}});
    std::size_t count = 0;
    for (const TreeLine& line : lines) {
        const std::string name = std::string(2 * (line.depth - 1), ' ') + *line.name;
        const TalIbisAMI_ParamDef* const definition = line.definition;
        if (definition == nullptr) {
            table.add({name});
            continue;
        }
        ++count;
        table.add({name, WordOrNone(UsageWord(definition->getUsage())),
                   WordOrNone(TypeWord(definition->getDataType())), OrNone(definition->getDefaultText()),
                   OrNone(Join(definition->getFormatData(), " "))});
    }
    section(title, count);
    table.print(mOut, mStyle);
}

// Below the root stand the two branches of the parameters.
void Show::parameters(const TalIbisAMI_Node& root)
{
    mOut << "Parameters of " << Harmless(root.getName()) << '\n';
    std::string title;
    std::vector<TreeLine> lines;
    const auto close = [&] {
        if (!lines.empty()) {
            parameterTable(title, lines);
        }
        lines.clear();
    };
    for (const TreeLine& line : LinesOf(root)) {
        if (line.depth == 0) {
            close();
            title = *line.name;
        } else {
            lines.push_back(line);
        }
    }
    close();
}

}  // namespace

int RunShow(const ShowOptions& options)
{
    SourceFile file;
    if (!ReadSourceFile(options.file, options.type, file)) {
        return EXIT_UNUSABLE;
    }
    Show show(std::cout, WantsColour(options.colour));
    show.title(file);
    if (file.root != nullptr) {
        show.records(*file.root);
    }
    if (file.parameters != nullptr) {
        show.parameters(*file.parameters->getTopNode());
    }
    return EXIT_CLEAN;
}
