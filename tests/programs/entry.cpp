// A checker of its own around the stand-alone entry: prints what was found, one text after the other.

#include "ibis/source/nuibis_main.h"
#include "ibis/source/nuibis_msg.h"

#include <cstdio>

int main(int argc, char** argv)
{
    const int result = IBIS_Main(argc, argv);
    const IbisErrorContainer* const findings = MSG_GetContainer();
    for (std::size_t i = 0; i < findings->getNumErrors(); ++i) {
        std::fputs(findings->getErrMsg(i), stdout);
    }
    return result;
}
