#pragma once
// A layer of the device chain kept for the shape of the chain; it adds nothing.

#include "DirectSndDevice6Play.h"

class AFX_EXT_CLASS CDirectSndDevice7PlayStream : public CDirectSndDevice6Play
{
public:
    CDirectSndDevice7PlayStream();
    virtual ~CDirectSndDevice7PlayStream();
};
