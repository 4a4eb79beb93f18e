// Prints the pins of a component file and the tables of its models.

#include <ibis/interface/talibis.h>
#include <ibis/interface/talibis_qel.h>
#include <ibis/interface/talibis_raw.h>

#include <iostream>
#include <memory>

namespace
{

void PrintTable(const char* title, const rngp* row)
{
    for (; row != nullptr; row = row->pNext) {
        std::cout << "  " << title << ' ' << row->dFirst << ' ' << row->dTyp << ' ' << row->dMin << ' '
                  << row->dMax << '\n';
    }
}

void PrintModel(const char* file, const char* name)
{
    IbisErrorContainer findings;
    const std::unique_ptr<IbisRawModelData> model(getIbisRawModelData(file, name, findings));
    std::cout << "model " << name << ' ' << findings.getNumErrors() << '\n';
    if (model == nullptr) {
        return;
    }
    PrintTable("pullup", model->getPullupTable());
    PrintTable("gnd clamp", model->getGndClampTable());
    const IbisWaveformHandle waveform(model->getRisingWavefromWithHighest_fixture(IBIS_DATA_TYP));
    PrintTable("rising", waveform.getVtTable());
    double volts = 0;
    if (model->getVinh(IBIS_DATA_TYP, volts)) {
        std::cout << "  Vinh " << volts << '\n';
    }
}

// The value of a query as a script sees it.
void PrintValue(const TalIbisStringQueryData& text)
{
    const QVALUE outer = qval_create_list(1);
    const QVALUE value = text.createQval();
    std::cout << "value " << qval_put_list_item(outer, 0, value) << '\n';
    qval_free_value(value);
    qval_free_value(outer);
}

}  // namespace

int main(int argc, char** argv)
{
    TalIbis* file = nullptr;
    const char* const name = argc > 1 ? argv[1] : "";
    const IbisErrorContainer* const findings = talReadIbisFile(name, IBIS_FILE_IBS, &file);
    if (file == nullptr) {
        std::cout << "cannot read '" << name << "'\n";
        return 1;
    }
    std::cout << "findings " << findings->getNumErrors() << '\n';
    TalIbisListQueryData components;
    file->getCompList(components);
    for (const char* component : components.getData()) {
        TalIbisListQueryData pins;
        file->getPinModelList(component, "", pins);
        std::cout << "component " << component << '\n';
        pins.output(std::cout);
    }
    TalIbisListQueryData models;
    file->getModelList(models);
    for (const char* model : models.getData()) {
        PrintModel(name, model);
    }
    TalIbisStringQueryData version;
    file->getVersionString(version);
    PrintValue(version);
    std::cout << "functions " << (talIbis_qel_initialize() ? "registered" : "refused") << '\n';
    TalIbisFileManager::destroyInstance();
    return 0;
}
