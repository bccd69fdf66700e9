// mfc_test_resources.dll carries dialog templates only; it stands in for an extension DLL.
#include <windows.h>

extern "C" __declspec(dllexport) int mfcTestResourcesVersion()
{
    return 1;
}
