#pragma once
// DirectSndty: presents sound as a stimulus through DirectSound 8.
// The one header a host includes; link with DirectSndty's import library.

#include "foundation/DirectSndBasicty.h"
#include "device/DSndDeviceInfoty.h"
#include "device/EnumerateDirectSndDevice.h"
#include "device/DirectSndDevicety.h"
#include "buffer/DirectSnd3DBuffty.h"
#include "capture/DSndCapturetyx.h"
#include "capture/DSndCapturetyStream.h"
#include "facade/SndDataRecordPlaytyx.h"
#include "schedule/DirectSndSchedulety.h"
#include "loading/SndDataLoadty.h"
#include "dialogs/DlgDSndCapturePro.h"
#include "dialogs/DlgSoundStreamRecord.h"
#include "dialogs/DlgSoundStreamPlay.h"
#include "SndDatatyx.h"
#include "SndDataConvertty.h"
