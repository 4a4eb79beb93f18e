// [Node Declarations]: the internal nodes of a component, beside its pins, that external circuits connect to.

#pragma once

struct NODELIST {
    char* pszName;  ///< owned
    NODELIST* pNext;
};
