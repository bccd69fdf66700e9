// stimctl: presents sound as a stimulus through the DirectSndty library from a console, and
// records it back. Library message boxes are printed, never shown.

#include "Arguments.h"
#include "Commands.h"
#include "Console.h"

#include <cstdio>
#include <cstring>

namespace
{
const char kUsage[] =
    "usage: stimctl COMMAND [ARGUMENTS]\n"
    "Presents sound as a stimulus through the DirectSndty library and records it back.\n"
    "\n"
    "commands:\n"
    "  devices                       list the playback and capture devices\n"
    "  caps                          what the default playback and capture devices can do\n"
    "  play FILE.wav [OPTIONS]       play a wave file once, looped, panned or as a 3D source\n"
    "  tone HZ SECONDS [--level DB]  play a sine tone\n"
    "  record OUT.wav --seconds N | --bytes N\n"
    "                                record from the default capture device into a wave file\n"
    "  playrec IN.wav OUT.wav [--pad SECONDS]\n"
    "                                play a wave file while recording it back; print the\n"
    "                                level heard and the delay from the play call to the onset\n"
    "  train FILE.wav --every MS --count N [--jitter MS]\n"
    "                                a train of stimuli placed to the frame on a running stream\n"
    "\n"
    "stimctl COMMAND --help describes a command.\n"
    "Exit status: 0 done, 1 the sound device or a file failed, 2 wrong arguments.";

struct Command
{
    const char* name;
    int (*run)(const Words&);
};

const Command kCommands[] = {
    {"devices", runDevices}, {"caps", runCaps},     {"play", runPlay},
    {"tone", runTone},       {"record", runRecord}, {"playrec", runPlayRec},
    {"train", runTrain},
};

int refuse(const std::string& reason)
{
    std::fprintf(stderr, "stimctl: %s (see stimctl --help)\n", reason.c_str());
    return kExitUsage;
}
}

int main()
{
    printLibraryMessages();
    Words words = commandLineWords();
    if (words.empty())
        return refuse("no command");
    if (words[0] == L"--help" || words[0] == L"-h")
    {
        say("%s", kUsage);
        return kExitOk;
    }
    const std::string name = toUtf8(words[0]);
    words.erase(words.begin());
    for (const Command& command : kCommands)
        if (name == command.name)
            return command.run(words);
    return refuse("unknown command \"" + name + "\"");
}
