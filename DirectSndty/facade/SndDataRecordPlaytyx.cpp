#include "SndDataRecordPlaytyx.h"

CSndDataRecordPlaytyx::CSndDataRecordPlaytyx()
{
}

CSndDataRecordPlaytyx::~CSndDataRecordPlaytyx()
{
}
