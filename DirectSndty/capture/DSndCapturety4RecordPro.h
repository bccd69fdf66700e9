#pragma once
// A layer of the capture chain that adds nothing yet.

#include "DSndCapturety3Record.h"

class AFX_EXT_CLASS CDSndCapturety4RecordPro : public CDSndCapturety3Record
{
public:
    CDSndCapturety4RecordPro();
    virtual ~CDSndCapturety4RecordPro();
};
