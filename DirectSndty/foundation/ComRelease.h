#pragma once
// Releases the one reference an object holds on a platform interface and forgets it.

template <class TInterface>
inline void releaseInterface(TInterface*& pInterface)
{
    if (pInterface == NULL)
        return;
    pInterface->Release();
    pInterface = NULL;
}
