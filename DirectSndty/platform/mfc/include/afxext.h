#pragma once
// Extension-library support; in this subset everything it needs is in afxwin.h.
#include "afxwin.h"
