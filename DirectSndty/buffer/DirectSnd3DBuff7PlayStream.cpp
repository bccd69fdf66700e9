#include "DirectSnd3DBuff7PlayStream.h"

CDirectSnd3DBuff7PlayStream::CDirectSnd3DBuff7PlayStream()
{
}

CDirectSnd3DBuff7PlayStream::~CDirectSnd3DBuff7PlayStream()
{
}
