#include "tests/builders.h"
TEST(ExternalModel, Probe)
{
    for (const std::string body : {
         "Language SPICE\nCorner Typ f.sp c\nPorts A_signal D_drive P1\nD_to_A D_drive A_signal P1 0 3 1n 1n Typ Inverting\nD_to_A D_drive A_signal Q 0 3 1n 1n\n[End External Model]\n",
         "Language IBIS-ISS\nD_to_A\nCorner Typ\nCorner Typ a b\nLanguage VHDL-AMS\nD_to_A\nPorts D_drive D_switch\nPort_type a b\n[End External Model]\n",
         "Language SPICE\n[Voltage Range] 1 1 1\n"}) {
    for (const auto& l : Messages(Ibs("[Model] M\nModel_type Output\n[External Model]\n" + body))) {
        std::puts(l.c_str());
    }
    std::puts("======");}
}
