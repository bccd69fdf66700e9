#pragma once
// A layer of the device chain kept for the shape of the chain; it adds nothing.

#include "DirectSndDevice4PlayControl.h"

class AFX_EXT_CLASS CDirectSndDevice5Notify : public CDirectSndDevice4PlayControl
{
public:
    CDirectSndDevice5Notify();
    virtual ~CDirectSndDevice5Notify();
};
