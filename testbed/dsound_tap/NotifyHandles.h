#pragma once
// Keeps track of the event handles the library hands to SetNotificationPositions, so that a
// test can ask which of them the library has since closed.
//
// For each handle the tap holds a duplicate (a "witness") of its own. A handle counts as open
// while GetHandleInformation accepts it and it still names the same kernel object as the
// witness (CompareObjectHandles), so a closed handle whose value the system has reused for
// another object is seen as closed. Limit: where CompareObjectHandles is missing, only
// GetHandleInformation is used and such a reuse goes unnoticed.

#include <windows.h>

#include <map>
#include <vector>

namespace dstap
{

class NotifyHandles
{
public:
    NotifyHandles() = default;
    NotifyHandles(const NotifyHandles&) = delete;
    NotifyHandles& operator=(const NotifyHandles&) = delete;
    ~NotifyHandles();

    // Starts tracking a handle, unless it is tracked and still open already.
    void track(HANDLE event);
    int open() const;
    void closeWitnesses();

private:
    struct Tracked
    {
        HANDLE original;
        HANDLE witness; // null once seen closed, or if the handle was never valid
    };

    bool stillOpen(Tracked& tracked) const;
    void forget(Tracked& tracked) const;

    mutable std::vector<Tracked> tracked_;
    std::map<HANDLE, int> latest_; // handle value -> id it was last tracked under
};

} // namespace dstap
