// Board descriptions, with a component file beside them that a reference designator can name.

#include "fuzz/target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const FUZZ_Scope scope;
    static const bool written = [] {
        FUZZ_Write("u1.ibs", "[IBIS Ver] 5.1\n[File Name] u1.ibs\n[File Rev] 1.0\n[Component] U1\n"
                             "[Manufacturer] Acme\n[Package]\nR_pkg 0 0 0\nL_pkg 0 0 0\nC_pkg 0 0 0\n"
                             "[Pin] signal_name model_name R_pin L_pin C_pin\n1 S1 M\n2 VSS GND\n[Model] M\n"
                             "Model_type Input\nVinl = 0.8\nVinh = 2.0\nC_comp 5p NA NA\n"
                             "[Voltage Range] 3.3 NA NA\n[End]\n");
        return true;
    }();
    FUZZ_Read("example.ebd", IBIS_FILE_EBD, written ? FUZZ_Text(data, size) : "");
    return 0;
}
