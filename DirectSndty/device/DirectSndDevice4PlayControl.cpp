#include "DirectSndDevice4PlayControl.h"

CDirectSndDevice4PlayControl::CDirectSndDevice4PlayControl()
{
}

CDirectSndDevice4PlayControl::~CDirectSndDevice4PlayControl()
{
}
