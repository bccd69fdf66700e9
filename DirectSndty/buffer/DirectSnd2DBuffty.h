#pragma once
// The 2D buffer with the two dialogs it opens: the play controller and the basic record/play.

#include "DirectSnd2DBuff.h"

class AFX_EXT_CLASS CDirectSnd2DBuffty : public CDirectSnd2DBuff
{
public:
    CDirectSnd2DBuffty();
    virtual ~CDirectSnd2DBuffty();

    int setSndPlayCtl();
    // A new container the caller owns, or null.
    CSndDatatyx* showTavrelerBasic();
};
