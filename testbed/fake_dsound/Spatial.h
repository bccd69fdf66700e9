#pragma once
// 3D parameters in two stages: the values last set, which the Get methods report, and the
// values in effect. DS3D_IMMEDIATE changes both at once; DS3D_DEFERRED changes only the first
// until the listener's CommitDeferredSettings.

#include <windows.h>
#include <dsound.h>

namespace fakeds
{

D3DVECTOR vector3(D3DVALUE x, D3DVALUE y, D3DVALUE z);
DS3DBUFFER defaultBuffer3D();
DS3DLISTENER defaultListener();

// Range checks DirectSound makes on 3D values.
bool isValidBuffer3D(const DS3DBUFFER& parameters);
bool isValidListener(const DS3DLISTENER& parameters);
bool isValidApply(DWORD apply);

template <class Parameters>
struct Spatial
{
    Parameters set;
    Parameters applied;

    explicit Spatial(const Parameters& initial) : set(initial), applied(initial) {}

    // Returns whether the change waits for a commit.
    template <class Edit>
    bool change(DWORD apply, Edit edit)
    {
        edit(set);
        if (apply == DS3D_DEFERRED)
            return true;
        edit(applied);
        return false;
    }

    void commit() { applied = set; }
};

} // namespace fakeds
