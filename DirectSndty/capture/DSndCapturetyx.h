#pragma once
// The capture class the record/play facade creates; always made on the heap, as its
// notification table is large.

#include "DSndCapturety4RecordPro.h"

class AFX_EXT_CLASS CDSndCapturetyx : public CDSndCapturety4RecordPro
{
public:
    CDSndCapturetyx();
    virtual ~CDSndCapturetyx();
};
