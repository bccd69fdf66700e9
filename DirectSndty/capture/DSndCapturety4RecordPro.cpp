#include "DSndCapturety4RecordPro.h"

CDSndCapturety4RecordPro::CDSndCapturety4RecordPro()
{
}

CDSndCapturety4RecordPro::~CDSndCapturety4RecordPro()
{
}
