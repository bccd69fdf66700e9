#include "DSndCapturetyx.h"

CDSndCapturetyx::CDSndCapturetyx()
{
}

CDSndCapturetyx::~CDSndCapturetyx()
{
}
