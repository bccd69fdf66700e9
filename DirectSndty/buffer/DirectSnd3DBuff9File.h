#pragma once
// Saves the buffer's play timing, format, size and working 3D buffer and listener records to
// an archive and restores them. A load only sets the members: it describes the next load and
// the next 3D play, and nothing reaches DirectSound.

#include "DirectSnd3DBuff8PlayControl.h"

class AFX_EXT_CLASS CDirectSnd3DBuff9File : public CDirectSnd3DBuff8PlayControl
{
public:
    CDirectSnd3DBuff9File();
    virtual ~CDirectSnd3DBuff9File();

    // 1 when done, 0 when the archive is not a 3D buffer settings file (nothing is changed).
    // Archive exceptions (end of file, wrong direction) pass through.
    int serialize(CArchive& ar);

private:
    int serialize20040320(CArchive& ar);
    void serializeListener(CArchive& ar);
    void serializeBuffer3D(CArchive& ar);
};
