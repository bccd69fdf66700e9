#include "DirectSndDevice5Notify.h"

CDirectSndDevice5Notify::CDirectSndDevice5Notify()
{
}

CDirectSndDevice5Notify::~CDirectSndDevice5Notify()
{
}
