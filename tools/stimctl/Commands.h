#pragma once
// The stimctl commands. Each takes the words after its name and gives the exit code.

#include <string>
#include <vector>

typedef std::vector<std::wstring> Words;

int runDevices(const Words& words);
int runCaps(const Words& words);
int runPlay(const Words& words);
int runTone(const Words& words);
int runRecord(const Words& words);
int runPlayRec(const Words& words);
int runTrain(const Words& words);
