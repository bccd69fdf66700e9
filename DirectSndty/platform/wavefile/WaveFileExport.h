#pragma once
// Export switch of the wave-file library. Its own sources define WAVEFILE_BUILD; everyone
// else (the sound library, hosts, tests) imports. A macro of its own rather than
// AFX_EXT_CLASS: the sound library is itself an extension DLL built with _AFXEXT, where
// AFX_EXT_CLASS means export, and these classes must be imported there.

#ifdef WAVEFILE_BUILD
#define WAVEFILE_API __declspec(dllexport)
#else
#define WAVEFILE_API __declspec(dllimport)
#endif
