#pragma once
// The stimulus part of the demo: a tone played once, looped, muted on each side and as a
// moving 3D source, each recorded back and its level printed per channel.

class CDirectSndDevicety;

void playStimuli(CDirectSndDevicety& device);
