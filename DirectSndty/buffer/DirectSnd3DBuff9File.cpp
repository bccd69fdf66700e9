#include "DirectSnd3DBuff9File.h"

CDirectSnd3DBuff9File::CDirectSnd3DBuff9File()
{
}

CDirectSnd3DBuff9File::~CDirectSnd3DBuff9File()
{
}
