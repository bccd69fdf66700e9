#pragma once
// A layer of the device chain kept for the shape of the chain; it adds nothing.

#include "DirectSndDevice3Speak.h"

class AFX_EXT_CLASS CDirectSndDevice4PlayControl : public CDirectSndDevice3Speak
{
public:
    CDirectSndDevice4PlayControl();
    virtual ~CDirectSndDevice4PlayControl();
};
