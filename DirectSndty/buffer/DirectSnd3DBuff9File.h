#pragma once
// A layer of the buffer chain that adds nothing yet.

#include "DirectSnd3DBuff8PlayControl.h"

class AFX_EXT_CLASS CDirectSnd3DBuff9File : public CDirectSnd3DBuff8PlayControl
{
public:
    CDirectSnd3DBuff9File();
    virtual ~CDirectSnd3DBuff9File();
};
