#pragma once
// State the subset's sources share and the public headers do not show: the per-thread
// dispatch state (temporary window objects, nesting depth, the message being handled).

#include "afxwin.h"
#include <unordered_map>

namespace afx_internal
{

struct ThreadState
{
    std::unordered_map<HWND, CWnd*> tempMap; // FromHandle's objects for unattached windows
    int dispatchDepth = 0;                   // how many window messages are being handled
    MSG currentMsg = {};                     // the innermost one, for default processing
};

// The calling thread's state, made on first use and freed when the thread detaches.
ThreadState& threadState();
void freeThreadState();

// Brackets the handling of one window message. When the outermost one ends, the
// temporary objects handed out meanwhile are deleted, as MFC does at idle time.
class DispatchScope
{
public:
    DispatchScope(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);
    ~DispatchScope();
    DispatchScope(const DispatchScope&) = delete;
    DispatchScope& operator=(const DispatchScope&) = delete;

private:
    ThreadState& m_state;
    MSG m_saved;
};

// An exception that a handler let escape must not unwind through the system's
// dispatch code: report it as MFC's window procedure does and swallow it.
void reportHandlerException(CException* e);

// Common controls the dialog templates may use, registered once per process.
void registerCommonControls();

} // namespace afx_internal
