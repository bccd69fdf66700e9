#pragma once
// A layer of the buffer chain that adds nothing yet.

#include "DirectSnd3DBuff6Play.h"

class AFX_EXT_CLASS CDirectSnd3DBuff7PlayStream : public CDirectSnd3DBuff6Play
{
public:
    CDirectSnd3DBuff7PlayStream();
    virtual ~CDirectSnd3DBuff7PlayStream();
};
