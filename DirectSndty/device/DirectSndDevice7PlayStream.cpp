#include "DirectSndDevice7PlayStream.h"

CDirectSndDevice7PlayStream::CDirectSndDevice7PlayStream()
{
}

CDirectSndDevice7PlayStream::~CDirectSndDevice7PlayStream()
{
}
