#pragma once
// The record/play facade a host instantiates.

#include "SndDataRecordPlayty6P.h"

class AFX_EXT_CLASS CSndDataRecordPlaytyx : public CSndDataRecordPlayty6P
{
public:
    CSndDataRecordPlaytyx();
    virtual ~CSndDataRecordPlaytyx();
};
