#pragma once
// Included once by an extension DLL's entry point source.
#include "afxwin.h"
