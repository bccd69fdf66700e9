// Runs the suite with message boxes answered in place, so none can block an unattended run.

#include "DeviceHarness.h"

namespace
{
int CALLBACK answerOk(LPCTSTR text, UINT, UINT)
{
    shownMessages().emplace_back(text);
    return IDOK;
}
}

int main(int argc, char** argv)
{
    AfxSetMessageBoxAnswerer(answerOk);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
